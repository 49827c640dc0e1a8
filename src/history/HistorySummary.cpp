// SPDX-License-Identifier: GPL-3.0-or-later
#include "HistorySummary.h"

#include <QCoreApplication>
#include <QHash>
#include <QLocale>
#include <algorithm>
#include <utility>

namespace HistorySummary {
namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("HistorySummary", text);
}

// The next event normally follows the end of a countdown within moments.
constexpr qint64 gapSeconds = 60;

bool isRealBreak(const HistoryStore::Event& event)
{
    return event.breakKind == QLatin1String("short") || event.breakKind == QLatin1String("long");
}

// Adds the working time [from, to) to the days it falls on, cut at local midnight, and lets the
// stretch without a break grow by it.
struct Counter {
    QHash<QDate, Day*> byDate;
    qint64 stretch = 0;

    void work(QDateTime from, const QDateTime& to)
    {
        while (from < to) {
            const QDate date = from.toLocalTime().date();
            // Where a daylight-saving change skips midnight, the day ends when the next begins.
            const QDateTime end = std::min(to, date.addDays(1).startOfDay());
            if (end <= from)
                break;
            const qint64 seconds = from.secsTo(end);
            stretch += seconds;
            if (Day* day = byDate.value(date)) {
                day->screenSeconds += seconds;
                day->longestStretchSeconds = std::max(day->longestStretchSeconds, stretch);
            }
            from = end;
        }
    }
};

} // namespace

QList<Day> days(const QList<HistoryStore::Event>& events, const QDate& from, const QDate& to,
                const QDateTime& now)
{
    QList<Day> result;
    for (QDate date = from; date <= to; date = date.addDays(1)) {
        Day day;
        day.date = date;
        result << day;
    }
    Counter counter;
    for (Day& day : result)
        counter.byDate.insert(day.date, &day);

    // The day the break on the screen began on, which keeps it whenever it ends.
    Day* breakDay = nullptr;
    QDateTime workingSince;
    // A period ends by itself when its countdown runs out; a record cut short (the computer
    // switched off, Lulltide killed) must not count the night as work. Unbounded while a break
    // is held: then the person works on until it comes.
    QDateTime workingUntil;
    const auto stopWorking = [&](const QDateTime& at) {
        if (!workingSince.isValid())
            return;
        counter.work(workingSince, workingUntil.isValid() ? std::min(at, workingUntil) : at);
        // Nothing recorded for a while after the countdown ran out: the person was not there.
        if (workingUntil.isValid() && workingUntil.secsTo(at) > gapSeconds)
            counter.stretch = 0;
        workingSince = QDateTime();
    };
    for (const HistoryStore::Event& event : events) {
        Day* day = counter.byDate.value(QDate::fromString(event.localDate, Qt::ISODate));
        if (day)
            day->empty = false;
        const QString& kind = event.kind;
        if (kind == QLatin1String("work_started")) {
            stopWorking(event.utc);
            workingSince = event.utc;
            workingUntil = event.utc.addMSecs(qint64(std::clamp(event.seconds, 0.0, 1e6) * 1000));
        } else if (kind == QLatin1String("held")) {
            workingUntil = QDateTime();
        } else if (kind == QLatin1String("break_started")) {
            stopWorking(event.utc);
            breakDay = isRealBreak(event) ? day : nullptr;
            if (breakDay)
                ++breakDay->breaks;
        } else if (kind == QLatin1String("break_ended")) {
            Day* began = std::exchange(breakDay, nullptr);
            if (began && isRealBreak(event)) {
                if (event.detail == QLatin1String("full"))
                    ++began->taken;
                else if (event.detail == QLatin1String("skipped"))
                    ++began->skipped;
                else if (event.detail == QLatin1String("postponed"))
                    --began->breaks; // it comes again, and counts then
            }
            if (event.detail == QLatin1String("full"))
                counter.stretch = 0;
        } else if (kind == QLatin1String("postponed")) {
            if (day)
                ++day->postponed;
        } else if (kind == QLatin1String("paused") || kind == QLatin1String("idle_stopped") ||
                   kind == QLatin1String("stopped") ||
                   (kind == QLatin1String("locked") && event.detail != QLatin1String("cycle_runs"))) {
            // Away from the screen, or at least away from the countdown: the stretch ends too.
            stopWorking(event.utc);
            counter.stretch = 0;
        }
    }
    stopWorking(std::min(now, to.addDays(1).startOfDay()));
    return result;
}

QList<Day> lastDays(const HistoryStore& store, int count, QString* error)
{
    const QDate today = QDate::currentDate();
    const QDate from = today.addDays(1 - count);
    // From the day before: a period started before midnight runs on into the first day.
    return days(store.read(from.addDays(-1), today, error), from, today);
}

QString duration(qint64 seconds)
{
    const qint64 minutes = seconds / 60;
    if (minutes < 60)
        return tr("%1 min").arg(minutes);
    return tr("%1 h %2 min").arg(minutes / 60).arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString sentence(const QList<Day>& days)
{
    int breaks = 0;
    int taken = 0;
    const Day* longest = nullptr;
    for (const Day& day : days) {
        breaks += day.breaks;
        taken += day.taken;
        if (!day.empty && (!longest || day.longestStretchSeconds > longest->longestStretchSeconds))
            longest = &day;
    }
    const QString period = days.size() == 1   ? tr("Today")
                           : days.size() == 7 ? tr("This week")
                                              : tr("These %1 days").arg(days.size());
    if (!longest)
        return tr("%1: nothing recorded yet.").arg(period);
    const QString weekday = QLocale().dayName(longest->date.dayOfWeek());
    return tr("%1: %2 of %3 breaks taken; longest stretch without a break: %4 (%5).")
        .arg(period)
        .arg(taken)
        .arg(breaks)
        .arg(duration(longest->longestStretchSeconds), weekday);
}

QString table(const QList<Day>& days)
{
    const QStringList headers{tr("Date"),      tr("Breaks"),        tr("Taken"),          tr("Skipped"),
                              tr("Postponed"), tr("At the screen"), tr("Longest stretch")};
    QList<QStringList> rows{headers};
    for (const Day& day : days) {
        if (day.empty) {
            rows << QStringList{day.date.toString(Qt::ISODate),
                                QStringLiteral("-"),
                                QStringLiteral("-"),
                                QStringLiteral("-"),
                                QStringLiteral("-"),
                                QStringLiteral("-"),
                                QStringLiteral("-")};
            continue;
        }
        rows << QStringList{day.date.toString(Qt::ISODate),     QString::number(day.breaks),
                            QString::number(day.taken),         QString::number(day.skipped),
                            QString::number(day.postponed),     duration(day.screenSeconds),
                            duration(day.longestStretchSeconds)};
    }
    QList<qsizetype> widths(headers.size(), 0);
    for (const QStringList& row : rows) {
        for (qsizetype i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row.at(i).size());
    }
    QString text;
    for (const QStringList& row : rows) {
        QStringList cells;
        for (qsizetype i = 0; i < row.size(); ++i)
            cells << (i == 0 ? row.at(i).leftJustified(widths[i]) : row.at(i).rightJustified(widths[i]));
        text += cells.join(QStringLiteral("  ")) + u'\n';
    }
    return text + sentence(days) + u'\n';
}

} // namespace HistorySummary
