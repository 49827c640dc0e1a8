// SPDX-License-Identifier: GPL-3.0-or-later
#include "WaylandShortcutsInhibitor.h"

#include "QtWaylandConnection.h"
#include "keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h"
#include "logging/Logger.h"

#include <QHash>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

namespace WaylandShortcutsInhibitor {
namespace {

// The manager, bound once on Qt's own connection, on an event queue of ours: a roundtrip on
// Qt's queue would run Qt's handlers out of turn.
struct Manager {
    bool lookedFor = false;
    wl_event_queue* queue = nullptr;
    zwp_keyboard_shortcuts_inhibit_manager_v1* manager = nullptr;
};
Manager bound;
QHash<QWindow*, zwp_keyboard_shortcuts_inhibitor_v1*> inhibitors;

zwp_keyboard_shortcuts_inhibit_manager_v1* manager()
{
    if (std::exchange(bound.lookedFor, true))
        return bound.manager;
    bound.manager = static_cast<zwp_keyboard_shortcuts_inhibit_manager_v1*>(
        QtWaylandConnection::bind(zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1, bound.queue));
    if (bound.manager)
        logger().info(
            QStringLiteral("the compositor's own key bindings wait while a break has the keyboard"));
    else
        logger().info(
            QStringLiteral("the compositor's own key bindings still act during a break: it offers no "
                           "keyboard-shortcuts inhibition"));
    return bound.manager;
}

} // namespace

void inhibit(QWindow* window)
{
    QPlatformNativeInterface* native = QtWaylandConnection::native();
    if (!native)
        return;
    wl_display* connection = QtWaylandConnection::display();
    auto* seat = static_cast<wl_seat*>(native->nativeResourceForIntegration(QByteArrayLiteral("wl_seat")));
    auto* surface =
        static_cast<wl_surface*>(native->nativeResourceForWindow(QByteArrayLiteral("surface"), window));
    if (!connection || !seat || !surface || !manager())
        return;
    // The surface the last inhibitor was for may be gone with a hide: one inhibitor per window,
    // made anew (a second one for a surface would be a protocol error).
    if (zwp_keyboard_shortcuts_inhibitor_v1* old = inhibitors.take(window))
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(old);
    inhibitors.insert(
        window, zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(bound.manager, surface, seat));
    wl_display_flush(connection);
}

void releaseAll()
{
    if (inhibitors.isEmpty())
        return;
    for (zwp_keyboard_shortcuts_inhibitor_v1* inhibitor : std::as_const(inhibitors))
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(inhibitor);
    inhibitors.clear();
    if (wl_display* connection = QtWaylandConnection::display()) {
        wl_display_flush(connection);
        // The inhibitors' "active" and "inactive" events, unlistened to, leave our queue.
        wl_display_dispatch_queue_pending(connection, bound.queue);
    }
}

} // namespace WaylandShortcutsInhibitor
