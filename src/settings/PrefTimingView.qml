// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The Timing tab: when a break comes. A heads-up before it, postponing it, and holding it while
// the person presents, calls or watches full screen. All three are off until switched on.
Item {
    id: root
    objectName: "timingView"

    required property QtObject prefState
    // The fields of both sections line up under one another.
    readonly property real labelWidth: 90

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

            PrefBreakView.SectionHeader {
                text: qsTr("Heads-up")
            }
            GridLayout {
                Layout.leftMargin: 20
                columns: 2
                columnSpacing: 8
                rowSpacing: 6

                Switch {
                    objectName: "headsUp"
                    Layout.columnSpan: 2
                    text: qsTr("Tell me before a break")
                    checked: root.prefState.headsUp
                    onCheckedChanged: if (checked !== root.prefState.headsUp) root.prefState.headsUp = checked
                }
                PrefBreakView.RowLabel {
                    Layout.minimumWidth: root.labelWidth
                    text: qsTr("Notify")
                    horizontalAlignment: Text.AlignRight
                    enabled: root.prefState.headsUp
                }
                RowLayout {
                    spacing: 8
                    enabled: root.prefState.headsUp
                    PrefBreakView.SettingField {
                        store: root.prefState
                        objectName: "headsUpSecondsField"
                        setting: "headsUpSecondsString"
                        validator: DoubleValidator {
                            bottom: 10
                            top: 600
                            notation: DoubleValidator.StandardNotation
                            locale: "C"
                        }
                        Accessible.name: qsTr("Seconds of notice before a break")
                    }
                    Label {
                        text: qsTr("seconds before (10 to 600)")
                    }
                }
            }

            PrefBreakView.SectionDivider {}

            PrefBreakView.SectionHeader {
                text: qsTr("Postpone")
            }
            GridLayout {
                Layout.leftMargin: 20
                columns: 2
                columnSpacing: 8
                rowSpacing: 6

                Switch {
                    objectName: "allowPostpone"
                    Layout.columnSpan: 2
                    text: qsTr("Allow postponing breaks")
                    checked: root.prefState.allowPostpone
                    onCheckedChanged: if (checked !== root.prefState.allowPostpone) root.prefState.allowPostpone = checked
                }
                PrefBreakView.RowLabel {
                    Layout.minimumWidth: root.labelWidth
                    text: qsTr("Postpone by")
                    horizontalAlignment: Text.AlignRight
                    enabled: root.prefState.allowPostpone
                }
                RowLayout {
                    spacing: 8
                    enabled: root.prefState.allowPostpone
                    PrefBreakView.SettingField {
                        store: root.prefState
                        objectName: "postponeMinutesField"
                        setting: "postponeMinutesString"
                        validator: DoubleValidator {
                            bottom: 1
                            top: 1440
                            notation: DoubleValidator.StandardNotation
                            locale: "C"
                        }
                        Accessible.name: qsTr("Minutes to postpone a break by")
                    }
                    Label {
                        text: qsTr("mins (1 to 1440)")
                    }
                }
                PrefBreakView.RowLabel {
                    Layout.minimumWidth: root.labelWidth
                    horizontalAlignment: Text.AlignRight
                    text: qsTr("At most")
                    enabled: root.prefState.allowPostpone
                }
                RowLayout {
                    spacing: 8
                    enabled: root.prefState.allowPostpone
                    PrefBreakView.SettingField {
                        store: root.prefState
                        objectName: "postponeLimitField"
                        setting: "postponeLimitString"
                        validator: IntValidator {
                            bottom: 1
                            top: 5
                        }
                        Accessible.name: qsTr("Postpones in a row")
                    }
                    Label {
                        text: qsTr("times in a row (1 to 5)")
                    }
                }
            }

            PrefBreakView.SectionDivider {}

            PrefBreakView.SectionHeader {
                text: qsTr("Hold")
            }
            ColumnLayout {
                Layout.leftMargin: 20
                Layout.fillWidth: true
                spacing: 2
                Switch {
                    objectName: "holdBreaks"
                    text: qsTr("Hold breaks while I am presenting, in a call or watching full screen")
                    checked: root.prefState.holdBreaks
                    onCheckedChanged: if (checked !== root.prefState.holdBreaks) root.prefState.holdBreaks = checked
                }
                Label {
                    Layout.fillWidth: true
                    Layout.leftMargin: 8
                    wrapMode: Text.Wrap
                    opacity: 0.7
                    text: qsTr("A due break waits while another program is full screen, an application keeps "
                               + "the session awake, or the desktop's Do Not Disturb is on, and comes 10 "
                               + "seconds after the last of them ends.")
                }
                RowLayout {
                    Layout.leftMargin: 8
                    spacing: 8
                    enabled: root.prefState.holdBreaks
                    Label {
                        text: qsTr("Wait at most")
                    }
                    PrefBreakView.SettingField {
                        store: root.prefState
                        objectName: "holdLimitMinutesField"
                        setting: "holdLimitMinutesString"
                        Accessible.name: qsTr("Minutes a held break waits at most")
                        validator: IntValidator {
                            bottom: 0
                            top: 1440
                        }
                    }
                    Label {
                        text: qsTr("mins (0: as long as it takes)")
                    }
                }
            }
        }
    }
}
