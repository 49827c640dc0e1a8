// SPDX-License-Identifier: GPL-3.0-or-later
#include "DBusHoldSource.h"

#include <QDBusMessage>
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
    m_watcher =
        new QDBusServiceWatcher(m_service, m_connection, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) { ownerChanged(owner); });
    subscribe();
    // Asked even when nobody holds the name yet: a service started on demand starts now. Not
    // waited for: switching holding on must not stop the program while the bus answers.
    const QDBusMessage call =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                       QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"))
        << m_service;
    // An owner announced meanwhile is newer than this answer, which is then dropped.
    whenAnswered(m_connection.asyncCall(call),
                 [this](const QVariant& owner) { ownerChanged(owner.toString()); });
}

void DBusHoldSource::ownerChanged(const QString& owner)
{
    m_owner = owner;
    if (owner.isEmpty())
        setHolding(false);
    else
        query();
}

void DBusHoldSource::listen(const QString& path, const QString& interface, const QString& signal,
                            const char* slot)
{
    m_connection.connect(QString(), path, interface, signal, this, slot);
}

bool DBusHoldSource::fromOwner() const
{
    return calledFromDBus() && !m_owner.isEmpty() && message().service() == m_owner;
}

void DBusHoldSource::whenAnswered(const QDBusPendingCall& call, std::function<void(const QVariant&)> done)
{
    auto* watcher = new QDBusPendingCallWatcher(call, this);
    // An answer is about the owner it was asked of: one that comes after the owner changed
    // (the service went, or came back as another process) is stale.
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, watcher, askedOf = m_owner, done = std::move(done)] {
                watcher->deleteLater();
                if (m_owner != askedOf)
                    return;
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
