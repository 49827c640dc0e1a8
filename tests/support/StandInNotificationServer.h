// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

// A desktop notification server as the real ones behave on the bus: it owns
// org.freedesktop.Notifications, answers with its capabilities, hands out ids and announces
// actions and closing. Tests use it where the desktop's server is outside the machine.
class StandInNotificationServer : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Received {
        quint32 id = 0;
        QString appName;
        quint32 replacesId = 0;
        QString appIcon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        qint32 expireTimeout = 0;
    };

    StandInNotificationServer(const QDBusConnection& connection, const QStringList& capabilities,
                              QObject* parent = nullptr);
    ~StandInNotificationServer() override;

    // Takes the server's name and path; false when another process has the name.
    bool start();
    void stop();

    // Every method call received, by name, in order.
    QStringList calls() const { return m_calls; }
    QList<Received> received() const { return m_received; }
    QList<quint32> closedIds() const { return m_closedIds; }

    // The user clicks the action `key` of notification `id`.
    void invokeAction(quint32 id, const QString& key);

    // A slow server: GetCapabilities is answered only at answerCapabilities().
    void holdCapabilities() { m_holdCapabilities = true; }
    void answerCapabilities();
    qsizetype capabilitiesWaiting() const { return m_waiting.size(); }
    // Some servers close a notification without saying so.
    void setAnnouncesClosing(bool announces) { m_announcesClosing = announces; }

public slots:
    Q_SCRIPTABLE QStringList GetCapabilities();
    Q_SCRIPTABLE quint32 Notify(const QString& appName, quint32 replacesId, const QString& appIcon,
                                const QString& summary, const QString& body, const QStringList& actions,
                                const QVariantMap& hints, qint32 expireTimeout);
    Q_SCRIPTABLE void CloseNotification(quint32 id);
    Q_SCRIPTABLE QString GetServerInformation(QString& vendor, QString& version, QString& specVersion);

signals:
    Q_SCRIPTABLE void NotificationClosed(quint32 id, quint32 reason);
    Q_SCRIPTABLE void ActionInvoked(quint32 id, const QString& actionKey);

private:
    QDBusConnection m_connection;
    QStringList m_capabilities;
    QStringList m_calls;
    QList<Received> m_received;
    QList<quint32> m_closedIds;
    quint32 m_lastId = 0;
    bool m_started = false;
    bool m_holdCapabilities = false;
    bool m_announcesClosing = true;
    QList<QDBusMessage> m_waiting;
};
