// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>

// A person at the desk on Wayland: moves the pointer on a Wayland connection of its own, as
// remote-desktop tools do, through KWin's fake-input protocol (org_kde_kwin_fake_input) or the
// wlroots virtual pointer (zwlr_virtual_pointer_manager_v1, sway).
namespace FakeInput {

// Moves the pointer a little on the compositor at WAYLAND_DISPLAY; false when it offers neither.
bool movePointer();

// Presses the keys (Linux key codes, as in <linux/input-event-codes.h>) in order, holding each,
// and lets them go in reverse, as fingers on a keyboard do: Ctrl+F2 is {29, 60}. KWin only;
// false elsewhere.
bool pressKeys(const QList<quint32>& keys);

} // namespace FakeInput
