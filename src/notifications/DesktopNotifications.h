// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QSet>
#include <QStringList>

// The desktop's notification server on the session bus (org.freedesktop.Notifications). Nothing
// blocks: every answer comes back as a signal. Only our own notifications are reported, since
// the server announces the actions and closing of every client's.
class DesktopNotifications : public QObject {
    Q_OBJECT

public:
    struct Notification {
        QString summary;
        QString body;
        QString iconName;
        // Pairs of an action's key and its label. Left out where the server cannot show actions.
        QStringList actions;
    };

    explicit DesktopNotifications(QObject* parent = nullptr);

    // Asks the server for its capabilities, then shows the notification: sent() or failed()
    // with the number returned here.
    quint64 notify(const Notification& notification);
    // The notification of `request` is no longer wanted: it is not sent when it has not gone
    // yet, and closed as soon as the server names it when it has.
    void cancel(quint64 request);
    void close(quint32 id);

signals:
    void sent(quint64 request, quint32 id);
    // No server answers, or it refused the notification; `why` is the bus's error.
    void failed(quint64 request, const QString& why);
    void actionInvoked(quint32 id, const QString& actionKey);
    void closed(quint32 id, quint32 reason);

private slots:
    void onActionInvoked(quint32 id, const QString& actionKey);
    void onNotificationClosed(quint32 id, quint32 reason);

private:
    void send(quint64 request, const Notification& notification, bool withActions);

    QSet<quint32> m_ids;
    QSet<quint64> m_cancelled;
    quint64 m_lastRequest = 0;
};
