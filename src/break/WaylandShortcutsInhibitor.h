// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QWindow;

// Asks a Wayland compositor to keep its own key bindings (Super, Alt+Tab, workspace keys) to
// itself while a break window has the keyboard focus (zwp_keyboard_shortcuts_inhibit_manager_v1,
// offered by sway, KWin and GNOME Shell). Does nothing elsewhere, or where the compositor does
// not offer it (said once in the log).
namespace WaylandShortcutsInhibitor {

// Inhibits the bindings for the window's surface as it is shown now (a window shown anew has a
// new surface: call again after each show); false where that cannot be asked. `answered` runs
// once the compositor has answered every request made so far.
bool inhibit(QWindow* window, std::function<void()> answered = {});

// Drops the window's request: its surface is about to go.
void forget(QWindow* window);

// Whether the bindings were asked for and the compositor has not answered yet (GNOME waits for
// the person's answer to its question).
bool awaitingAnswer();

// Gives the bindings back: the break is over.
void releaseAll();

} // namespace WaylandShortcutsInhibitor
