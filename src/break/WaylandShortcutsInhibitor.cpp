// SPDX-License-Identifier: GPL-3.0-or-later
#include "WaylandShortcutsInhibitor.h"

#include "QtWaylandConnection.h"
#include "keyboard-shortcuts-inhibit-unstable-v1-client-protocol.h"
#include "logging/Logger.h"

#include <QHash>
#include <QSet>
#include <QWindow>
#include <qpa/qplatformnativeinterface.h>
#include <wayland-client.h>

namespace WaylandShortcutsInhibitor {
namespace {

// The manager, bound once on Qt's own connection.
QtWaylandConnection::Global
    inhibitManager(zwp_keyboard_shortcuts_inhibit_manager_v1_interface, 1,
                   QStringLiteral("the compositor's own key bindings wait while a break has the keyboard"),
                   QStringLiteral("the compositor's own key bindings still act during a break: it offers no "
                                  "keyboard-shortcuts inhibition"));
QHash<QWindow*, zwp_keyboard_shortcuts_inhibitor_v1*> inhibitors;
// What the compositor last said of the break's bindings, so each change is logged once.
enum class Held { Unknown, Yes, No };
Held held = Held::Unknown;
// Inhibitors the compositor has said nothing of yet, and what to do when it does.
QSet<zwp_keyboard_shortcuts_inhibitor_v1*> unanswered;
std::function<void()> whenAnswered;

void answered(zwp_keyboard_shortcuts_inhibitor_v1* inhibitor)
{
    if (unanswered.remove(inhibitor) && unanswered.isEmpty() && whenAnswered)
        whenAnswered();
}

// The compositor's answer comes when it holds its bindings back (at once on sway and KWin; on
// GNOME once the person allowed it, asked by the shell at the first break) and when it gives
// them back while the break lasts (GNOME's Super+Escape, a denial).
void heldBack(void* /*data*/, zwp_keyboard_shortcuts_inhibitor_v1* inhibitor)
{
    if (std::exchange(held, Held::Yes) != Held::Yes)
        logger().info(QStringLiteral("the compositor holds its key bindings back for the break"));
    answered(inhibitor);
}

void givenBack(void* /*data*/, zwp_keyboard_shortcuts_inhibitor_v1* inhibitor)
{
    if (std::exchange(held, Held::No) != Held::No)
        logger().info(QStringLiteral("the compositor's key bindings act during this break: it did not "
                                     "hold them back or gave them back"));
    answered(inhibitor);
}

const zwp_keyboard_shortcuts_inhibitor_v1_listener listener = {heldBack, givenBack};

zwp_keyboard_shortcuts_inhibit_manager_v1* manager()
{
    return static_cast<zwp_keyboard_shortcuts_inhibit_manager_v1*>(inhibitManager.get());
}

} // namespace

void forget(QWindow* window)
{
    if (zwp_keyboard_shortcuts_inhibitor_v1* old = inhibitors.take(window)) {
        unanswered.remove(old);
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(old);
    }
}

bool inhibit(QWindow* window, std::function<void()> answeredThen)
{
    QPlatformNativeInterface* native = QtWaylandConnection::native();
    if (!native)
        return false;
    wl_display* connection = QtWaylandConnection::display();
    auto* seat = static_cast<wl_seat*>(native->nativeResourceForIntegration(QByteArrayLiteral("wl_seat")));
    auto* surface =
        static_cast<wl_surface*>(native->nativeResourceForWindow(QByteArrayLiteral("surface"), window));
    if (!connection || !seat || !surface || !manager())
        return false;
    // The surface the last inhibitor was for may be gone with a hide: one inhibitor per window,
    // made anew (a second one for a surface would be a protocol error).
    forget(window);
    // Made through a wrapper on Qt's default queue, so its news is read as Qt reads its own,
    // from its first event on.
    auto* wrapper =
        static_cast<zwp_keyboard_shortcuts_inhibit_manager_v1*>(wl_proxy_create_wrapper(manager()));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), nullptr);
    zwp_keyboard_shortcuts_inhibitor_v1* inhibitor =
        zwp_keyboard_shortcuts_inhibit_manager_v1_inhibit_shortcuts(wrapper, surface, seat);
    wl_proxy_wrapper_destroy(wrapper);
    zwp_keyboard_shortcuts_inhibitor_v1_add_listener(inhibitor, &listener, nullptr);
    // Logged for the first window that asks (and again if every asking window went), so that a
    // compositor that never answers shows as one.
    if (inhibitors.isEmpty())
        logger().info(QStringLiteral("the break asks the compositor to hold its key bindings back"));
    inhibitors.insert(window, inhibitor);
    unanswered.insert(inhibitor);
    whenAnswered = std::move(answeredThen);
    wl_display_flush(connection);
    return true;
}

bool awaitingAnswer()
{
    return !unanswered.isEmpty();
}

void releaseAll()
{
    if (inhibitors.isEmpty())
        return;
    for (zwp_keyboard_shortcuts_inhibitor_v1* inhibitor : std::as_const(inhibitors))
        zwp_keyboard_shortcuts_inhibitor_v1_destroy(inhibitor);
    inhibitors.clear();
    unanswered.clear();
    held = Held::Unknown;
    if (wl_display* connection = QtWaylandConnection::display())
        wl_display_flush(connection);
}

} // namespace WaylandShortcutsInhibitor
