// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

#include <QHash>

class QSocketNotifier;
struct wl_display;
struct wl_registry;
struct zwlr_foreign_toplevel_manager_v1;
struct zwlr_foreign_toplevel_handle_v1;

// Holds while the active window of another program is full screen, on a Wayland compositor that
// lists every program's windows to its panels (zwlr_foreign_toplevel_manager_v1: sway and other
// wlroots compositors). Uses a Wayland connection of its own, read inside the event loop.
class ToplevelListHoldSource : public HoldSource {
    Q_OBJECT

public:
    // `ownAppId`: the app id of our own windows (a break window is full screen and active too).
    explicit ToplevelListHoldSource(QString ownAppId, QObject* parent = nullptr);
    ~ToplevelListHoldSource() override;

    // Connects and reads the present windows; false without a compositor offering the list.
    bool start();

    QString reason() const override;

    // Called by the Wayland listeners.
    struct Toplevel {
        QString appId;
        bool activated = false;
        bool fullScreen = false;
        // As announced since the last "done": applied together.
        QString pendingAppId;
        bool pendingActivated = false;
        bool pendingFullScreen = false;
    };
    void bind(wl_registry* registry, unsigned name, const char* interface, unsigned version);
    void added(zwlr_foreign_toplevel_handle_v1* handle);
    Toplevel* toplevel(zwlr_foreign_toplevel_handle_v1* handle);
    void done();
    void closed(zwlr_foreign_toplevel_handle_v1* handle);

private:
    void dispatch();
    void disconnect();

    QString m_ownAppId;
    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    zwlr_foreign_toplevel_manager_v1* m_manager = nullptr;
    QHash<zwlr_foreign_toplevel_handle_v1*, Toplevel> m_toplevels;
    QSocketNotifier* m_reader = nullptr;
};
