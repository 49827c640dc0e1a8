// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The third tab: the break style and, read-only, the sentences it draws from.
Item {
    id: root
    objectName: "styleView"

    required property QtObject styleState

    SystemPalette {
        id: colors
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        anchors.leftMargin: 16 + 12
        anchors.rightMargin: 16 + 12
        spacing: 6

        Label {
            text: qsTr("Break Style")
            font.pixelSize: 12
            font.bold: true
        }
        ComboBox {
            objectName: "styleBreakStyle"
            Layout.leftMargin: 20
            Layout.preferredWidth: 130
            model: root.styleState.styleDescriptions
            currentIndex: root.styleState.breakStyleRawValue
            onActivated: index => root.styleState.breakStyleRawValue = index
            Accessible.name: qsTr("Break Style")
        }
        Item {
            Layout.fillWidth: true
            Layout.minimumHeight: 20
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width
                height: 1
                color: colors.mid
            }
        }
        Label {
            text: qsTr("Break Prompts")
            font.pixelSize: 12
            font.bold: true
        }
        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true
            radius: 6
            color: colors.base
            border.color: colors.mid

            ListView {
                id: prompts
                objectName: "promptList"
                anchors.fill: parent
                anchors.margins: 3
                clip: true
                model: root.styleState.prompts
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                // Reached with Tab; Up and Down go from prompt to prompt, each read out as it
                // takes the focus.
                activeFocusOnTab: true
                keyNavigationEnabled: true
                highlightFollowsCurrentItem: false
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Break Prompts")
                delegate: Column {
                    id: promptItem
                    required property string modelData
                    required property int index
                    width: prompts.width
                    focus: ListView.isCurrentItem
                    Accessible.role: Accessible.ListItem
                    Accessible.name: modelData
                    Accessible.focusable: true
                    Label {
                        objectName: "promptText"
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        wrapMode: Text.Wrap
                        topPadding: 6
                        bottomPadding: 6
                        text: promptItem.modelData
                        textFormat: Text.PlainText
                        Accessible.ignored: true
                        Rectangle {
                            anchors.fill: parent
                            color: "transparent"
                            border.width: 2
                            border.color: colors.highlight
                            radius: 3
                            visible: promptItem.activeFocus
                        }
                    }
                    Rectangle {
                        width: parent.width
                        height: 1
                        color: colors.midlight
                    }
                }
            }
        }
    }
}
