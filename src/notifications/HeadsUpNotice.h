// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "logging/SaidOnce.h"

#include <QObject>
#include <QString>

class CycleEvents;
class TrackedNotification;

// The desktop notification shortly before a break: "Break in 1 minute", the kind of break, and
// the actions Start now and (while allowed) Postpone. Withdrawn when the break starts, the cycle
// stops or the break is postponed. Without a notification server it says so once in the log.
class HeadsUpNotice : public QObject {
    Q_OBJECT

public:
    // Follows the cycle's heads-ups; the bus is first used by the first one.
    explicit HeadsUpNotice(CycleEvents& events, QObject* parent = nullptr);

    // "Break in 1 minute", "Break in 45 seconds", "Break in 2 minutes 30 seconds".
    static QString summary(double secondsLeft);
    // "A short break of 5 minutes." or "A long break of 15 minutes."
    static QString body(bool longBreak, double breakSeconds);

private:
    void show(double secondsLeft, bool longBreak);

    TrackedNotification* m_notice;
    SaidOnce m_noServer;
};
