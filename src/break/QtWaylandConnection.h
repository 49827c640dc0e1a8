// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

class QPlatformNativeInterface;
struct wl_display;
struct wl_event_queue;
struct wl_interface;

// Qt's own Wayland connection, for the few protocols Qt 6.4 has no API for. Qt hands it out only
// through the platform's native interface (a QPA header).
namespace QtWaylandConnection {

// Qt's native interface when Qt runs on Wayland; null elsewhere.
QPlatformNativeInterface* native();

// Qt's connection; null when Qt does not run on Wayland.
wl_display* display();

// Binds the compositor's global `interface` at `version` on Qt's connection, its events on
// `queue`, a queue of the caller's own made here: a roundtrip on Qt's queue would run Qt's
// handlers out of turn. Null where the compositor does not offer it or Qt is not on Wayland.
void* bind(const wl_interface& interface, uint32_t version, wl_event_queue*& queue);

} // namespace QtWaylandConnection
