// SPDX-License-Identifier: GPL-3.0-or-later
#include "DBusHoldSource.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

DBusHoldSource::DBusHoldSource(const QDBusConnection& connection, const QString& service,
                               const QString& reason, QObject* parent)
    : HoldSource(parent), m_connection(connection), m_service(service), m_reason(reason)
{
}

void DBusHoldSource::start()
{
    m_watcher = new QDBusServiceWatcher(
        m_service, m_connection,
        QDBusServiceWatcher::WatchForRegistration | QDBusServiceWatcher::WatchForUnregistration, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceRegistered, this, [this] { query(); });
    connect(m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setHolding(false); });
    subscribe();
    // Asked even when nobody holds the name yet: a service started on demand starts now.
    if (m_connection.interface() && m_connection.interface()->isServiceRegistered(m_service))
        query();
}

void DBusHoldSource::setHolding(bool holding)
{
    if (holding == m_holding)
        return;
    m_holding = holding;
    emit holdingChanged();
}

void DBusHoldSource::whenAnswered(const QDBusPendingCall& call, std::function<void(const QVariant&)> done)
{
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, done = std::move(done)] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
            done({});
            return;
        }
        QVariant value = reply.arguments().constFirst();
        if (value.canConvert<QDBusVariant>())
            value = value.value<QDBusVariant>().variant();
        done(value);
    });
}
