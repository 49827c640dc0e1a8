// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "PromptState.h"

#include <QObject>
#include <QString>

// What the cycle did, for everyone who shows or records it: the panel, the heads-up, the
// control service, the history. The cycle emits; nobody else does. Countdown text changes come
// from the two TicktackStates.
class CycleEvents : public QObject {
    Q_OBJECT

public:
    // Where a pause or resume came from: the panel's menu (and its shortcut), a middle click on
    // the panel item, or the bus (the command line, scripts, desktop actions).
    enum class Origin { Menu, MiddleClick, Bus, Other };
    Q_ENUM(Origin)
    static QString originName(Origin origin);

    using QObject::QObject;

signals:
    // Working, the manual pause, the stop cause or the break windows may have changed.
    void changed();

    // A fresh work period or break countdown began (also a postponed break's new wait).
    void workStarted(double seconds);
    void breakStarted(PromptState::Kind kind, double seconds);
    // A break view ended its break: in full (its countdown ran out) or skipped. Each screen's
    // view says so, so a break on two screens ends twice.
    void breakEnded(bool inFull);

    void paused(CycleEvents::Origin origin);
    void resumed(CycleEvents::Origin origin);
    void postponed(double seconds);

    // A due break waits for what holds it, and stops waiting (`how`: "cleared", "option_off",
    // "start_now", "limit") after `heldSeconds`.
    void held(const QString& reason);
    void holdReleased(const QString& how, double heldSeconds);

    // `cycleStops` is false when the countdown is set to run on through the lock.
    void locked(bool cycleStops);
    void unlocked();
    void idleStopped();
    void idleRestarted();
    // The program ends: the running period ends here.
    void stopped();

    // The coming break is `secondsLeft` away: time for the heads-up; and the heads-up no longer
    // stands (the break started, was postponed, or the cycle stopped).
    void headsUpDue(double secondsLeft, bool longBreak);
    void headsUpWithdrawn();
};
