// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "WindowListHoldSource.h"

#include <QHash>

struct zwlr_foreign_toplevel_manager_v1;
struct zwlr_foreign_toplevel_handle_v1;

// The window list of sway and other wlroots compositors, the one they give their panels
// (zwlr_foreign_toplevel_manager_v1).
class ToplevelListHoldSource final : public WindowListHoldSource {
    Q_OBJECT

public:
    explicit ToplevelListHoldSource(QString ownAppId, QObject* parent = nullptr);
    ~ToplevelListHoldSource() override;

    const char* protocol() const override { return "zwlr_foreign_toplevel_manager_v1"; }

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
    void bind(wl_registry* registry, unsigned name, const char* interface, unsigned version) override;
    void added(zwlr_foreign_toplevel_handle_v1* handle);
    Toplevel* toplevel(zwlr_foreign_toplevel_handle_v1* handle);
    void done();
    void closed(zwlr_foreign_toplevel_handle_v1* handle);

protected:
    bool found() const override { return m_manager != nullptr; }
    void listen() override;
    void release() override;

private:
    zwlr_foreign_toplevel_manager_v1* m_manager = nullptr;
    QHash<zwlr_foreign_toplevel_handle_v1*, Toplevel> m_toplevels;
};
