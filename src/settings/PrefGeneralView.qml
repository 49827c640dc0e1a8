// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The first tab: start, status bar, update and break-style options, labels right-aligned on
// one column. A build without update checks leaves out the update row.
Item {
    id: root
    objectName: "generalView"

    required property QtObject prefState

    GridLayout {
        x: 16 + 12
        y: 12
        columns: 2
        columnSpacing: 16
        rowSpacing: 10

        Label {
            text: qsTr("Start options")
            Layout.alignment: Qt.AlignRight | Qt.AlignVCenter
        }
        Switch {
            objectName: "launchAtLogin"
            text: qsTr("Launch at login")
            checked: root.prefState.launchAtLogin
            onCheckedChanged: if (checked !== root.prefState.launchAtLogin) root.prefState.launchAtLogin = checked
        }

        Label {
            text: qsTr("StatusBar options")
            Layout.alignment: Qt.AlignRight | Qt.AlignVCenter
        }
        Switch {
            objectName: "showTime"
            text: qsTr("Show time in StatusBar")
            checked: root.prefState.showTime
            onCheckedChanged: if (checked !== root.prefState.showTime) root.prefState.showTime = checked
        }

        // Absent from a build whose updates come from the package manager.
        Label {
            text: qsTr("Update options")
            visible: root.prefState.updateChecksBuiltIn
            Layout.alignment: Qt.AlignRight | Qt.AlignVCenter
        }
        Switch {
            objectName: "autoCheckUpdate"
            visible: root.prefState.updateChecksBuiltIn
            text: qsTr("Auto check update for Lulltide")
            checked: root.prefState.autoCheckUpdate
            onCheckedChanged: if (checked !== root.prefState.autoCheckUpdate) root.prefState.autoCheckUpdate = checked
        }

        Label {
            id: styleLabel
            text: qsTr("Break style")
            Layout.alignment: Qt.AlignRight | Qt.AlignVCenter
        }
        ComboBox {
            objectName: "generalBreakStyle"
            Layout.preferredWidth: 130
            model: root.prefState.styleState.styleDescriptions
            currentIndex: root.prefState.styleState.breakStyleRawValue
            onActivated: index => root.prefState.styleState.breakStyleRawValue = index
            Accessible.name: styleLabel.text
        }
    }
}
