// SPDX-License-Identifier: GPL-3.0-or-later
#include "DesktopNotifications.h"

#include "appinfo/AppInfo.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString interface = QStringLiteral("org.freedesktop.Notifications");

QString errorText(const QDBusError& error)
{
    return error.name() + QStringLiteral(": ") + error.message();
}

// Runs `done` with the finished call, once it is back.
template <typename Done> void whenFinished(const QDBusPendingCall& call, QObject* context, Done done)
{
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, done](QDBusPendingCallWatcher*) {
                         watcher->deleteLater();
                         done(*watcher);
                     });
}

} // namespace

DesktopNotifications::DesktopNotifications(QObject* parent) : QObject(parent)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(service, path, interface, QStringLiteral("ActionInvoked"), this,
                SLOT(onActionInvoked(quint32, QString)));
    bus.connect(service, path, interface, QStringLiteral("NotificationClosed"), this,
                SLOT(onNotificationClosed(quint32, quint32)));
}

quint64 DesktopNotifications::notify(const Notification& notification)
{
    const quint64 request = ++m_lastRequest;
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        // Told once the caller holds the number.
        QMetaObject::invokeMethod(
            this, [this, request] { emit failed(request, QStringLiteral("no D-Bus session bus")); },
            Qt::QueuedConnection);
        return request;
    }
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("GetCapabilities"));
    whenFinished(bus.asyncCall(call), this, [this, request, notification](const QDBusPendingCall& finished) {
        // A slow server may answer after the moment passed: then nothing is sent. A server that
        // is not there is told all the same.
        const bool cancelled = m_cancelled.remove(request);
        const QDBusPendingReply<QStringList> reply = finished;
        if (reply.isError()) {
            emit failed(request, errorText(reply.error()));
            return;
        }
        if (cancelled)
            return;
        send(request, notification, reply.value().contains(QStringLiteral("actions")));
    });
    return request;
}

void DesktopNotifications::cancel(quint64 request)
{
    if (request != 0 && request <= m_lastRequest)
        m_cancelled.insert(request);
}

void DesktopNotifications::close(quint32 id)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("CloseNotification"));
    call << id;
    QDBusConnection::sessionBus().asyncCall(call);
}

void DesktopNotifications::send(quint64 request, const Notification& notification, bool withActions)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Notify"));
    QVariantMap hints;
    // Lets the server group the notice with the program and find its name and icon.
    hints.insert(QStringLiteral("desktop-entry"), AppInfo::identifier());
    call << AppInfo::name() << quint32(0) << notification.iconName << notification.summary
         << notification.body << (withActions ? notification.actions : QStringList()) << hints << qint32(-1);
    whenFinished(QDBusConnection::sessionBus().asyncCall(call), this,
                 [this, request](const QDBusPendingCall& finished) {
                     const QDBusPendingReply<quint32> reply = finished;
                     const bool cancelled = m_cancelled.remove(request);
                     if (reply.isError()) {
                         emit failed(request, errorText(reply.error()));
                         return;
                     }
                     if (cancelled) {
                         close(reply.value());
                         return;
                     }
                     m_ids.insert(reply.value());
                     emit sent(request, reply.value());
                 });
}

void DesktopNotifications::onActionInvoked(quint32 id, const QString& actionKey)
{
    if (m_ids.contains(id))
        emit actionInvoked(id, actionKey);
}

void DesktopNotifications::onNotificationClosed(quint32 id, quint32 reason)
{
    if (m_ids.remove(id))
        emit closed(id, reason);
}
