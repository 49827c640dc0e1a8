// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cycle/CycleControl.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

// The running program on the session bus: owns the name that makes it the one instance and
// exports /org/lulltide/Lulltide, through which the command line and other scripts read the
// cycle and pause, resume, skip or quit it.
class ControlService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.lulltide.Lulltide")
    Q_PROPERTY(bool Working READ working)
    Q_PROPERTY(bool ManualPause READ manualPause)
    Q_PROPERTY(bool InBreak READ inBreak)
    Q_PROPERTY(QString WorkTimeString READ workTimeString)
    Q_PROPERTY(QString BreakTimeString READ breakTimeString)
    Q_PROPERTY(QString Status READ statusLine)

public:
    static const QString serviceName;
    static const QString objectPath;
    static const QString interfaceName;
    // The error Skip() answers with during a break that may not be skipped.
    static const QString cannotSkipError;
    // The error Postpone() answers with when the break cannot be postponed; its message says why.
    static const QString cannotPostponeError;
    // The longest postpone a caller may ask for, in minutes.
    static constexpr uint maxPostponeMinutes = 24 * 60;

    enum class Claim { Owned, AlreadyRunning, NoBus };

    explicit ControlService(QDBusConnection connection, QObject* parent = nullptr);

    // Exports the object, then asks for the name; AlreadyRunning when another process has it.
    Claim claim();

    bool working() const { return CycleControl::status().working; }
    bool manualPause() const { return CycleControl::status().manualPause; }
    bool inBreak() const { return CycleControl::status().inBreak; }
    QString workTimeString() const { return CycleControl::status().workTimeString; }
    QString breakTimeString() const { return CycleControl::status().breakTimeString; }
    QString statusLine() const { return CycleControl::statusLine(CycleControl::status()); }

    // The shortest time between two announcements of the countdown texts, and a little less:
    // one tick a second must get through even when the clock reads it a few milliseconds early.
    static constexpr int countdownInterval = 1000;
    static constexpr int countdownSlack = 50;

public slots:
    void TogglePause() { CycleControl::togglePause(CycleControl::Origin::Bus); }
    void Pause() { CycleControl::pause(CycleControl::Origin::Bus); }
    void Resume() { CycleControl::resume(CycleControl::Origin::Bus); }
    // Ends the break that is up; a forced long break is refused with cannotSkipError, so the
    // caller can say why nothing happened. With no break up there is nothing to do.
    void Skip();
    // Moves the break `minutes` from now, 0 for the setting; refused with cannotPostponeError.
    void Postpone(uint minutes);
    void ShowSettings();
    void Quit();

private slots:
    // A desktop session without its bus is over, and a second instance could start beside one
    // that no longer holds the name: the program says so once and ends with an error.
    void sessionBusLost();

private:
    // Sends PropertiesChanged with whatever differs from what was last announced; the
    // countdown texts wait when they were announced less than a second ago.
    void announce();

    QDBusConnection m_connection;
    CycleControl::Status m_announced;
    QString m_announcedStatus;
    QElapsedTimer m_sinceCountdown;
    QTimer m_countdownPending;
};
