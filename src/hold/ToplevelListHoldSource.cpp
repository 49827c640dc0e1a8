// SPDX-License-Identifier: GPL-3.0-or-later
#include "ToplevelListHoldSource.h"

#include "wlr-foreign-toplevel-management-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cstring>

namespace {

using Source = ToplevelListHoldSource;

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
    : WindowListHoldSource(std::move(ownAppId), parent)
{
}

ToplevelListHoldSource::~ToplevelListHoldSource()
{
    release();
}

void ToplevelListHoldSource::bind(wl_registry* registry, unsigned name, const char* interface, unsigned version)
{
    // Version 2 brought the full-screen state; 3 is what this side knows.
    if (!m_manager && std::strcmp(interface, zwlr_foreign_toplevel_manager_v1_interface.name) == 0 && version >= 2)
        m_manager = static_cast<zwlr_foreign_toplevel_manager_v1*>(
            wl_registry_bind(registry, name, &zwlr_foreign_toplevel_manager_v1_interface, std::min(version, 3u)));
}

void ToplevelListHoldSource::listen()
{
    zwlr_foreign_toplevel_manager_v1_add_listener(m_manager, &managerListener, this);
}

void ToplevelListHoldSource::added(zwlr_foreign_toplevel_handle_v1* handle)
{
    m_toplevels.insert(handle, {});
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &handleListener, this);
}

ToplevelListHoldSource::Toplevel* ToplevelListHoldSource::toplevel(zwlr_foreign_toplevel_handle_v1* handle)
{
    const auto entry = m_toplevels.find(handle);
    return entry == m_toplevels.end() ? nullptr : &entry.value();
}

void ToplevelListHoldSource::done()
{
    bool holding = false;
    for (Toplevel& toplevel : m_toplevels) {
        if (!toplevel.pendingAppId.isNull())
            toplevel.appId = std::exchange(toplevel.pendingAppId, QString());
        toplevel.activated = toplevel.pendingActivated;
        toplevel.fullScreen = toplevel.pendingFullScreen;
        holding = holding || (toplevel.activated && toplevel.fullScreen && toplevel.appId != ownAppId());
    }
    setHolding(holding);
}

void ToplevelListHoldSource::closed(zwlr_foreign_toplevel_handle_v1* handle)
{
    m_toplevels.remove(handle);
    zwlr_foreign_toplevel_handle_v1_destroy(handle);
    done();
}

void ToplevelListHoldSource::release()
{
    for (auto handle = m_toplevels.keyBegin(); handle != m_toplevels.keyEnd(); ++handle)
        zwlr_foreign_toplevel_handle_v1_destroy(*handle);
    m_toplevels.clear();
    if (m_manager)
        zwlr_foreign_toplevel_manager_v1_destroy(m_manager);
    m_manager = nullptr;
}
