// SPDX-License-Identifier: GPL-3.0-or-later
#include "PlasmaWindowListHoldSource.h"

#include "plasma-window-management-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cstring>

namespace {

using Source = PlasmaWindowListHoldSource;

// Windows are read as announced by their id (`window`); the later versions add announcements
// by uuid, which this side does not need, so it binds no newer than 11. Version 4 brought the
// window's destructor.
constexpr unsigned knownVersion = 11;

void titleChanged(void*, org_kde_plasma_window*, const char*) {}

void appIdChanged(void* data, org_kde_plasma_window* handle, const char* id)
{
    auto* source = static_cast<Source*>(data);
    if (auto* window = source->window(handle)) {
        window->appId = QString::fromUtf8(id);
        source->changed();
    }
}

void stateChanged(void* data, org_kde_plasma_window* handle, uint32_t flags)
{
    auto* source = static_cast<Source*>(data);
    if (auto* window = source->window(handle)) {
        window->state = flags;
        source->changed();
    }
}

void virtualDesktopChanged(void*, org_kde_plasma_window*, int32_t) {}
void themedIconNameChanged(void*, org_kde_plasma_window*, const char*) {}

void unmapped(void* data, org_kde_plasma_window* handle)
{
    static_cast<Source*>(data)->removed(handle);
}

void initialState(void*, org_kde_plasma_window*) {}
void parentWindow(void*, org_kde_plasma_window*, org_kde_plasma_window*) {}
void geometry(void*, org_kde_plasma_window*, int32_t, int32_t, uint32_t, uint32_t) {}
void iconChanged(void*, org_kde_plasma_window*) {}
void pidChanged(void*, org_kde_plasma_window*, uint32_t) {}
void virtualDesktopEntered(void*, org_kde_plasma_window*, const char*) {}
void virtualDesktopLeft(void*, org_kde_plasma_window*, const char*) {}
void applicationMenu(void*, org_kde_plasma_window*, const char*, const char*) {}
void activityEntered(void*, org_kde_plasma_window*, const char*) {}
void activityLeft(void*, org_kde_plasma_window*, const char*) {}
void resourceNameChanged(void*, org_kde_plasma_window*, const char*) {}

const org_kde_plasma_window_listener windowListener = {titleChanged,
                                                       appIdChanged,
                                                       stateChanged,
                                                       virtualDesktopChanged,
                                                       themedIconNameChanged,
                                                       unmapped,
                                                       initialState,
                                                       parentWindow,
                                                       geometry,
                                                       iconChanged,
                                                       pidChanged,
                                                       virtualDesktopEntered,
                                                       virtualDesktopLeft,
                                                       applicationMenu,
                                                       activityEntered,
                                                       activityLeft,
                                                       resourceNameChanged};

void showDesktopChanged(void*, org_kde_plasma_window_management*, uint32_t) {}

void windowAdded(void* data, org_kde_plasma_window_management*, uint32_t id)
{
    static_cast<Source*>(data)->added(id);
}

void stackingOrderChanged(void*, org_kde_plasma_window_management*, wl_array*) {}
void stackingOrderUuidChanged(void*, org_kde_plasma_window_management*, const char*) {}
void windowWithUuid(void*, org_kde_plasma_window_management*, uint32_t, const char*) {}

const org_kde_plasma_window_management_listener managerListener = {
    showDesktopChanged, windowAdded, stackingOrderChanged, stackingOrderUuidChanged, windowWithUuid};

} // namespace

PlasmaWindowListHoldSource::PlasmaWindowListHoldSource(QString ownAppId, QObject* parent)
    : WindowListHoldSource(std::move(ownAppId), parent)
{
}

PlasmaWindowListHoldSource::~PlasmaWindowListHoldSource()
{
    release();
}

void PlasmaWindowListHoldSource::bind(wl_registry* registry, unsigned name, const char* interface,
                                      unsigned version)
{
    if (!m_manager && std::strcmp(interface, org_kde_plasma_window_management_interface.name) == 0 &&
        version >= 4)
        m_manager = static_cast<org_kde_plasma_window_management*>(wl_registry_bind(
            registry, name, &org_kde_plasma_window_management_interface, std::min(version, knownVersion)));
}

void PlasmaWindowListHoldSource::listen()
{
    org_kde_plasma_window_management_add_listener(m_manager, &managerListener, this);
}

void PlasmaWindowListHoldSource::added(uint32_t id)
{
    org_kde_plasma_window* handle = org_kde_plasma_window_management_get_window(m_manager, id);
    m_windows.insert(handle, {});
    org_kde_plasma_window_add_listener(handle, &windowListener, this);
}

PlasmaWindowListHoldSource::Window* PlasmaWindowListHoldSource::window(org_kde_plasma_window* handle)
{
    const auto entry = m_windows.find(handle);
    return entry == m_windows.end() ? nullptr : &entry.value();
}

void PlasmaWindowListHoldSource::changed()
{
    constexpr uint32_t activeFullScreen =
        ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_ACTIVE | ORG_KDE_PLASMA_WINDOW_MANAGEMENT_STATE_FULLSCREEN;
    setHolding(std::any_of(m_windows.cbegin(), m_windows.cend(), [this](const Window& window) {
        return (window.state & activeFullScreen) == activeFullScreen && window.appId != ownAppId();
    }));
}

void PlasmaWindowListHoldSource::removed(org_kde_plasma_window* handle)
{
    if (m_windows.remove(handle) > 0)
        org_kde_plasma_window_destroy(handle);
    changed();
}

void PlasmaWindowListHoldSource::release()
{
    for (auto handle = m_windows.keyBegin(); handle != m_windows.keyEnd(); ++handle)
        org_kde_plasma_window_destroy(*handle);
    m_windows.clear();
    if (m_manager)
        org_kde_plasma_window_management_destroy(m_manager);
    m_manager = nullptr;
}
