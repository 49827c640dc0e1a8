// SPDX-License-Identifier: GPL-3.0-or-later
#include "HoldNotice.h"

#include "TrackedNotification.h"
#include "appinfo/AppInfo.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleEvents.h"
#include "cycle/TicktackController.h"
#include "logging/Logger.h"

#include <utility>

HoldNotice::HoldNotice(CycleEvents& events, QObject* parent)
    : QObject(parent), m_notice(new TrackedNotification(this))
{
    connect(&events, &CycleEvents::held, this, &HoldNotice::show);
    connect(&events, &CycleEvents::holdReleased, m_notice, &TrackedNotification::withdraw);
    connect(&events, &CycleEvents::breakStarted, m_notice, &TrackedNotification::withdraw);
    connect(m_notice, &TrackedNotification::failed, this, [this](const QString& why) {
        m_noServer.warning(
            QStringLiteral("a held break cannot be told: the desktop shows no notifications (") + why + u')');
    });
}

QString HoldNotice::body(const QString& reason, double secondsLeft)
{
    QString text = tr("The break waits while %1.").arg(reason);
    if (secondsLeft >= 0)
        text += u' ' + tr("It comes at %1 at the latest.").arg(TicktackController::clockTimeIn(secondsLeft));
    return text;
}

void HoldNotice::show(const QString& reason)
{
    DesktopNotifications::Notification notification;
    notification.iconName = AppInfo::identifier();
    notification.summary = tr("Break held");
    notification.body = body(reason, AppState::breakGate().holdSecondsLeft());
    m_notice->show(notification);
}
