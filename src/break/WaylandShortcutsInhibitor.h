// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QWindow;

// Asks a Wayland compositor to keep its own key bindings (Super, Alt+Tab, workspace keys) to
// itself while a break window has the keyboard focus (zwp_keyboard_shortcuts_inhibit_manager_v1,
// offered by sway, KWin and GNOME Shell). Does nothing elsewhere, or where the compositor does
// not offer it (said once in the log).
namespace WaylandShortcutsInhibitor {

// Inhibits the bindings for the window's surface as it is shown now (a window shown anew has a
// new surface: call again after each show).
void inhibit(QWindow* window);

// Gives the bindings back: the break is over.
void releaseAll();

} // namespace WaylandShortcutsInhibitor
