// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Lulltide

// The fourth tab: the wooden fish of the icon font, the name, the version and build with a
// link to the release notes, and the copyright line.
Item {
    id: root
    objectName: "aboutView"

    // name, versionLine, releaseNotesLink, copyright, iconFontFamily, glyph
    required property var appInfo

    ColumnLayout {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 24
        spacing: 6

        Label {
            objectName: "aboutGlyph"
            Layout.alignment: Qt.AlignHCenter
            Layout.bottomMargin: 20
            font.family: root.appInfo.iconFontFamily
            font.pixelSize: 60
            text: root.appInfo.glyph
            Accessible.name: qsTr("Wooden fish")
        }
        Label {
            objectName: "aboutName"
            Layout.alignment: Qt.AlignHCenter
            text: root.appInfo.name
            font.bold: true
            font.pixelSize: 26
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 8
            Label {
                objectName: "aboutVersion"
                text: root.appInfo.versionLine
            }
            // A link for the keyboard and for screen readers too: reached with Tab, opened with
            // Enter or Space, said as a link.
            Item {
                id: releaseNotes
                objectName: "aboutReleaseNotes"
                readonly property alias text: notesLabel.text
                implicitWidth: notesLabel.implicitWidth
                implicitHeight: notesLabel.implicitHeight
                activeFocusOnTab: true
                Keys.onReturnPressed: open()
                Keys.onEnterPressed: open()
                Keys.onSpacePressed: open()
                Accessible.role: Accessible.Link
                Accessible.name: qsTr("Release Notes")
                Accessible.onPressAction: open()

                function open() {
                    Qt.openUrlExternally(root.appInfo.releaseNotesLink)
                }

                Label {
                    id: notesLabel
                    text: "<a href=\"" + root.appInfo.releaseNotesLink + "\">" + qsTr("Release Notes") + "</a>"
                    textFormat: Text.StyledText
                    onLinkActivated: releaseNotes.open()
                    Accessible.ignored: true
                    HoverHandler {
                        cursorShape: Qt.PointingHandCursor
                    }
                }
                Rectangle {
                    anchors.fill: parent
                    anchors.margins: -2
                    color: "transparent"
                    radius: 2
                    border.width: 2
                    border.color: notesLabel.palette.highlight
                    visible: releaseNotes.activeFocus
                }
            }
        }
        Label {
            objectName: "aboutCopyright"
            Layout.alignment: Qt.AlignHCenter
            text: root.appInfo.copyright
        }
    }
}
