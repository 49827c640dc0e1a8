// SPDX-License-Identifier: GPL-3.0-or-later
#include "StandInWatcher.h"

#include <QDBusConnectionInterface>

namespace {
const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
} // namespace

StandInWatcher::StandInWatcher(const QDBusConnection& connection, QObject* parent)
    : QObject(parent), m_connection(connection)
{
}

bool StandInWatcher::start()
{
    if (!m_connection.registerObject(watcherPath, this,
                                     QDBusConnection::ExportScriptableContents |
                                         QDBusConnection::ExportAllProperties))
        return false;
    if (!m_connection.registerService(watcherName)) {
        m_connection.unregisterObject(watcherPath);
        return false;
    }
    return true;
}

void StandInWatcher::stop()
{
    m_connection.unregisterService(watcherName);
    m_connection.unregisterObject(watcherPath);
    clear();
}

void StandInWatcher::clear()
{
    m_items.clear();
    m_senders.clear();
}

void StandInWatcher::RegisterStatusNotifierItem(const QString& service)
{
    // An item names either its bus name (its path is then the default) or its path.
    const QString sender = message().service();
    const QString item =
        service.startsWith(u'/') ? sender + service : service + QStringLiteral("/StatusNotifierItem");
    m_items.append(item);
    m_senders.append(sender);
    emit StatusNotifierItemRegistered(item);
    emit itemRegistered(sender);
}

void StandInWatcher::RegisterStatusNotifierHost(const QString&)
{
    emit StatusNotifierHostRegistered();
}
