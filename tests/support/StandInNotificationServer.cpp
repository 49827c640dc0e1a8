// SPDX-License-Identifier: GPL-3.0-or-later
#include "StandInNotificationServer.h"

#include <utility>

namespace {
const QString serverName = QStringLiteral("org.freedesktop.Notifications");
const QString serverPath = QStringLiteral("/org/freedesktop/Notifications");
// The reason NotificationClosed gives for a CloseNotification call.
constexpr quint32 closedByCall = 3;
} // namespace

StandInNotificationServer::StandInNotificationServer(const QDBusConnection& connection,
                                                     const QStringList& capabilities, QObject* parent)
    : QObject(parent), m_connection(connection), m_capabilities(capabilities)
{
}

StandInNotificationServer::~StandInNotificationServer()
{
    stop();
}

bool StandInNotificationServer::start()
{
    if (!m_connection.registerObject(serverPath, this,
                                     QDBusConnection::ExportScriptableSlots |
                                         QDBusConnection::ExportScriptableSignals))
        return false;
    if (!m_connection.registerService(serverName)) {
        m_connection.unregisterObject(serverPath);
        return false;
    }
    m_started = true;
    return true;
}

void StandInNotificationServer::stop()
{
    if (!m_started)
        return;
    m_started = false;
    m_connection.unregisterService(serverName);
    m_connection.unregisterObject(serverPath);
}

void StandInNotificationServer::invokeAction(quint32 id, const QString& key)
{
    emit ActionInvoked(id, key);
}

QStringList StandInNotificationServer::GetCapabilities()
{
    m_calls << QStringLiteral("GetCapabilities");
    if (m_holdCapabilities) {
        setDelayedReply(true);
        m_waiting << message();
        return {};
    }
    return m_capabilities;
}

void StandInNotificationServer::answerCapabilities()
{
    m_holdCapabilities = false;
    for (const QDBusMessage& call : std::exchange(m_waiting, {}))
        m_connection.send(call.createReply(QVariant(m_capabilities)));
}

quint32 StandInNotificationServer::Notify(const QString& appName, quint32 replacesId, const QString& appIcon,
                                          const QString& summary, const QString& body,
                                          const QStringList& actions, const QVariantMap& hints,
                                          qint32 expireTimeout)
{
    m_calls << QStringLiteral("Notify");
    const quint32 id = replacesId != 0 ? replacesId : ++m_lastId;
    m_received.append({id, appName, replacesId, appIcon, summary, body, actions, hints, expireTimeout});
    return id;
}

void StandInNotificationServer::CloseNotification(quint32 id)
{
    m_calls << QStringLiteral("CloseNotification");
    m_closedIds << id;
    if (m_announcesClosing)
        emit NotificationClosed(id, closedByCall);
}

QString StandInNotificationServer::GetServerInformation(QString& vendor, QString& version,
                                                        QString& specVersion)
{
    m_calls << QStringLiteral("GetServerInformation");
    vendor = QStringLiteral("Lulltide tests");
    version = QStringLiteral("1.0");
    specVersion = QStringLiteral("1.2");
    return QStringLiteral("stand-in");
}
