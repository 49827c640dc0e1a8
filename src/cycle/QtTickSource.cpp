// SPDX-License-Identifier: GPL-3.0-or-later
#include "QtTickSource.h"

#include <QTimer>

QtTickSource::QtTickSource() = default;
QtTickSource::~QtTickSource() = default;

void QtTickSource::start(std::function<void()> onTick)
{
    stop();
    m_timer = std::make_unique<QTimer>();
    m_timer->setTimerType(Qt::PreciseTimer);
    m_timer->setInterval(std::chrono::milliseconds(1000));
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), std::move(onTick));
    m_timer->start();
}

void QtTickSource::stop()
{
    if (!m_timer)
        return;
    m_timer->stop();
    // The tick that leads to this stop may still be on the stack inside the timer's signal.
    m_timer.release()->deleteLater();
}
