// SPDX-License-Identifier: GPL-3.0-or-later
#include "ToplevelListHoldSource.h"

#include "wlr-foreign-toplevel-management-client-protocol.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <wayland-client.h>

#include <algorithm>
#include <cstring>

namespace {

using Source = ToplevelListHoldSource;

void global(void* data, wl_registry* registry, uint32_t name, const char* interface, uint32_t version)
{
    static_cast<Source*>(data)->bind(registry, name, interface, version);
}

void globalRemove(void*, wl_registry*, uint32_t) {}

const wl_registry_listener registryListener = {global, globalRemove};

void title(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}

void appId(void* data, zwlr_foreign_toplevel_handle_v1* handle, const char* id)
{
    if (auto* toplevel = static_cast<Source*>(data)->toplevel(handle))
        toplevel->pendingAppId = QString::fromUtf8(id);
}

void outputEnter(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
void outputLeave(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

void state(void* data, zwlr_foreign_toplevel_handle_v1* handle, wl_array* states)
{
    auto* toplevel = static_cast<Source*>(data)->toplevel(handle);
    if (!toplevel)
        return;
    const auto* begin = static_cast<const uint32_t*>(states->data);
    const auto* end = begin + states->size / sizeof(uint32_t);
    toplevel->pendingActivated =
        std::find(begin, end, uint32_t(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED)) != end;
    toplevel->pendingFullScreen =
        std::find(begin, end, uint32_t(ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_FULLSCREEN)) != end;
}

void handleDone(void* data, zwlr_foreign_toplevel_handle_v1*)
{
    static_cast<Source*>(data)->done();
}

void handleClosed(void* data, zwlr_foreign_toplevel_handle_v1* handle)
{
    static_cast<Source*>(data)->closed(handle);
}

void parent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

const zwlr_foreign_toplevel_handle_v1_listener handleListener = {
    title, appId, outputEnter, outputLeave, state, handleDone, handleClosed, parent};

void toplevelAdded(void* data, zwlr_foreign_toplevel_manager_v1*, zwlr_foreign_toplevel_handle_v1* handle)
{
    static_cast<Source*>(data)->added(handle);
}

void finished(void*, zwlr_foreign_toplevel_manager_v1*) {}

const zwlr_foreign_toplevel_manager_v1_listener managerListener = {toplevelAdded, finished};

} // namespace

ToplevelListHoldSource::ToplevelListHoldSource(QString ownAppId, QObject* parent)
    : HoldSource(parent), m_ownAppId(std::move(ownAppId))
{
}

ToplevelListHoldSource::~ToplevelListHoldSource()
{
    disconnect();
}

void ToplevelListHoldSource::bind(wl_registry* registry, unsigned name, const char* interface, unsigned version)
{
    // Version 2 brought the full-screen state; 3 is what this side knows.
    if (!m_manager && std::strcmp(interface, zwlr_foreign_toplevel_manager_v1_interface.name) == 0 && version >= 2)
        m_manager = static_cast<zwlr_foreign_toplevel_manager_v1*>(
            wl_registry_bind(registry, name, &zwlr_foreign_toplevel_manager_v1_interface, std::min(version, 3u)));
}

bool ToplevelListHoldSource::start()
{
    m_display = wl_display_connect(nullptr);
    if (!m_display)
        return false;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
    if (wl_display_roundtrip(m_display) < 0 || !m_manager) {
        disconnect();
        return false;
    }
    zwlr_foreign_toplevel_manager_v1_add_listener(m_manager, &managerListener, this);
    // The present windows, and their states.
    wl_display_roundtrip(m_display);
    wl_display_roundtrip(m_display);
    m_reader = new QSocketNotifier(wl_display_get_fd(m_display), QSocketNotifier::Read, this);
    connect(m_reader, &QSocketNotifier::activated, this, &ToplevelListHoldSource::dispatch);
    return true;
}

QString ToplevelListHoldSource::reason() const
{
    return holding() ? QCoreApplication::translate("HoldSource", "another program is full screen")
                     : QString();
}

void ToplevelListHoldSource::added(zwlr_foreign_toplevel_handle_v1* handle)
{
    m_toplevels.insert(handle, {});
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &handleListener, this);
}

ToplevelListHoldSource::Toplevel* ToplevelListHoldSource::toplevel(zwlr_foreign_toplevel_handle_v1* handle)
{
    const auto found = m_toplevels.find(handle);
    return found == m_toplevels.end() ? nullptr : &found.value();
}

void ToplevelListHoldSource::done()
{
    bool holding = false;
    for (Toplevel& toplevel : m_toplevels) {
        if (!toplevel.pendingAppId.isNull())
            toplevel.appId = std::exchange(toplevel.pendingAppId, QString());
        toplevel.activated = toplevel.pendingActivated;
        toplevel.fullScreen = toplevel.pendingFullScreen;
        holding = holding || (toplevel.activated && toplevel.fullScreen && toplevel.appId != m_ownAppId);
    }
    setHolding(holding);
}

void ToplevelListHoldSource::closed(zwlr_foreign_toplevel_handle_v1* handle)
{
    m_toplevels.remove(handle);
    zwlr_foreign_toplevel_handle_v1_destroy(handle);
    done();
}

void ToplevelListHoldSource::dispatch()
{
    if (wl_display_dispatch(m_display) < 0) {
        // The compositor went away: nothing holds any more.
        m_reader->setEnabled(false);
        setHolding(false);
        return;
    }
    wl_display_flush(m_display);
}

void ToplevelListHoldSource::disconnect()
{
    delete m_reader;
    m_reader = nullptr;
    for (auto handle = m_toplevels.keyBegin(); handle != m_toplevels.keyEnd(); ++handle)
        zwlr_foreign_toplevel_handle_v1_destroy(*handle);
    m_toplevels.clear();
    if (m_manager)
        zwlr_foreign_toplevel_manager_v1_destroy(m_manager);
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
    m_manager = nullptr;
    m_registry = nullptr;
    m_display = nullptr;
}
