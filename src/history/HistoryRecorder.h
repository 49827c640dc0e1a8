// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <memory>

class HistoryStore;

// Writes what the cycle does into the history: work periods, breaks and how they ended,
// postponing and holding, pauses with where they came from, the lock and idleness. Follows the
// countdowns by itself; the rest is told by the one function each action goes through. Writes
// nothing while "Keep a history of my breaks" is off.
class HistoryRecorder : public QObject {
    Q_OBJECT

public:
    static HistoryRecorder& instance();

    // Starts following the countdowns; the file is opened with the first event.
    void start();
    HistoryStore& store();
    // Another file, for tests.
    void setStore(std::unique_ptr<HistoryStore> store);

    void breakEnded(bool inFull);
    void paused(const QString& origin);
    void resumed(const QString& origin);
    void postponed(double seconds);
    void held();
    // The break stops waiting: the conditions cleared, the option was turned off, or the person
    // started it (`why`). Told before the gate forgets how long it waited.
    void holdReleased(const QString& why);
    // `cycleStops` is false when Lulltide is set to run on through the lock.
    void locked(bool cycleStops);
    void unlocked();
    void idleStopped();
    void idleRestarted();
    // Lulltide quits: the work period running ends here.
    void stopped();

    // Deletes the file ("Forget history").
    bool forget();

private:
    HistoryRecorder();
    ~HistoryRecorder() override;
    void record(const QString& kind, double seconds = 0, const QString& detail = {},
                const QString& breakKind = {});
    void workTicked();
    void breakTicked();
    // A break still up ends with `how` (pause, lock, idle, postponed, resume).
    void closeOpenBreak(const QString& how);
    // A break still held stops waiting, for `why`.
    void closeOpenHold(const QString& why);

    std::unique_ptr<HistoryStore> m_store;
    bool m_started = false;
    bool m_breakOpen = false;
    // The end of a break reported again, by the second screen's view.
    bool m_sameBreakEndedAgain = false;
    QString m_breakKind;
    QElapsedTimer m_breakClock;
    bool m_holdOpen = false;
};
