// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PointerMonitor.h"

#include <chrono>

class QSocketNotifier;
struct wl_display;
struct wl_registry;
struct wl_seat;
struct ext_idle_notifier_v1;
struct ext_idle_notification_v1;
struct org_kde_kwin_idle;
struct org_kde_kwin_idle_timeout;

// Idleness as a Wayland compositor tells it: through ext-idle-notify-v1 (KDE Plasma 5.27,
// wlroots 0.16+) or, where that is missing, KDE's older org_kde_kwin_idle (sway 1.7, earlier
// KWin). Both fire once the seat has been idle for the timeout, and again when the user is
// active, which counts as pointer activity. Uses a Wayland connection of its own, read inside
// the Qt event loop, so it works whichever platform Qt runs on.
class WaylandIdleMonitor : public PointerMonitor {
    Q_OBJECT

public:
    explicit WaylandIdleMonitor(QObject* parent = nullptr);
    ~WaylandIdleMonitor() override;

    // False when there is no Wayland compositor or it offers neither protocol.
    bool start(std::chrono::milliseconds timeout);

    // The protocol in use once started, for the log.
    QString protocol() const;

    bool reportsIdleness() const override { return true; }

    // Called by the Wayland listeners.
    void bind(wl_registry* registry, unsigned name, const char* interface, unsigned version);
    void idled() { emit idle(); }
    void resumed() { emit activity(); }

private:
    void dispatch();
    void disconnect();

    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    wl_seat* m_seat = nullptr;
    ext_idle_notifier_v1* m_notifier = nullptr;
    ext_idle_notification_v1* m_notification = nullptr;
    org_kde_kwin_idle* m_kdeIdle = nullptr;
    org_kde_kwin_idle_timeout* m_kdeTimeout = nullptr;
    QSocketNotifier* m_reader = nullptr;
};
