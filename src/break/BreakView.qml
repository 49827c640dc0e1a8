// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Layouts
import Lulltide

// The break screen: the prompt, the break countdown and, unless the break is forced, Skip.
Rectangle {
    id: root
    objectName: "breakView"

    required property PromptState promptState
    required property TicktackState breakState

    readonly property bool darkScheme: palette.window.hslLightness < 0.5

    anchors.fill: parent
    color: darkScheme ? "black" : "white"

    function skipAction() {
        promptState.skip()
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

        // A capsule button drawn here rather than taken from Qt Quick Controls: loading the
        // controls' style would delay the first break screen by a tenth of a second.
        Rectangle {
            id: skipButton
            objectName: "skipButton"
            Layout.alignment: Qt.AlignHCenter
            visible: root.promptState.showSkipButton
            implicitWidth: skipLabel.implicitWidth + 32
            implicitHeight: skipLabel.implicitHeight + 16
            radius: height / 2
            color: skipArea.pressed ? "#0062CC" : "#007AFF"
            border.width: activeFocus ? 2 : 0
            border.color: Qt.lighter(color, 1.6)
            // Reached with Tab only: a key pressed as the break appears must not skip it.
            activeFocusOnTab: true

            readonly property alias text: skipLabel.text

            Accessible.role: Accessible.Button
            Accessible.name: skipLabel.text
            Accessible.onPressAction: root.skipAction()
            Keys.onReturnPressed: root.skipAction()
            Keys.onEnterPressed: root.skipAction()
            Keys.onSpacePressed: root.skipAction()

            Text {
                id: skipLabel
                anchors.centerIn: parent
                text: qsTr("Skip")
                color: "white"
                font.pixelSize: 13
                font.bold: true
            }

            MouseArea {
                id: skipArea
                anchors.fill: parent
                cursorShape: Qt.PointingHandCursor
                onClicked: root.skipAction()
            }
        }
    }
}
