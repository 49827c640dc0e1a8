// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;
class QWindow;

// Window manager hints that Qt has no API for. Does nothing outside X11.
namespace X11WindowHints {

// Asks the window manager to show the window on every virtual desktop and to leave it out of
// the taskbar and pager. Call before each show: managers drop the hints when a window is hidden.
void showOnAllDesktops(QWindow* window);

// Asks the window manager to bring a mapped window back to every virtual desktop (after
// something sent it to one desktop).
void returnToAllDesktops(QWindow* window);

// Whether the window manager has let go of the window (someone unmapped it): only a fresh map
// brings it back then.
bool isWithdrawn(QWindow* window);

// Gives the window the role (WM_WINDOW_ROLE) each time its native window is made.
void keepRole(QWindow* window, const QString& role);

} // namespace X11WindowHints
