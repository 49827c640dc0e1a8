// SPDX-License-Identifier: GPL-3.0-or-later
#include "WorkItem.h"

#include <QTimer>

WorkItem::WorkItem(std::function<void()> body) : m_body(std::move(body)) {}

WorkItem::~WorkItem()
{
    releaseTimer();
}

std::shared_ptr<WorkItem> WorkItem::schedule(std::chrono::milliseconds delay, std::function<void()> body)
{
    std::shared_ptr<WorkItem> item(new WorkItem(std::move(body)));
    item->m_timer = new QTimer;
    item->m_timer->setSingleShot(true);
    item->m_timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(item->m_timer, &QTimer::timeout, item->m_timer, [raw = item.get()] { raw->perform(); });
    item->m_selfWhileScheduled = item;
    item->m_timer->start(delay);
    return item;
}

void WorkItem::cancel()
{
    m_cancelled = true;
    releaseTimer();
    m_selfWhileScheduled.reset(); // may destroy this item: nothing may follow
}

std::chrono::milliseconds WorkItem::remaining() const
{
    if (!m_timer)
        return std::chrono::milliseconds(0);
    const auto now = std::chrono::steady_clock::now();
    const auto postponed = m_notBefore > now ? std::chrono::ceil<std::chrono::milliseconds>(m_notBefore - now)
                                             : std::chrono::milliseconds(0);
    return std::max(m_timer->remainingTimeAsDuration(), postponed);
}

void WorkItem::runNow()
{
    if (!m_timer || m_cancelled)
        return;
    m_notBefore = {};
    perform();
}

void WorkItem::postpone(std::chrono::milliseconds delay)
{
    m_notBefore = std::chrono::steady_clock::now() + delay;
}

void WorkItem::perform()
{
    const auto now = std::chrono::steady_clock::now();
    if (!m_cancelled && m_timer && now < m_notBefore) {
        m_timer->start(std::chrono::ceil<std::chrono::milliseconds>(m_notBefore - now));
        return;
    }
    auto keepAlive = std::move(m_selfWhileScheduled);
    releaseTimer();
    if (m_cancelled)
        return;
    m_hasRun = true;
    if (m_body)
        m_body();
}

void WorkItem::releaseTimer()
{
    if (!m_timer)
        return;
    m_timer->stop();
    m_timer->deleteLater();
    m_timer = nullptr;
}
