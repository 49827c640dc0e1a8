// SPDX-License-Identifier: GPL-3.0-or-later
#include "QtWaylandConnection.h"

#include "logging/Logger.h"

#include <QGuiApplication>
#include <cstring>
#include <qpa/qplatformnativeinterface.h>
#include <utility>
#include <wayland-client.h>

namespace QtWaylandConnection {
namespace {

struct Wanted {
    const wl_interface* interface;
    uint32_t version;
    void* bound = nullptr;
};

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t /*version*/)
{
    auto* wanted = static_cast<Wanted*>(data);
    if (!wanted->bound && std::strcmp(interface, wanted->interface->name) == 0)
        wanted->bound = wl_registry_bind(registry, name, wanted->interface, wanted->version);
}

void globalRemoved(void* /*data*/, wl_registry* /*registry*/, uint32_t /*name*/) {}

const wl_registry_listener registryListener{global, globalRemoved};

} // namespace

QPlatformNativeInterface* native()
{
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return nullptr;
    return QGuiApplication::platformNativeInterface();
}

wl_display* display()
{
    QPlatformNativeInterface* nativeInterface = native();
    return nativeInterface ? static_cast<wl_display*>(nativeInterface->nativeResourceForIntegration(
                                 QByteArrayLiteral("wl_display")))
                           : nullptr;
}

Global::Global(const wl_interface& interface, uint32_t version, QString offered, QString notOffered)
    : m_interface(interface), m_version(version), m_offered(std::move(offered)),
      m_notOffered(std::move(notOffered))
{
}

void* Global::get()
{
    if (std::exchange(m_lookedFor, true))
        return m_bound;
    wl_display* connection = display();
    if (!connection)
        return nullptr;
    m_queue = wl_display_create_queue(connection);
    auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(connection));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), m_queue);
    wl_registry* registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    Wanted wanted{&m_interface, m_version};
    wl_registry_add_listener(registry, &registryListener, &wanted);
    wl_display_roundtrip_queue(connection, m_queue);
    wl_registry_destroy(registry);
    m_bound = wanted.bound;
    logger().info(m_bound ? m_offered : m_notOffered);
    return m_bound;
}

} // namespace QtWaylandConnection
