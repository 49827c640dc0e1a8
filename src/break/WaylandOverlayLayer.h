// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

class QWindow;

// Puts break windows on a Wayland compositor's overlay layer (zwlr_layer_shell_v1, offered by
// sway and other wlroots compositors and by KWin), one surface per output, anchored to its four
// edges and holding the keyboard: above every window, on every workspace, out of reach of the
// window management that could move, close or hide a window. Qt 6.4 knows no such surfaces, so
// the window is made without a window role of Qt's and given this one before it first draws.
// Does nothing elsewhere (X11, GNOME, weston): there the break windows are full-screen windows.
namespace WaylandOverlayLayer {

// Makes the window a surface of the overlay layer from its next show on, where the compositor
// offers that layer; false (and the window left as it is) otherwise. Call before the window's
// native window is made, in a process that set QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT before its
// QGuiApplication (BreakScreenChild::prepareProcess). `closed` is called when the compositor
// takes the surface away (KWin's Close Window does): the window is still shown, with nothing on
// screen.
bool adopt(QWindow* window, std::function<void(QWindow*)> closed);

// Whether the window is one of the overlay layer's (adopted where the compositor offers it).
bool holds(const QWindow* window);

// Gives an adopted window's surface its place at once, right after the show that made it and
// before the event loop runs again: the first expose alone can come after the renderer has
// already drawn into it, which the compositor refuses.
void placeShown(QWindow* window);

} // namespace WaylandOverlayLayer
