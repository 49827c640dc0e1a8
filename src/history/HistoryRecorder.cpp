// SPDX-License-Identifier: GPL-3.0-or-later
#include "HistoryRecorder.h"

#include "HistoryStore.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleEvents.h"
#include "preferences/PrefState.h"

#include <QDateTime>
#include <utility>

namespace {

QString breakKindName(PromptState::Kind kind)
{
    switch (kind) {
    case PromptState::Kind::Long:
        return QStringLiteral("long");
    case PromptState::Kind::NewDay:
        return QStringLiteral("new_day");
    case PromptState::Kind::Short:
        break;
    }
    return QStringLiteral("short");
}

double secondsOf(const QElapsedTimer& clock)
{
    return double(clock.elapsed()) / 1000.0;
}

// How long the held break has waited, as the cycle counts it: the events that end a hold are
// told before the cycle forgets it.
double waitedSoFar()
{
    return AppState::breakGate().heldSeconds();
}

} // namespace

HistoryRecorder::HistoryRecorder(HistoryStore& store, CycleEvents& events, QObject* parent)
    : QObject(parent), m_store(store)
{
    connect(&events, &CycleEvents::workStarted, this, &HistoryRecorder::workStarted);
    connect(&events, &CycleEvents::breakStarted, this,
            [this](PromptState::Kind kind, double seconds) { breakStarted(breakKindName(kind), seconds); });
    connect(&events, &CycleEvents::breakEnded, this, &HistoryRecorder::breakEnded);
    connect(&events, &CycleEvents::paused, this, [this](CycleEvents::Origin origin) {
        closeOpenBreak(QStringLiteral("pause"));
        closeOpenHold(QStringLiteral("pause"), waitedSoFar());
        record(QStringLiteral("paused"), 0, CycleEvents::originName(origin));
    });
    connect(&events, &CycleEvents::resumed, this, [this](CycleEvents::Origin origin) {
        closeOpenBreak(QStringLiteral("resume"));
        record(QStringLiteral("resumed"), 0, CycleEvents::originName(origin));
    });
    connect(&events, &CycleEvents::postponed, this, [this](double seconds) {
        closeOpenBreak(QStringLiteral("postponed"));
        closeOpenHold(QStringLiteral("postponed"), waitedSoFar());
        record(QStringLiteral("postponed"), seconds);
    });
    connect(&events, &CycleEvents::held, this, &HistoryRecorder::held);
    connect(&events, &CycleEvents::holdReleased, this, &HistoryRecorder::closeOpenHold);
    connect(&events, &CycleEvents::locked, this, &HistoryRecorder::locked);
    connect(&events, &CycleEvents::unlocked, this, [this] { record(QStringLiteral("unlocked")); });
    connect(&events, &CycleEvents::idleStopped, this, [this] {
        closeOpenBreak(QStringLiteral("idle"));
        closeOpenHold(QStringLiteral("idle"), waitedSoFar());
        record(QStringLiteral("idle_stopped"));
    });
    connect(&events, &CycleEvents::idleRestarted, this, [this] { record(QStringLiteral("idle_restarted")); });
    connect(&events, &CycleEvents::stopped, this, [this] {
        closeOpenBreak(QStringLiteral("quit"));
        closeOpenHold(QStringLiteral("quit"), waitedSoFar());
        record(QStringLiteral("stopped"));
    });
}

HistoryRecorder::~HistoryRecorder() = default;

void HistoryRecorder::record(const QString& kind, double seconds, const QString& detail,
                             const QString& breakKind)
{
    if (!AppState::prefState().keepHistory())
        return;
    HistoryStore::Event event;
    const QDateTime now = QDateTime::currentDateTime();
    event.utc = now.toUTC();
    event.localDate = now.date().toString(Qt::ISODate);
    event.kind = kind;
    event.seconds = seconds;
    event.detail = detail;
    event.breakKind = breakKind;
    m_store.record(event);
}

void HistoryRecorder::workStarted(double seconds)
{
    // Each screen's break view ends the break and starts the next period: the second start is
    // the same period.
    if (std::exchange(m_sameBreakEndedAgain, false))
        return;
    record(QStringLiteral("work_started"), seconds);
}

void HistoryRecorder::breakStarted(const QString& kind, double seconds)
{
    closeOpenBreak(QStringLiteral("replaced"));
    closeOpenHold(QStringLiteral("break"), waitedSoFar());
    m_breakOpen = true;
    m_breakKind = kind;
    m_breakClock.start();
    record(QStringLiteral("break_started"), seconds, {}, m_breakKind);
}

void HistoryRecorder::closeOpenBreak(const QString& how)
{
    if (!std::exchange(m_breakOpen, false))
        return;
    record(QStringLiteral("break_ended"), secondsOf(m_breakClock), how, m_breakKind);
}

void HistoryRecorder::closeOpenHold(const QString& why, double heldSeconds)
{
    if (!std::exchange(m_holdOpen, false))
        return;
    record(QStringLiteral("hold_released"), heldSeconds, why);
}

void HistoryRecorder::breakEnded(bool inFull)
{
    m_sameBreakEndedAgain = !m_breakOpen;
    closeOpenBreak(inFull ? QStringLiteral("full") : QStringLiteral("skipped"));
}

void HistoryRecorder::held()
{
    closeOpenHold(QStringLiteral("held_again"), waitedSoFar());
    m_holdOpen = true;
    record(QStringLiteral("held"));
}

void HistoryRecorder::locked(bool cycleStops)
{
    if (!cycleStops) {
        // The countdown and any break on the screen run on through the lock.
        record(QStringLiteral("locked"), 0, QStringLiteral("cycle_runs"));
        return;
    }
    closeOpenBreak(QStringLiteral("lock"));
    closeOpenHold(QStringLiteral("lock"), waitedSoFar());
    record(QStringLiteral("locked"));
}
