// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "WindowListHoldSource.h"

#include <QHash>

struct org_kde_plasma_window_management;
struct org_kde_plasma_window;

// KWin's window list, the one it gives Plasma's task manager (org_kde_plasma_window_management).
// KWin gives it only to programs whose desktop entry asks for it.
class PlasmaWindowListHoldSource final : public WindowListHoldSource {
    Q_OBJECT

public:
    explicit PlasmaWindowListHoldSource(QString ownAppId, QObject* parent = nullptr);
    ~PlasmaWindowListHoldSource() override;

    const char* protocol() const override { return "org_kde_plasma_window_management"; }

    // Called by the Wayland listeners.
    struct Window {
        QString appId;
        uint32_t state = 0;
    };
    void bind(wl_registry* registry, unsigned name, const char* interface, unsigned version) override;
    void added(uint32_t id);
    Window* window(org_kde_plasma_window* handle);
    void changed();
    void removed(org_kde_plasma_window* handle);

protected:
    bool found() const override { return m_manager != nullptr; }
    void listen() override;
    void release() override;

private:
    org_kde_plasma_window_management* m_manager = nullptr;
    QHash<org_kde_plasma_window*, Window> m_windows;
};
