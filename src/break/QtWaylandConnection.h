// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
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

// A global of the compositor, looked for on Qt's connection once, at the first get(), which
// logs then whether the compositor offers it. Its events come on a queue of its own, made then:
// a roundtrip on Qt's queue would run Qt's handlers out of turn.
class Global {
public:
    Global(const wl_interface& interface, uint32_t version, QString offered, QString notOffered);

    // The bound global; null where the compositor does not offer it or Qt is not on Wayland.
    void* get();
    wl_event_queue* queue() const { return m_queue; }

private:
    const wl_interface& m_interface;
    uint32_t m_version;
    QString m_offered;
    QString m_notOffered;
    bool m_lookedFor = false;
    wl_event_queue* m_queue = nullptr;
    void* m_bound = nullptr;
};

} // namespace QtWaylandConnection
