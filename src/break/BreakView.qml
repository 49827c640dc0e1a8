import QtQuick
import QtQuick.Controls
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

        Button {
            id: skipButton
            objectName: "skipButton"
            Layout.alignment: Qt.AlignHCenter
            visible: root.promptState.showSkipButton
            topPadding: 8
            bottomPadding: 8
            leftPadding: 16
            rightPadding: 16
            text: qsTr("Skip")
            onClicked: root.skipAction()

            contentItem: Text {
                text: skipButton.text
                color: "white"
                font.pixelSize: 13
                font.bold: true
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle {
                radius: height / 2
                color: skipButton.down ? "#0062CC" : "#007AFF"
            }
        }
    }
}
