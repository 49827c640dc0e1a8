// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DesktopNotifications.h"

#include <QObject>

// One notification of ours on the desktop at a time, followed by its id: a new one replaces
// the last, a withdrawn one goes even when it is still on its way to the server, and only the
// actions of the one still shown are reported. The bus is first used by the first show().
class TrackedNotification : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    void show(const DesktopNotifications::Notification& notification);
    void withdraw();
    bool isShown() const { return m_shownId != 0; }

signals:
    void shown();
    // No server, or it refused; `why` is the bus's error.
    void failed(const QString& why);
    // A button of the notification on the screen (or "default", a click on it).
    void actionInvoked(const QString& actionKey);

private:
    DesktopNotifications& bus();

    DesktopNotifications* m_bus = nullptr;
    // The request on its way to the server, and the notification it became.
    quint64 m_pending = 0;
    quint32 m_shownId = 0;
};
