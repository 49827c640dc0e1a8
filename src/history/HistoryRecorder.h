// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QElapsedTimer>
#include <QObject>

class CycleEvents;
class HistoryStore;

// Writes what the cycle does into the history: work periods, breaks and how they ended,
// postponing and holding, pauses with where they came from, the lock and idleness. It only
// listens to the cycle's events; nothing calls it. Writes nothing while "Keep a history of my
// breaks" is off.
class HistoryRecorder : public QObject {
    Q_OBJECT

public:
    // Follows `events` from now on; the file is opened with the first event written.
    HistoryRecorder(HistoryStore& store, CycleEvents& events, QObject* parent = nullptr);
    ~HistoryRecorder() override;

private:
    void record(const QString& kind, double seconds = 0, const QString& detail = {},
                const QString& breakKind = {});
    void workStarted(double seconds);
    void breakStarted(const QString& kind, double seconds);
    void breakEnded(bool inFull);
    void held();
    void locked(bool cycleStops);
    // A break still up ends with `how` (pause, lock, idle, postponed, resume).
    void closeOpenBreak(const QString& how);
    // A break still held stops waiting, for `why`, after `heldSeconds`.
    void closeOpenHold(const QString& why, double heldSeconds);

    HistoryStore& m_store;
    bool m_breakOpen = false;
    // The end of a break reported again, by the second screen's view.
    bool m_sameBreakEndedAgain = false;
    QString m_breakKind;
    QElapsedTimer m_breakClock;
    bool m_holdOpen = false;
};
