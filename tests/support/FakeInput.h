// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// A person at the desk, for KWin: moves the pointer through KWin's fake-input protocol
// (org_kde_kwin_fake_input) on a Wayland connection of its own, as remote-desktop tools do.
namespace FakeInput {

// Moves the pointer a little on the compositor at WAYLAND_DISPLAY; false when it has no fake input.
bool movePointer();

} // namespace FakeInput
