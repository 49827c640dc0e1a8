// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls

// A tab of the settings window. Tab reaches the open tab only, which shows a focus mark; Left
// and Right go to the tab beside it and open it, as in other tab bars of the desktop.
TabButton {
    id: button
    width: Math.max(96, implicitWidth)
    focusPolicy: checked ? Qt.StrongFocus : Qt.NoFocus

    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)

    function step(by) {
        const bar = TabBar.tabBar
        const next = (bar.currentIndex + by + bar.count) % bar.count
        bar.setCurrentIndex(next)
        bar.itemAt(next).forceActiveFocus(Qt.TabFocusReason)
    }

    SystemPalette {
        id: colors
    }

    Rectangle {
        anchors.fill: parent
        anchors.margins: 2
        color: "transparent"
        radius: 3
        border.width: 2
        border.color: colors.highlight
        visible: button.visualFocus
    }
}
