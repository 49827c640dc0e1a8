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

    // Asks the server for its capabilities once, then shows the notification: sent() or failed().
    void notify(const Notification& notification);
    void close(quint32 id);

signals:
    void sent(quint32 id);
    // No server answers, or it refused the notification; `why` is the bus's error.
    void failed(const QString& why);
    void actionInvoked(quint32 id, const QString& actionKey);
    void closed(quint32 id, quint32 reason);

private slots:
    void onActionInvoked(quint32 id, const QString& actionKey);
    void onNotificationClosed(quint32 id, quint32 reason);

private:
    void send(const Notification& notification, bool withActions);

    QSet<quint32> m_ids;
};
