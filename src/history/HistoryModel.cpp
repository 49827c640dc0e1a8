// SPDX-License-Identifier: GPL-3.0-or-later
#include "HistoryModel.h"

#include "HistoryStore.h"
#include "HistorySummary.h"

#include <QDir>
#include <QLocale>

namespace {

// "~/.local/share/lulltide/history.sqlite", as a person would type it.
QString shortPath(const QString& path)
{
    const QString home = QDir::homePath() + u'/';
    return path.startsWith(home) ? QStringLiteral("~/") + path.mid(home.size()) : path;
}

} // namespace

HistoryModel::HistoryModel(HistoryStore& store, QObject* parent) : QObject(parent), m_store(store) {}

QVariantMap HistoryModel::load(int days) const
{
    QString error;
    const QList<HistorySummary::Day> summary = HistorySummary::lastDays(m_store, days, &error);

    QVariantList labels, dates, taken, skipped, cutShort, postponed, empty, screen, stretch;
    int maximum = 0;
    const QLocale locale;
    for (const HistorySummary::Day& day : summary) {
        // "Tue 24" under a week's bars; a month has room for the day of the month only.
        const QString dayOfMonth = QString::number(day.date.day());
        labels << (days <= 7 ? locale.dayName(day.date.dayOfWeek(), QLocale::ShortFormat) + u' ' + dayOfMonth
                             : dayOfMonth);
        taken << day.taken;
        skipped << day.skipped;
        cutShort << day.cutShort();
        postponed << day.postponed;
        empty << day.empty;
        dates << locale.toString(day.date, QLocale::LongFormat);
        screen << (day.empty ? QStringLiteral("–") : HistorySummary::duration(day.screenSeconds));
        stretch << (day.empty ? QStringLiteral("–") : HistorySummary::duration(day.longestStretchSeconds));
        // The bars stack the breaks; postponements stand apart.
        maximum = std::max(maximum, day.breaks);
    }
    return {{QStringLiteral("labels"), labels},
            {QStringLiteral("dates"), dates},
            {QStringLiteral("taken"), taken},
            {QStringLiteral("skipped"), skipped},
            {QStringLiteral("cutShort"), cutShort},
            {QStringLiteral("postponed"), postponed},
            {QStringLiteral("empty"), empty},
            {QStringLiteral("screen"), screen},
            {QStringLiteral("stretch"), stretch},
            {QStringLiteral("maximum"), maximum},
            {QStringLiteral("sentence"), error.isEmpty() ? HistorySummary::sentence(summary)
                                                         : tr("The history cannot be read: %1.").arg(error)},
            {QStringLiteral("path"), shortPath(m_store.path())}};
}

bool HistoryModel::forget() const
{
    return m_store.forget();
}
