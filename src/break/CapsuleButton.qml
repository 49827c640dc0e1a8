// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// A capsule button of the break screen, drawn here rather than taken from Qt Quick Controls:
// loading the controls' style would delay the first break screen by a tenth of a second.
Rectangle {
    id: button

    property alias text: label.text
    signal activated

    implicitWidth: label.implicitWidth + 32
    implicitHeight: label.implicitHeight + 16
    radius: height / 2
    color: area.pressed ? "#0062CC" : "#007AFF"
    border.width: activeFocus ? 2 : 0
    border.color: Qt.lighter(color, 1.6)
    // Reached with Tab only: a key pressed as the break appears must not press it.
    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: label.text
    Accessible.onPressAction: button.activated()
    Keys.onReturnPressed: button.activated()
    Keys.onEnterPressed: button.activated()
    Keys.onSpacePressed: button.activated()

    Text {
        id: label
        anchors.centerIn: parent
        color: "white"
        font.pixelSize: 13
        font.bold: true
    }

    MouseArea {
        id: area
        anchors.fill: parent
        cursorShape: Qt.PointingHandCursor
        onClicked: button.activated()
    }
}
