// SPDX-License-Identifier: GPL-3.0-or-later
// Writes events into a history file one by one, as the running program does, and tells how long
// each write took and how large the file grew.
#include "history/HistoryStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <algorithm>
#include <cstdio>
#include <vector>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: bench_history_writes FILE EVENTS\n", stderr);
        return 2;
    }
    const QString& path = arguments.at(1);
    bool ok = false;
    const int count = arguments.at(2).toInt(&ok);
    if (!ok || count < 1) {
        std::fputs("bench_history_writes: EVENTS must be a whole number above 0\n", stderr);
        return 2;
    }
    HistoryStore store(path);
    const char* kinds[] = {"work_started", "break_started", "break_ended", "paused", "resumed"};
    std::vector<qint64> nanoseconds;
    nanoseconds.reserve(count);
    QDateTime moment = QDateTime::currentDateTimeUtc().addDays(-60);
    for (int i = 0; i < count; ++i) {
        HistoryStore::Event event;
        moment = moment.addSecs(300);
        event.utc = moment;
        event.localDate = moment.toLocalTime().date().toString(Qt::ISODate);
        event.kind = QString::fromLatin1(kinds[i % 5]);
        event.breakKind = i % 5 == 1 || i % 5 == 2 ? QStringLiteral("short") : QString();
        event.seconds = 300;
        event.detail = i % 5 == 2 ? QStringLiteral("full") : QString();
        QElapsedTimer timer;
        timer.start();
        if (!store.record(event)) {
            std::fprintf(stderr, "write %d failed\n", i);
            return 1;
        }
        nanoseconds.push_back(timer.nsecsElapsed());
    }
    const qint64 first = nanoseconds.front();
    std::sort(nanoseconds.begin(), nanoseconds.end());
    double total = 0;
    for (qint64 value : nanoseconds)
        total += double(value);
    // The database and the journal that has not yet been folded into it.
    const qint64 bytes = QFileInfo(path).size() + QFileInfo(path + QStringLiteral("-wal")).size();
    const auto at = [&](double share) {
        return double(nanoseconds[size_t(share * double(count - 1))]) / 1e6;
    };
    std::printf("events %d\nfirst write (opens the file) %.3f ms\nmean %.3f ms\nmedian %.3f ms\n"
                "99th percentile %.3f ms\nslowest %.3f ms\nfile %.1f KB (%.0f bytes an event)\n",
                count, double(first) / 1e6, total / double(count) / 1e6, at(0.5), at(0.99),
                double(nanoseconds.back()) / 1e6, double(bytes) / 1000.0, double(bytes) / count);
    return 0;
}
