// SPDX-License-Identifier: GPL-3.0-or-later
#include "MutterIdleMonitor.h"

#include "logging/Logger.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace {

const QString service = QStringLiteral("org.gnome.Mutter.IdleMonitor");
const QString path = QStringLiteral("/org/gnome/Mutter/IdleMonitor/Core");
const QString interface = QStringLiteral("org.gnome.Mutter.IdleMonitor");

} // namespace

MutterIdleMonitor::MutterIdleMonitor(QObject* parent) : PointerMonitor(parent) {}

bool MutterIdleMonitor::start(std::chrono::milliseconds timeout)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(service))
        return false;
    bus.connect(service, path, interface, QStringLiteral("WatchFired"), this, SLOT(watchFired(uint)));
    addWatch(QStringLiteral("AddIdleWatch"), {quint64(timeout.count())}, &m_idleWatch);
    return true;
}

void MutterIdleMonitor::addWatch(const QString& method, const QVariantList& arguments, uint* id)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, id, method] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> reply = *watcher;
        if (reply.isError())
            logger().info(QStringLiteral("the compositor's idle monitor refused ") + method +
                          QStringLiteral(": ") + reply.error().message());
        else
            *id = reply.value();
    });
}

void MutterIdleMonitor::watchFired(uint id)
{
    if (id == 0)
        return;
    if (id == m_idleWatch) {
        emit idle();
        // Told once: the next activity, whenever it comes.
        if (m_activeWatch == 0)
            addWatch(QStringLiteral("AddUserActiveWatch"), {}, &m_activeWatch);
    } else if (id == m_activeWatch) {
        m_activeWatch = 0; // such a watch fires once
        emit activity();
    }
}
