// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtCharts
import Lulltide

// The History tab: the last 7 (or 30) days as stacked bars of breaks taken, skipped and
// postponed, the time at the screen and the longest stretch without a break under each day,
// and one sentence for the whole. Made the first time the tab is opened.
Item {
    id: root
    objectName: "historyView"

    required property QtObject prefState
    required property QtObject historyModel
    property int days: 7
    // The day the pointer is on in the month's chart, whose columns have no room for text.
    property int pointedDay: -1
    // The day of the chart the keyboard is on.
    property int focusedDay: 0
    property var summary: historyModel.load(days)
    // "⟳ 2" under a day with postponements, nothing under one without.
    readonly property var postponedLine: summary.postponed.map(n => n > 0 ? "⟳ " + n : "")

    function reload() {
        summary = historyModel.load(days)
    }

    // A day as a screen reader says it when the day takes the focus.
    function dayText(day) {
        return qsTr("%1: %2 taken, %3 skipped, %4 cut short; %5 at the screen; longest stretch without a break: %6; postponed: %7.")
            .arg(summary.dates[day]).arg(summary.taken[day]).arg(summary.skipped[day])
            .arg(summary.cutShort[day]).arg(summary.screen[day]).arg(summary.stretch[day])
            .arg(summary.postponed[day])
    }

    onDaysChanged: {
        pointedDay = -1
        reload()
    }
    onVisibleChanged: if (visible) reload()

    SystemPalette {
        id: palette
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 6

        RowLayout {
            Switch {
                objectName: "keepHistory"
                text: qsTr("Keep a history of my breaks")
                checked: root.prefState.keepHistory
                onCheckedChanged: if (checked !== root.prefState.keepHistory) root.prefState.keepHistory = checked
            }
            Item {
                Layout.fillWidth: true
            }
            Button {
                objectName: "thirtyDays"
                text: root.days === 7 ? qsTr("30 days") : qsTr("7 days")
                onClicked: root.days = root.days === 7 ? 30 : 7
            }
        }

        ChartView {
            id: chart
            objectName: "historyChart"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 180
            antialiasing: true
            backgroundColor: palette.base
            plotAreaColor: palette.base
            // On top: under the bars come the lines of each day.
            legend.alignment: Qt.AlignTop
            legend.labelColor: palette.windowText
            margins.top: 4
            margins.bottom: 4
            margins.left: 4
            margins.right: 4

            // The days for the keyboard: Tab reaches the first, Left and Right go from day to
            // day, each marked and read out as it takes the focus.
            Row {
                x: chart.plotArea.x
                y: chart.plotArea.y
                width: chart.plotArea.width
                height: chart.plotArea.height
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Days")
                Repeater {
                    id: dayKeys
                    model: root.summary.labels.length
                    Rectangle {
                        id: dayKey
                        required property int index
                        objectName: "historyDay" + index
                        width: chart.plotArea.width / Math.max(1, dayKeys.count)
                        height: chart.plotArea.height
                        color: "transparent"
                        radius: 3
                        border.width: 2
                        border.color: activeFocus ? palette.highlight : "transparent"
                        // One stop in the Tab chain: the day last visited.
                        activeFocusOnTab: index === Math.min(root.focusedDay, dayKeys.count - 1)
                        Accessible.role: Accessible.ListItem
                        Accessible.name: root.dayText(index)
                        Accessible.focusable: true
                        onActiveFocusChanged: if (activeFocus) root.pointedDay = root.focusedDay = index
                        Keys.onLeftPressed: dayKeys.itemAt(Math.max(0, index - 1)).forceActiveFocus(Qt.TabFocusReason)
                        Keys.onRightPressed: dayKeys.itemAt(Math.min(dayKeys.count - 1, index + 1))
                                             .forceActiveFocus(Qt.TabFocusReason)
                    }
                }
            }

            StackedBarSeries {
                id: bars
                barWidth: 0.6
                onHovered: (status, index) => root.pointedDay = status ? index : -1
                onClicked: index => root.pointedDay = index
                axisX: BarCategoryAxis {
                    categories: root.summary.labels
                    labelsColor: palette.windowText
                    gridVisible: false
                    labelsFont.pixelSize: 11
                    // A month's numbers, which the axis would cut to "…", stand in a row of ours.
                    labelsVisible: root.days === 7
                }
                axisY: ValueAxis {
                    min: 0
                    // Four steps of whole breaks each.
                    max: Math.max(4, Math.ceil(root.summary.maximum / 4) * 4)
                    tickCount: 5
                    labelFormat: "%d"
                    labelsColor: palette.windowText
                    gridLineColor: palette.mid
                }
                BarSet {
                    label: qsTr("Taken")
                    color: "#2E9E5B"
                    borderColor: color
                    values: root.summary.taken
                }
                BarSet {
                    label: qsTr("Skipped")
                    color: "#E0A526"
                    borderColor: color
                    values: root.summary.skipped
                }
                BarSet {
                    label: qsTr("Cut short")
                    color: "#9AA5B1"
                    borderColor: color
                    values: root.summary.cutShort
                }
            }
        }

        // Under each day, in line with its bar: the time at the screen, then the longest stretch
        // without a break; under a month, the day of the month.
        ColumnLayout {
            Layout.leftMargin: chart.plotArea.x
            Layout.maximumWidth: chart.plotArea.width
            Layout.preferredWidth: chart.plotArea.width
            spacing: 2

            Repeater {
                // Postponements are no breaks: they stand under the bars, not in them.
                model: root.days === 7 ? [root.summary.screen, root.summary.stretch, root.postponedLine]
                                       : [root.summary.labels]
                RowLayout {
                    id: line
                    required property var modelData
                    required property int index
                    spacing: 0
                    Repeater {
                        model: line.modelData
                        Label {
                            required property string modelData
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            horizontalAlignment: Text.AlignHCenter
                            font.pixelSize: root.days === 7 ? 11 : 9
                            // A longer language shrinks the text rather than run days together.
                            fontSizeMode: Text.HorizontalFit
                            minimumPixelSize: 6
                            opacity: line.index === 0 ? 1 : 0.7
                            textFormat: Text.PlainText
                            text: modelData
                        }
                    }
                }
            }
        }
        Label {
            objectName: "historyDayLine"
            Layout.fillWidth: true
            font.pixelSize: root.days === 7 ? 10 : 11
            opacity: root.days === 7 || root.pointedDay < 0 ? 0.7 : 1
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            text: root.days === 7
                  ? qsTr("First line: time at the screen; second: the longest stretch without a break; "
                         + "third: breaks postponed.")
                  : root.pointedDay < 0 || root.pointedDay >= root.summary.labels.length
                    ? qsTr("Point at a day for its time at the screen and its longest stretch without a break.")
                    : qsTr("%1: %2 at the screen; longest stretch without a break: %3; postponed: %4.")
                      .arg(root.summary.dates[root.pointedDay])
                      .arg(root.summary.screen[root.pointedDay])
                      .arg(root.summary.stretch[root.pointedDay])
                      .arg(root.summary.postponed[root.pointedDay])
        }

        Label {
            objectName: "historySentence"
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            font.bold: true
            textFormat: Text.PlainText
            text: root.summary.sentence
        }

        RowLayout {
            Label {
                Layout.fillWidth: true
                wrapMode: Text.Wrap
                font.pixelSize: 11
                opacity: 0.7
                textFormat: Text.PlainText
                text: qsTr("Kept on this computer only, in %1.").arg(root.summary.path)
            }
            Button {
                objectName: "forgetHistory"
                text: qsTr("Forget history")
                onClicked: confirm.open()
            }
        }
    }

    Dialog {
        id: confirm
        objectName: "forgetConfirmation"
        anchors.centerIn: parent
        modal: true
        title: qsTr("Forget history?")
        standardButtons: Dialog.Yes | Dialog.Cancel
        Label {
            text: qsTr("Every recorded break is deleted. This cannot be undone.")
        }
        onAccepted: {
            historyModel.forget()
            root.reload()
        }
    }
}
