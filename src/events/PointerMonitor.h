// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <chrono>

// Tells of pointer activity anywhere on the desktop: moves, drags, button presses and releases,
// and modifier keys (ordinary key presses do not count).
class PointerMonitor : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // The monitor that suits the display server, started; null (and said once in the log) when
    // the desktop offers no way to see pointer activity.
    static PointerMonitor* create(std::chrono::milliseconds idleTimeout, QObject* parent);

    // Whether the monitor tells of idleness itself (a compositor's idle monitor, which reports
    // no activity while the user is active) rather than of every event.
    virtual bool reportsIdleness() const { return false; }

signals:
    void activity();
    // Nobody has been at the desk for the idle timeout (monitors that report idleness only).
    void idle();
};
