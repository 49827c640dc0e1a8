// SPDX-License-Identifier: GPL-3.0-or-later
#include "WaylandShortcutsInhibitor.h"

#include "keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h"
#include "logging/Logger.h"

#include <QGuiApplication>
#include <QHash>
#include <QWindow>
#include <cstring>
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

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t /*version*/)
{
    auto* found = static_cast<Manager*>(data);
    if (!found->manager &&
        std::strcmp(interface, zwp_keyboard_shortcuts_inhibit_manager_v1_interface.name) == 0)
        found->manager = static_cast<zwp_keyboard_shortcuts_inhibit_manager_v1*>(
            wl_registry_bind(registry, name, &zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1));
}

void globalRemoved(void* /*data*/, wl_registry* /*registry*/, uint32_t /*name*/) {}

const wl_registry_listener registryListener{global, globalRemoved};

QPlatformNativeInterface* nativeWayland()
{
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return nullptr;
    return QGuiApplication::platformNativeInterface();
}

wl_display* display(QPlatformNativeInterface* native)
{
    return static_cast<wl_display*>(native->nativeResourceForIntegration(QByteArrayLiteral("wl_display")));
}

zwp_keyboard_shortcuts_inhibit_manager_v1* manager(wl_display* connection)
{
    if (std::exchange(bound.lookedFor, true))
        return bound.manager;
    bound.queue = wl_display_create_queue(connection);
    auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(connection));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), bound.queue);
    wl_registry* registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &registryListener, &bound);
    wl_display_roundtrip_queue(connection, bound.queue);
    wl_registry_destroy(registry);
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
    QPlatformNativeInterface* native = nativeWayland();
    if (!native)
        return;
    wl_display* connection = display(native);
    auto* seat = static_cast<wl_seat*>(native->nativeResourceForIntegration(QByteArrayLiteral("wl_seat")));
    auto* surface =
        static_cast<wl_surface*>(native->nativeResourceForWindow(QByteArrayLiteral("surface"), window));
    if (!connection || !seat || !surface || !manager(connection))
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
    QPlatformNativeInterface* native = nativeWayland();
    if (!native || inhibitors.isEmpty())
        return;
    for (zwp_keyboard_shortcuts_inhibitor_v1* inhibitor : std::as_const(inhibitors))
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(inhibitor);
    inhibitors.clear();
    if (wl_display* connection = display(native)) {
        wl_display_flush(connection);
        // The inhibitors' "active" and "inactive" events, unlistened to, leave our queue.
        wl_display_dispatch_queue_pending(connection, bound.queue);
    }
}

} // namespace WaylandShortcutsInhibitor
