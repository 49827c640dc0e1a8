// SPDX-License-Identifier: GPL-3.0-or-later
#include "HistoryRecorder.h"

#include "HistoryStore.h"
#include "LibraryPages.h"
#include "app/AppState.h"
#include "app/BreakGate.h"
#include "break/PromptState.h"
#include "preferences/PrefState.h"
#include "timer/TicktackState.h"

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

bool freshPeriod(const TicktackState& state)
{
    return state.secondsLeft() == state.length();
}

} // namespace

HistoryRecorder& HistoryRecorder::instance()
{
    static HistoryRecorder* recorder = new HistoryRecorder;
    return *recorder;
}

HistoryRecorder::HistoryRecorder() = default;
HistoryRecorder::~HistoryRecorder() = default;

void HistoryRecorder::start()
{
    if (std::exchange(m_started, true))
        return;
    connect(&AppState::workState(), &TicktackState::timeStringChanged, this, &HistoryRecorder::workTicked);
    connect(&AppState::breakState(), &TicktackState::timeStringChanged, this, &HistoryRecorder::breakTicked);
}

HistoryStore& HistoryRecorder::store()
{
    if (!m_store)
        m_store = std::make_unique<HistoryStore>();
    return *m_store;
}

void HistoryRecorder::setStore(std::unique_ptr<HistoryStore> store)
{
    m_store = std::move(store);
}

void HistoryRecorder::record(const QString& kind, double seconds, const QString& detail,
                             const QString& breakKind)
{
    if (!m_started || !AppState::prefState().keepHistory())
        return;
    HistoryStore::Event event;
    const QDateTime now = QDateTime::currentDateTime();
    event.utc = now.toUTC();
    event.localDate = now.date().toString(Qt::ISODate);
    event.kind = kind;
    event.seconds = seconds;
    event.detail = detail;
    event.breakKind = breakKind;
    store().record(event);
    // SQLite and its Qt driver wait for the next event, minutes away: their code need not stay
    // mapped meanwhile.
    LibraryPages::release({QByteArrayLiteral("libsqlite3.so"), QByteArrayLiteral("libQt6Sql.so"),
                           QByteArrayLiteral("libqsqlite.so")});
}

void HistoryRecorder::workTicked()
{
    const TicktackState& work = AppState::workState();
    if (!freshPeriod(work))
        return;
    // Each screen's break view ends the break and starts the next period: the second start is
    // the same period.
    if (std::exchange(m_sameBreakEndedAgain, false))
        return;
    record(QStringLiteral("work_started"), work.length());
}

void HistoryRecorder::breakTicked()
{
    const TicktackState& breakState = AppState::breakState();
    if (!freshPeriod(breakState))
        return;
    closeOpenBreak(QStringLiteral("replaced"));
    closeOpenHold(QStringLiteral("break"));
    m_breakOpen = true;
    m_breakKind = breakKindName(AppState::promptState().kind());
    m_breakClock.start();
    record(QStringLiteral("break_started"), breakState.length(), {}, m_breakKind);
}

void HistoryRecorder::closeOpenBreak(const QString& how)
{
    if (!std::exchange(m_breakOpen, false))
        return;
    record(QStringLiteral("break_ended"), double(m_breakClock.elapsed()) / 1000.0, how, m_breakKind);
}

void HistoryRecorder::closeOpenHold(const QString& why)
{
    if (!std::exchange(m_holdOpen, false))
        return;
    record(QStringLiteral("hold_released"), AppState::breakGate().heldSeconds(), why);
}

void HistoryRecorder::breakEnded(bool inFull)
{
    m_sameBreakEndedAgain = !m_breakOpen;
    closeOpenBreak(inFull ? QStringLiteral("full") : QStringLiteral("skipped"));
}

void HistoryRecorder::paused(const QString& origin)
{
    closeOpenBreak(QStringLiteral("pause"));
    closeOpenHold(QStringLiteral("pause"));
    record(QStringLiteral("paused"), 0, origin);
}

void HistoryRecorder::resumed(const QString& origin)
{
    closeOpenBreak(QStringLiteral("resume"));
    record(QStringLiteral("resumed"), 0, origin);
}

void HistoryRecorder::postponed(double seconds)
{
    closeOpenBreak(QStringLiteral("postponed"));
    closeOpenHold(QStringLiteral("postponed"));
    record(QStringLiteral("postponed"), seconds);
}

void HistoryRecorder::held()
{
    closeOpenHold(QStringLiteral("held_again"));
    m_holdOpen = true;
    record(QStringLiteral("held"));
}

void HistoryRecorder::holdReleased(const QString& why)
{
    closeOpenHold(why);
}

void HistoryRecorder::locked(bool cycleStops)
{
    if (!cycleStops) {
        // The countdown and any break on the screen run on through the lock.
        record(QStringLiteral("locked"), 0, QStringLiteral("cycle_runs"));
        return;
    }
    closeOpenBreak(QStringLiteral("lock"));
    closeOpenHold(QStringLiteral("lock"));
    record(QStringLiteral("locked"));
}

void HistoryRecorder::unlocked()
{
    record(QStringLiteral("unlocked"));
}

void HistoryRecorder::idleStopped()
{
    closeOpenBreak(QStringLiteral("idle"));
    closeOpenHold(QStringLiteral("idle"));
    record(QStringLiteral("idle_stopped"));
}

void HistoryRecorder::idleRestarted()
{
    record(QStringLiteral("idle_restarted"));
}

void HistoryRecorder::stopped()
{
    closeOpenBreak(QStringLiteral("quit"));
    closeOpenHold(QStringLiteral("quit"));
    record(QStringLiteral("stopped"));
}

bool HistoryRecorder::forget()
{
    return store().forget();
}
