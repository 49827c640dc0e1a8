// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class BreakGate;
class DesktopNotifications;

// The desktop notification shortly before a break: "Break in 1 minute", the kind of break, and
// the actions Start now and (while allowed) Postpone. Withdrawn when the break starts, the cycle
// stops or the break is postponed. Without a notification server it says so once in the log.
class HeadsUpNotice : public QObject {
    Q_OBJECT

public:
    // Follows the gate's heads-ups; the bus is first used by the first one.
    explicit HeadsUpNotice(BreakGate& gate, QObject* parent = nullptr);

    // "Break in 1 minute", "Break in 45 seconds", "Break in 2 minutes 30 seconds".
    static QString summary(double secondsLeft);
    // "A short break of 5 minutes." or "A long break of 15 minutes."
    static QString body(bool longBreak, double breakSeconds);

private:
    void show(double secondsLeft, bool longBreak);
    void withdraw();
    DesktopNotifications& notifications();

    BreakGate& m_gate;
    DesktopNotifications* m_notifications = nullptr;
    quint32 m_shownId = 0;
    // A heads-up on its way to the server, and whether it was withdrawn before it arrived.
    bool m_sending = false;
    bool m_withdrawnWhileSending = false;
    bool m_toldNoServer = false;
};
