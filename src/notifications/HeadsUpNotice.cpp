// SPDX-License-Identifier: GPL-3.0-or-later
#include "HeadsUpNotice.h"

#include "TrackedNotification.h"
#include "cycle/AppState.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>

namespace {

const QString startNowKey = QStringLiteral("start-now");
const QString postponeKey = QStringLiteral("postpone");

QString minutesText(int n)
{
    return n == 1 ? QCoreApplication::translate("HeadsUpNotice", "1 minute")
                  : QCoreApplication::translate("HeadsUpNotice", "%1 minutes").arg(n);
}

QString secondsText(int n)
{
    return n == 1 ? QCoreApplication::translate("HeadsUpNotice", "1 second")
                  : QCoreApplication::translate("HeadsUpNotice", "%1 seconds").arg(n);
}

// "2 minutes 30 seconds": minutes and seconds as a person says them, the zero part left out.
QString duration(double seconds)
{
    const int whole = int(std::lround(std::max(seconds, 1.0)));
    const int minutes = whole / 60;
    const int rest = whole % 60;
    if (minutes == 0)
        return secondsText(rest);
    if (rest == 0)
        return minutesText(minutes);
    return QCoreApplication::translate("HeadsUpNotice", "%1 %2", "minutes, then seconds")
        .arg(minutesText(minutes), secondsText(rest));
}

} // namespace

HeadsUpNotice::HeadsUpNotice(CycleEvents& events, QObject* parent)
    : QObject(parent), m_notice(new TrackedNotification(this))
{
    connect(&events, &CycleEvents::headsUpDue, this, &HeadsUpNotice::show);
    connect(&events, &CycleEvents::headsUpWithdrawn, m_notice, &TrackedNotification::withdraw);
    connect(m_notice, &TrackedNotification::failed, this, [this](const QString& why) {
        m_noServer.warning(QStringLiteral("no heads-up before breaks: the desktop shows no notifications (") +
                           why + u')');
    });
    connect(m_notice, &TrackedNotification::actionInvoked, this, [](const QString& key) {
        if (key == startNowKey) {
            CycleControl::startBreakNow();
        } else if (key == postponeKey) {
            const QString refusal = CycleControl::postpone(0);
            if (!refusal.isEmpty())
                logger().info(QStringLiteral("postpone from the heads-up refused: ") + refusal);
        }
    });
}

QString HeadsUpNotice::summary(double secondsLeft)
{
    return tr("Break in %1").arg(duration(secondsLeft));
}

QString HeadsUpNotice::body(bool longBreak, double breakSeconds)
{
    return (longBreak ? tr("A long break of %1.") : tr("A short break of %1.")).arg(duration(breakSeconds));
}

void HeadsUpNotice::show(double secondsLeft, bool longBreak)
{
    const PrefState& prefs = AppState::prefState();
    DesktopNotifications::Notification notification;
    notification.summary = summary(secondsLeft);
    notification.body = body(longBreak, longBreak ? prefs.longBreakTime() : prefs.breakTime());
    notification.iconName = QStringLiteral("org.lulltide.Lulltide");
    notification.actions = QStringList{startNowKey, tr("Start now")};
    if (CycleControl::canPostpone())
        notification.actions << postponeKey << tr("Postpone");
    m_notice->show(notification);
}
