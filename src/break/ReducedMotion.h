// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Whether the desktop asks programs for less animation: on GNOME (and the desktops built on it)
// "enable-animations" off (org.gnome.desktop.interface), or KDE's animation speed at its end, "instant"
// (AnimationDurationFactor=0 in kdeglobals). Read when asked, at every break: nothing follows it
// between breaks.
namespace ReducedMotion {

bool requested();

} // namespace ReducedMotion
