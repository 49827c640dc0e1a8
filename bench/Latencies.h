// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QEventLoop>
#include <QList>
#include <QTimer>
#include <algorithm>
#include <cstdio>

// What the latency benchmarks share: waiting with the event loop running, and the summary line.
namespace Latencies {

inline void wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// "<what> (<n> <unit>): median … ms, max … ms"
inline void report(const char* what, const char* unit, QList<double> latencies)
{
    std::sort(latencies.begin(), latencies.end());
    std::printf("%s (%lld %s): median %.1f ms, max %.1f ms\n", what, static_cast<long long>(latencies.size()), unit,
                latencies.at(latencies.size() / 2), latencies.last());
}

} // namespace Latencies
