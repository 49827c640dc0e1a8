// SPDX-License-Identifier: GPL-3.0-or-later
#include "TrackedNotification.h"

#include <utility>

DesktopNotifications& TrackedNotification::bus()
{
    if (m_bus)
        return *m_bus;
    m_bus = new DesktopNotifications(this);
    connect(m_bus, &DesktopNotifications::sent, this, [this](quint64 request, quint32 id) {
        if (request != m_pending)
            return;
        m_pending = 0;
        m_shownId = id;
        emit shown();
    });
    connect(m_bus, &DesktopNotifications::failed, this, [this](quint64 request, const QString& why) {
        // Also for a notification withdrawn meanwhile: the desktop has no server either way.
        if (request == m_pending)
            m_pending = 0;
        emit failed(why);
    });
    connect(m_bus, &DesktopNotifications::actionInvoked, this, [this](quint32 id, const QString& key) {
        // An action of a notification already withdrawn belongs to a moment that has passed.
        if (id != 0 && id == m_shownId)
            emit actionInvoked(key);
    });
    connect(m_bus, &DesktopNotifications::closed, this, [this](quint32 id) {
        if (id == m_shownId)
            m_shownId = 0;
    });
    return *m_bus;
}

void TrackedNotification::show(const DesktopNotifications::Notification& notification)
{
    withdraw();
    m_pending = bus().notify(notification);
}

void TrackedNotification::withdraw()
{
    if (!m_bus)
        return;
    if (m_pending != 0)
        m_bus->cancel(std::exchange(m_pending, 0));
    if (m_shownId != 0)
        m_bus->close(std::exchange(m_shownId, 0));
}
