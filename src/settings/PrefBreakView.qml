// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The second tab: the lengths of work and breaks, the user's own prompts and three switches.
// Fields write on every keystroke and check nothing: text that is no number reads as the default.
Item {
    id: root
    objectName: "breakView"

    required property QtObject prefState

    component SectionHeader: Label {
        font.pixelSize: 12
        font.bold: true
    }
    component RowLabel: Label {
        Layout.alignment: Qt.AlignRight | Qt.AlignVCenter
    }
    // A field of one setting. Every keystroke is stored, so the placeholder keeps the value stored
    // when the edit began: an emptied field still shows what it held before.
    component SettingField: TextField {
        required property QtObject store
        required property string setting
        // Follows the store until the first edit; from then on taken afresh as each edit begins.
        property string storedBeforeEdit: store[setting]
        property bool editing: false
        Layout.preferredWidth: 100
        text: store[setting]
        placeholderText: storedBeforeEdit
        onTextEdited: {
            if (!editing) {
                storedBeforeEdit = store[setting];
                editing = true;
            }
            // A field with a range keeps what was stored until the text is within it.
            if (validator && !acceptableInput)
                return;
            store[setting] = text;
        }
        onActiveFocusChanged: if (!activeFocus) editing = false
    }
    component SectionDivider: Item {
        Layout.fillWidth: true
        Layout.minimumHeight: 20
        SystemPalette {
            id: dividerColors
        }
        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 1
            color: dividerColors.mid
        }
    }

    Flickable {
        anchors.fill: parent
        contentHeight: content.implicitHeight + 24
        clip: true
        boundsBehavior: Flickable.StopAtBounds

        ColumnLayout {
            id: content
            x: 16 + 12
            y: 12
            width: root.width - 2 * x
            spacing: 6

            SectionHeader {
                text: qsTr("Short Break Options")
            }
            GridLayout {
                Layout.leftMargin: 20
                columns: 2
                columnSpacing: 8
                rowSpacing: 6

                RowLabel {
                    id: shortEvery
                    text: qsTr("Every")
                }
                RowLayout {
                    spacing: 8
                    SettingField {
                        store: root.prefState
                        objectName: "workTimeField"
                        setting: "workTimeString"
                        Accessible.name: qsTr("Work minutes")
                    }
                    Label {
                        text: qsTr("mins")
                    }
                }

                RowLabel {
                    text: qsTr("Break")
                }
                RowLayout {
                    spacing: 8
                    SettingField {
                        store: root.prefState
                        objectName: "breakTimeField"
                        setting: "breakTimeString"
                        Accessible.name: qsTr("Short break seconds")
                    }
                    Label {
                        text: qsTr("seconds")
                    }
                }

                Label {
                    text: qsTr("Text")
                    Layout.alignment: Qt.AlignRight | Qt.AlignTop
                    Layout.topMargin: (shortPromptSwitch.height - height) / 2
                }
                ColumnLayout {
                    Switch {
                        id: shortPromptSwitch
                        objectName: "customBreakPrompt"
                        text: qsTr("Custom break prompt")
                        checked: root.prefState.customBreakPrompt
                        onCheckedChanged: if (checked !== root.prefState.customBreakPrompt) root.prefState.customBreakPrompt = checked
                    }
                    SettingField {
                        store: root.prefState
                        setting: "breakPrompt"
                        objectName: "breakPromptField"
                        visible: root.prefState.customBreakPrompt
                        Layout.preferredWidth: 300
                        Layout.minimumWidth: 300
                        onVisibleChanged: if (visible && !activeFocus) cursorPosition = 0
                        Accessible.name: qsTr("Short break prompt")
                    }
                }
            }

            SectionDivider {}

            SectionHeader {
                text: qsTr("Long Break Options")
            }
            GridLayout {
                Layout.leftMargin: 20
                columns: 2
                columnSpacing: 8
                rowSpacing: 6

                RowLabel {
                    text: qsTr("Every")
                }
                RowLayout {
                    spacing: 8
                    SettingField {
                        store: root.prefState
                        objectName: "shortBreakTimesField"
                        setting: "shortBreakTimesString"
                        Accessible.name: qsTr("Short breaks before a long one")
                    }
                    Label {
                        text: qsTr("short breaks")
                    }
                }

                RowLabel {
                    text: qsTr("Break")
                }
                RowLayout {
                    spacing: 8
                    SettingField {
                        store: root.prefState
                        objectName: "longBreakTimeField"
                        setting: "longBreakTimeString"
                        Accessible.name: qsTr("Long break minutes")
                    }
                    Label {
                        text: qsTr("mins")
                    }
                }

                Label {
                    text: qsTr("Text")
                    Layout.alignment: Qt.AlignRight | Qt.AlignTop
                    Layout.topMargin: (longPromptSwitch.height - height) / 2
                }
                ColumnLayout {
                    Switch {
                        id: longPromptSwitch
                        objectName: "customLongBreakPrompt"
                        text: qsTr("Custom break prompt")
                        checked: root.prefState.customLongBreakPrompt
                        onCheckedChanged: if (checked !== root.prefState.customLongBreakPrompt) root.prefState.customLongBreakPrompt = checked
                    }
                    SettingField {
                        store: root.prefState
                        setting: "longBreakPrompt"
                        objectName: "longBreakPromptField"
                        visible: root.prefState.customLongBreakPrompt
                        Layout.preferredWidth: 300
                        Layout.minimumWidth: 300
                        onVisibleChanged: if (visible && !activeFocus) cursorPosition = 0
                        Accessible.name: qsTr("Long break prompt")
                    }
                }

                Item {
                    width: 1
                    height: 1
                }
                Switch {
                    objectName: "forceLongBreak"
                    text: qsTr("Force for long breaks(skip button will not display)")
                    checked: root.prefState.forceLongBreak
                    onCheckedChanged: if (checked !== root.prefState.forceLongBreak) root.prefState.forceLongBreak = checked
                }
            }

            SectionDivider {}

            SectionHeader {
                text: qsTr("Other Options")
            }
            ColumnLayout {
                Layout.leftMargin: 20
                spacing: 2
                Switch {
                    objectName: "restartTimerAfterAwake"
                    text: qsTr("Restart timer after Mac awake")
                    checked: root.prefState.restartTimerAfterAwake
                    onCheckedChanged: if (checked !== root.prefState.restartTimerAfterAwake) root.prefState.restartTimerAfterAwake = checked
                }
                Switch {
                    objectName: "stopTimerAfterMouseStop"
                    text: qsTr("Stop timer after Mouse stop for 5 mins")
                    checked: root.prefState.stopTimerAfterMouseStop
                    onCheckedChanged: if (checked !== root.prefState.stopTimerAfterMouseStop) root.prefState.stopTimerAfterMouseStop = checked
                }
                Switch {
                    objectName: "showNewDayTip"
                    text: qsTr("Show a new day prompt")
                    checked: root.prefState.showNewDayTip
                    onCheckedChanged: if (checked !== root.prefState.showNewDayTip) root.prefState.showNewDayTip = checked
                }
            }
        }
    }
}
