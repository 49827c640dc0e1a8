// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The settings window's content: the tabs, opening on the first. Every control writes its
// setting at once; there is nothing to apply or cancel.
Page {
    id: root
    objectName: "preferencesView"
    anchors.fill: parent

    required property QtObject prefState
    required property var appInfo
    required property QtObject historyModel

    header: TabBar {
        id: tabs
        objectName: "tabs"

        PrefTabButton {
            objectName: "generalTab"
            text: qsTr("General")
            icon.name: "preferences-system"
        }
        PrefTabButton {
            objectName: "workflowTab"
            text: qsTr("Workflow")
            icon.name: "preferences-desktop"
        }
        PrefTabButton {
            objectName: "styleTab"
            text: qsTr("Style")
            icon.name: "accessories-dictionary"
        }
        PrefTabButton {
            objectName: "timingTab"
            text: qsTr("Timing")
            icon.name: "appointment-soon"
        }
        PrefTabButton {
            objectName: "historyTab"
            text: qsTr("History")
            icon.name: "x-office-spreadsheet"
        }
        PrefTabButton {
            objectName: "aboutTab"
            text: qsTr("About")
            icon.name: "help-about"
        }
    }

    StackLayout {
        anchors.fill: parent
        currentIndex: tabs.currentIndex

        PrefGeneralView {
            prefState: root.prefState
        }
        PrefBreakView {
            prefState: root.prefState
        }
        PrefStyleView {
            styleState: root.prefState.styleState
        }
        PrefTimingView {
            prefState: root.prefState
        }
        // Qt Charts is loaded only by a person who opens the tab.
        Loader {
            id: historyLoader
            objectName: "historyLoader"
            Connections {
                target: tabs
                function onCurrentIndexChanged() {
                    if (historyLoader.status === Loader.Null && tabs.currentItem
                            && tabs.currentItem.objectName === "historyTab")
                        historyLoader.setSource("PrefHistoryView.qml", {prefState: root.prefState,
                                                                     historyModel: root.historyModel})
                }
            }
        }
        PrefAboutView {
            appInfo: root.appInfo
        }
    }
}
