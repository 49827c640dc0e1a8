// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// A capsule button of the break screen, drawn here rather than taken from Qt Quick Controls:
// loading the controls' style would delay the first break screen by a tenth of a second.
Rectangle {
    id: button

    property alias text: label.text
    // The focus ring's colour: the text colour of the screen around the button.
    property color ringColor: "black"
    // Whether Enter and Space press the button.
    property bool keysEnabled: true
    signal activated

    implicitWidth: label.implicitWidth + 32
    implicitHeight: label.implicitHeight + 16
    radius: height / 2
    // A blue a little deeper than the system's, so that the white label stands out 4.7:1.
    color: area.pressed ? "#0062CC" : "#0070E8"
    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: label.text
    Accessible.ignored: !visible
    Accessible.onPressAction: button.activated()
    Keys.onReturnPressed: (event) => press(event)
    Keys.onEnterPressed: (event) => press(event)
    Keys.onSpacePressed: (event) => press(event)

    function press(event) {
        // A key held down repeats: only a fresh press counts.
        if (keysEnabled && !event.isAutoRepeat)
            activated()
    }

    // The focus ring, outside the capsule in the text colour, so it stands out from the
    // screen as much as the text does.
    Rectangle {
        anchors.fill: parent
        anchors.margins: -4
        radius: height / 2
        color: "transparent"
        border.width: 2
        border.color: button.ringColor
        visible: button.activeFocus
    }

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
