// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWindow;

// Window manager hints that Qt has no API for. Does nothing outside X11.
namespace X11WindowHints {

// Asks the window manager to show the window on every virtual desktop and to leave it out of
// the taskbar and pager. Call before each show: managers drop the hints when a window is hidden.
void showOnAllDesktops(QWindow* window);

} // namespace X11WindowHints
