// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HistoryStore.h"

#include <QDate>
#include <QList>
#include <QString>

// What the history says of each day: breaks taken in full, skipped or cut short, the
// postponements (apart: a postponed break is not a break until it comes), the time at the
// screen, and the longest stretch without a break. A break belongs to the day it began. Time is cut at local
// midnight and counted in real seconds, so a day with a daylight-saving change is as long as it really was.
namespace HistorySummary {

struct Day {
    QDate date;
    // No event at all that day: shown as empty, not as zeros that look like data.
    bool empty = true;
    int breaks = 0;
    int taken = 0;
    int skipped = 0;
    int postponed = 0;
    // Breaks ended otherwise (a pause, the lock, idleness, quitting) or still running.
    int cutShort() const { return breaks - taken - skipped; }
    qint64 screenSeconds = 0;
    qint64 longestStretchSeconds = 0;
};

// One Day for every date from `from` to `to`; `now` ends a work period still running.
QList<Day> days(const QList<HistoryStore::Event>& events, const QDate& from, const QDate& to,
                const QDateTime& now = QDateTime::currentDateTime());

// The last `count` days up to today, read from `store`; `error` as HistoryStore::read says it.
QList<Day> lastDays(const HistoryStore& store, int count, QString* error = nullptr);

// "2 h 10 min", "45 min", "0 min".
QString duration(qint64 seconds);

// "This week: 23 of 31 breaks taken; longest stretch without a break: 2 h 10 min (Tuesday)."
QString sentence(const QList<Day>& days);

// The per-day table of --history, with the sentence under it.
QString table(const QList<Day>& days);

} // namespace HistorySummary
