// SPDX-License-Identifier: GPL-3.0-or-later
#include "TicktackController.h"

#include "AppState.h"
#include "QtTickSource.h"
#include "TicktackState.h"
#include "logging/Logger.h"
#include "logging/NumberText.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cinttypes>
#include <cmath>

namespace TicktackController {
namespace {

std::unique_ptr<TickSource>& installedSource()
{
    static std::unique_ptr<TickSource> source;
    return source;
}

TickSource& tickSource()
{
    auto& source = installedSource();
    if (!source)
        source = std::make_unique<QtTickSource>();
    return *source;
}

bool running = false;

} // namespace

void work(double seconds)
{
    stop();
    ticktack(seconds, AppState::workState());
}

void break_(double seconds)
{
    stop();
    ticktack(seconds, AppState::breakState());
}

void stop()
{
    if (running)
        tickSource().stop();
    running = false;
    logger().info(QStringLiteral("ticktack timer stoped ") + numberText(tickSource().interval()));
}

void ticktack(double seconds, TicktackState& state)
{
    auto remaining = std::make_shared<double>(seconds);
    // Counting from here on: observers of the first figure see a countdown that runs.
    running = true;
    state.setTimesUp(false);
    state.setCountdown(seconds, *remaining);
    state.setTimeString(format(*remaining));
    logger().info(QStringLiteral("ticktack timer start ") + numberText(seconds));

    TicktackState* target = &state;
    tickSource().stop();
    tickSource().start([remaining, seconds, target] {
        *remaining -= 1.0;
        target->setCountdown(seconds, *remaining);
        target->setTimeString(format(*remaining));
        if (target->timesUp() || *remaining > 0)
            return;
        logger().info(QStringLiteral("ticktack timer timesup for ") + numberText(seconds));
        target->setTimesUp(true);
    });
}

void countUp(std::function<void(double)> onSecond)
{
    stop();
    logger().info(QStringLiteral("ticktack timer counts up"));
    auto elapsed = std::make_shared<double>(0.0);
    running = true;
    tickSource().start([elapsed, onSecond = std::move(onSecond)] {
        *elapsed += 1.0;
        onSecond(*elapsed);
    });
}

QString format(double seconds)
{
    if (!(seconds > 0))
        return QStringLiteral("00:00");
    if (std::isinf(seconds))
        qFatal("countdown of %f seconds cannot be shown: the length is infinite", seconds);
    // 2^63 is the first double past the signed 64-bit range.
    if (seconds >= 9223372036854775808.0)
        qFatal("countdown of %g seconds cannot be shown: the length is out of range", seconds);
    const auto t = static_cast<std::int64_t>(seconds);
    const std::int64_t h = t / 3600;
    const std::int64_t m = (t % 3600) / 60;
    const std::int64_t s = t % 60;
    QString text = QString::asprintf("%02" PRId64 ":%02" PRId64, m, s);
    if (h > 0)
        text.prepend(QString::asprintf("%02" PRId64, h));
    return text;
}

QString clockTimeIn(double seconds)
{
    const QDateTime end = QDateTime::currentDateTime().addMSecs(qint64(std::max(seconds, 0.0) * 1000.0));
    // To the minute: some locales' short format carries seconds, which only look precise.
    QString format = QLocale().timeFormat(QLocale::ShortFormat);
    format.remove(QRegularExpression(QStringLiteral("[:.]ss?")));
    return QLocale().toString(end.time(), format);
}

bool isRunning()
{
    return running;
}

void setTickSource(std::unique_ptr<TickSource> source)
{
    if (running)
        tickSource().stop();
    running = false;
    installedSource() = std::move(source);
}

} // namespace TicktackController
