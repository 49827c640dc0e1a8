// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMenu>

class StatusMenu;

// The status menu as a Qt menu, for the tray icon and for panels that ask the program to show
// its menu itself. It follows the status menu's changes.
class StatusPopupMenu : public QMenu {
    Q_OBJECT

public:
    explicit StatusPopupMenu(StatusMenu& menu, QWidget* parent = nullptr);

    // Opens the menu for a click at `point` (a panel's word for it, or the pointer's place),
    // beside the panel rather than over it.
    void openAt(const QPoint& point);

private:
    void rebuild();

    StatusMenu& m_menu;
};
