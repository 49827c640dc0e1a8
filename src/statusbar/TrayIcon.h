// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSystemTrayIcon;
class StatusItem;
class StatusPopupMenu;

// The item for desktops without a StatusNotifierWatcher: a classic tray icon with the same
// menu, and the countdown in its tooltip (such trays draw no text beside the icon).
class TrayIcon : public QObject {
    Q_OBJECT

public:
    TrayIcon(StatusItem& item, StatusPopupMenu* menu, QObject* parent = nullptr);
    ~TrayIcon() override;

    QSystemTrayIcon* trayIcon() const { return m_tray; }
    StatusPopupMenu* menu() const { return m_menu; }

private:
    void updateIcon();
    void updateToolTip();

    StatusItem& m_item;
    StatusPopupMenu* m_menu = nullptr;
    QSystemTrayIcon* m_tray = nullptr;
};
