// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PointerMonitor.h"

#include <chrono>

// Idleness as GNOME's compositor tells it (org.gnome.Mutter.IdleMonitor on the session bus):
// a watch that fires once the user has been idle for the timeout, and then one that fires when
// the user is active again, which counts as pointer activity.
class MutterIdleMonitor : public PointerMonitor {
    Q_OBJECT

public:
    explicit MutterIdleMonitor(QObject* parent = nullptr);

    // False when no compositor offers the idle monitor.
    bool start(std::chrono::milliseconds timeout);

    bool reportsIdleness() const override { return true; }

private slots:
    void watchFired(uint id);

private:
    void addWatch(const QString& method, const QVariantList& arguments, uint* id);

    uint m_idleWatch = 0;
    uint m_activeWatch = 0;
};
