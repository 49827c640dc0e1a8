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

    // What a screen reader finds: an alert named after the break. The focused control's
    // description tells the break as it opens; a minute before the end and at the end a
    // notification shows, which readers speak wherever the focus is (Qt 6.4 gives no way to
    // announce text, and its events of a changed description or name do not carry the words).
    // The countdown itself stays quiet.
    readonly property string breakTitle: promptState.kindName === "long" ? qsTr("Long break")
                                         : promptState.kindName === "newDay" ? qsTr("A new day")
                                         : qsTr("Short break")
    // Said as the break opens, from the focused control's description; fixed for the break, so
    // that the description never changes under the reader.
    readonly property string opening: breakState.length > 0
                                      ? qsTr("%1, %2: %3").arg(breakTitle)
                                        .arg(durationText(Math.round(breakState.length))).arg(promptText.text)
                                      : ""
    // The milestones, told by the notification below: empty until one comes.
    readonly property string milestone: {
        if (breakState.length <= 0)
            return "" // no break yet: the view is made ahead of it
        const left = Math.ceil(breakState.secondsLeft)
        if (left <= 0)
            return qsTr("The break is over")
        if (breakState.length > 60 && left <= 60)
            return qsTr("One minute left")
        return ""
    }
    // Keys do nothing for half a second after the break takes the focus: a key meant for
    // another program, pressed as the break appears, must not skip it.
    property bool keysArmed: false
    property int keysArmAfter: 500

    anchors.fill: parent
    color: darkScheme ? "black" : "white"

    Accessible.role: Accessible.AlertMessage
    Accessible.name: breakTitle
    Accessible.description: opening
    Accessible.focusable: true

    // The window is named after the break too: a reader says its name as the break opens.
    Binding {
        target: root.Window.window
        when: root.Window.window !== null
        property: "title"
        value: root.breakTitle
    }

    onMilestoneChanged: {
        if (milestone !== "")
            notification.tell(milestone)
        else
            notification.visible = false // a new break, in a view kept from the last one
    }

    function durationText(seconds) {
        if (seconds % 60 !== 0)
            return seconds === 1 ? qsTr("1 second") : qsTr("%1 seconds").arg(seconds)
        const minutes = seconds / 60
        return minutes === 1 ? qsTr("1 minute") : qsTr("%1 minutes").arg(minutes)
    }

    // The keyboard focus goes to Skip, or to the break itself when there is no Skip, as soon
    // as the window is the active one.
    function takeFocus() {
        if (!Window.active)
            return
        (root.promptState.showSkipButton ? skipButton : root).forceActiveFocus()
        // Every time the break takes the focus (a new break, or back from another window).
        keysArmed = false
        arming.restart()
    }

    function skipAction() {
        promptState.skip()
    }

    function postponeAction() {
        promptState.postpone()
    }

    SystemPalette {
        id: palette
    }

    Item {
        id: notification
        visible: false
        Accessible.role: Accessible.Notification
        Accessible.name: said
        property string said

        // Shown anew for every text: hidden first, and shown once the reader was told so.
        function tell(text) {
            visible = false
            said = text
            Qt.callLater(() => { visible = true })
        }
    }

    Timer {
        id: arming
        interval: root.keysArmAfter
        onTriggered: root.keysArmed = true
    }

    Window.onActiveChanged: takeFocus()

    Connections {
        target: root.promptState
        function onShowSkipButtonChanged() {
            root.takeFocus()
        }
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
            id: promptText
            objectName: "promptText"
            Layout.alignment: Qt.AlignHCenter
            Layout.maximumWidth: root.width
            padding: 16
            // A backslash followed by "n" in a stored prompt is a line break.
            text: root.promptState.prompt.split("\\n").join("\n")
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            // A little above half strength: 4.7:1 on white, the least that reads well.
            color: Qt.rgba(palette.windowText.r, palette.windowText.g, palette.windowText.b, 0.55)
            font.pixelSize: 40
            font.bold: true
            Accessible.role: Accessible.StaticText
            Accessible.name: text
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
                ringColor: palette.windowText
                keysEnabled: root.keysArmed
                Accessible.description: root.opening
                onActivated: root.skipAction()
            }

            // Only while postponing is on and left, and never on a forced long break.
            CapsuleButton {
                id: postponeButton
                objectName: "postponeButton"
                visible: root.promptState.showPostponeButton
                text: qsTr("Postpone")
                ringColor: palette.windowText
                keysEnabled: root.keysArmed
                onActivated: root.postponeAction()
            }
        }
    }
}
