// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Lulltide

// The large countdown of the break screen.
Text {
    required property QtObject ticktack

    text: ticktack ? ticktack.timeString : ""
    color: palette.windowText
    font.pixelSize: 100
    font.bold: true
    padding: 16
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    SystemPalette {
        id: palette
    }
}
