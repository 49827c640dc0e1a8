// SPDX-License-Identifier: GPL-3.0-or-later
#include "WaylandIdleMonitor.h"

#include "ext-idle-notify-v1-client-protocol.h"
#include "kde-idle-client-protocol.h"

#include <QSocketNotifier>
#include <wayland-client.h>

#include <cstring>

namespace {

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version)
{
    static_cast<WaylandIdleMonitor*>(data)->bind(registry, name, interface, version);
}

void globalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener = {global, globalRemove};

void idled(void* data, ext_idle_notification_v1*)
{
    static_cast<WaylandIdleMonitor*>(data)->idled();
}

void resumed(void* data, ext_idle_notification_v1*)
{
    static_cast<WaylandIdleMonitor*>(data)->resumed();
}

const ext_idle_notification_v1_listener notificationListener = {idled, resumed};

void kdeIdled(void* data, org_kde_kwin_idle_timeout*)
{
    static_cast<WaylandIdleMonitor*>(data)->idled();
}

void kdeResumed(void* data, org_kde_kwin_idle_timeout*)
{
    static_cast<WaylandIdleMonitor*>(data)->resumed();
}

const org_kde_kwin_idle_timeout_listener kdeTimeoutListener = {kdeIdled, kdeResumed};

} // namespace

WaylandIdleMonitor::WaylandIdleMonitor(QObject* parent) : PointerMonitor(parent) {}

WaylandIdleMonitor::~WaylandIdleMonitor()
{
    disconnect();
}

void WaylandIdleMonitor::bind(wl_registry* registry, unsigned name, const char* interface, unsigned)
{
    if (!m_seat && std::strcmp(interface, wl_seat_interface.name) == 0)
        m_seat = static_cast<wl_seat*>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
    else if (!m_notifier && std::strcmp(interface, ext_idle_notifier_v1_interface.name) == 0)
        m_notifier = static_cast<ext_idle_notifier_v1*>(
            wl_registry_bind(registry, name, &ext_idle_notifier_v1_interface, 1));
    else if (!m_kdeIdle && std::strcmp(interface, org_kde_kwin_idle_interface.name) == 0)
        m_kdeIdle = static_cast<org_kde_kwin_idle*>(
            wl_registry_bind(registry, name, &org_kde_kwin_idle_interface, 1));
}

QString WaylandIdleMonitor::protocol() const
{
    if (m_notification)
        return QString::fromLatin1(ext_idle_notifier_v1_interface.name);
    if (m_kdeTimeout)
        return QString::fromLatin1(org_kde_kwin_idle_interface.name);
    return {};
}

bool WaylandIdleMonitor::start(std::chrono::milliseconds timeout)
{
    m_display = wl_display_connect(nullptr);
    if (!m_display)
        return false;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
    if (wl_display_roundtrip(m_display) < 0 || !m_seat || (!m_notifier && !m_kdeIdle)) {
        disconnect();
        return false;
    }
    // The standard protocol where both are offered: KDE's is kept for compositors without it.
    if (m_notifier) {
        m_notification =
            ext_idle_notifier_v1_get_idle_notification(m_notifier, uint32_t(timeout.count()), m_seat);
        ext_idle_notification_v1_add_listener(m_notification, &notificationListener, this);
    } else {
        m_kdeTimeout = org_kde_kwin_idle_get_idle_timeout(m_kdeIdle, m_seat, uint32_t(timeout.count()));
        org_kde_kwin_idle_timeout_add_listener(m_kdeTimeout, &kdeTimeoutListener, this);
    }
    wl_display_flush(m_display);

    m_reader = new QSocketNotifier(wl_display_get_fd(m_display), QSocketNotifier::Read, this);
    connect(m_reader, &QSocketNotifier::activated, this, &WaylandIdleMonitor::dispatch);
    return true;
}

void WaylandIdleMonitor::dispatch()
{
    // Readable: this reads what came and runs the listeners without waiting.
    if (wl_display_dispatch(m_display) < 0) {
        // The compositor went away; there is nothing more to hear.
        m_reader->setEnabled(false);
        return;
    }
    wl_display_flush(m_display);
}

void WaylandIdleMonitor::disconnect()
{
    delete m_reader;
    m_reader = nullptr;
    if (m_notification)
        ext_idle_notification_v1_destroy(m_notification);
    if (m_notifier)
        ext_idle_notifier_v1_destroy(m_notifier);
    if (m_kdeTimeout)
        org_kde_kwin_idle_timeout_release(m_kdeTimeout);
    if (m_kdeIdle)
        org_kde_kwin_idle_destroy(m_kdeIdle);
    if (m_seat)
        wl_seat_destroy(m_seat);
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
    m_notification = nullptr;
    m_notifier = nullptr;
    m_kdeTimeout = nullptr;
    m_kdeIdle = nullptr;
    m_seat = nullptr;
    m_registry = nullptr;
    m_display = nullptr;
}
