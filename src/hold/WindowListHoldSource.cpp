// SPDX-License-Identifier: GPL-3.0-or-later
#include "WindowListHoldSource.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <wayland-client.h>

namespace {

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version)
{
    static_cast<WindowListHoldSource*>(data)->bind(registry, name, interface, version);
}

void globalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener = {global, globalRemove};

} // namespace

WindowListHoldSource::WindowListHoldSource(QString ownAppId, QObject* parent)
    : HoldSource(parent), m_ownAppId(std::move(ownAppId))
{
}

WindowListHoldSource::~WindowListHoldSource()
{
    disconnect();
}

bool WindowListHoldSource::start()
{
    m_display = wl_display_connect(nullptr);
    if (!m_display)
        return false;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
    if (wl_display_roundtrip(m_display) < 0 || !found()) {
        release();
        disconnect();
        return false;
    }
    listen();
    // The present windows, then their states.
    wl_display_roundtrip(m_display);
    wl_display_roundtrip(m_display);
    m_reader = new QSocketNotifier(wl_display_get_fd(m_display), QSocketNotifier::Read, this);
    connect(m_reader, &QSocketNotifier::activated, this, &WindowListHoldSource::dispatch);
    return true;
}

QString WindowListHoldSource::reason() const
{
    return holding() ? QCoreApplication::translate("HoldSource", "another program is full screen")
                     : QString();
}

void WindowListHoldSource::dispatch()
{
    if (wl_display_dispatch(m_display) < 0) {
        // The compositor went away: nothing holds any more.
        m_reader->setEnabled(false);
        setHolding(false);
        return;
    }
    wl_display_flush(m_display);
}

void WindowListHoldSource::disconnect()
{
    delete m_reader;
    m_reader = nullptr;
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
    m_registry = nullptr;
    m_display = nullptr;
}
