// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Layouts
import Lulltide

// The break screen: the prompt, the break countdown and, unless the break is forced, Skip (and
// Postpone, when that is on).
Rectangle {
    id: root
    objectName: "breakView"

    required property QtObject promptState
    required property QtObject breakState

    readonly property bool darkScheme: palette.window.hslLightness < 0.5

    anchors.fill: parent
    color: darkScheme ? "black" : "white"

    function skipAction() {
        promptState.skip()
    }

    function postponeAction() {
        promptState.postpone()
    }

    SystemPalette {
        id: palette
    }

    // At a fractional scale the window can reach a part of a device pixel beyond its size in
    // logical pixels: the background goes on under that last row and column.
    Rectangle {
        anchors.fill: parent
        anchors.margins: -1
        z: -1
        color: root.color
    }

    // The end of the break countdown ends the break just as Skip does.
    Connections {
        target: root.breakState
        function onTimesUpChanged() {
            if (root.breakState.timesUp)
                root.skipAction()
        }
    }

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(implicitWidth, root.width)

        Text {
            objectName: "promptText"
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: root.width
            padding: 16
            // A backslash followed by "n" in a stored prompt is a line break.
            text: root.promptState.prompt.split("\\n").join("\n")
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            color: Qt.rgba(palette.windowText.r, palette.windowText.g, palette.windowText.b, 0.5)
            font.pixelSize: 40
            font.bold: true
        }

        Item {
            Layout.preferredHeight: 80
        }

        TicktackView {
            objectName: "breakCountdown"
            Layout.alignment: Qt.AlignHCenter
            ticktack: root.breakState
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 12

            CapsuleButton {
                id: skipButton
                objectName: "skipButton"
                visible: root.promptState.showSkipButton
                text: qsTr("Skip")
                onActivated: root.skipAction()
            }

            // Only while postponing is on and left, and never on a forced long break.
            CapsuleButton {
                id: postponeButton
                objectName: "postponeButton"
                visible: root.promptState.showPostponeButton
                text: qsTr("Postpone")
                onActivated: root.postponeAction()
            }
        }
    }
}
