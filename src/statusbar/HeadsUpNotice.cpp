// SPDX-License-Identifier: GPL-3.0-or-later
#include "HeadsUpNotice.h"

#include "DesktopNotifications.h"
#include "app/AppControl.h"
#include "app/AppState.h"
#include "app/BreakGate.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <utility>

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

HeadsUpNotice::HeadsUpNotice(BreakGate& gate, QObject* parent) : QObject(parent), m_gate(gate)
{
    connect(&gate, &BreakGate::headsUpDue, this, &HeadsUpNotice::show);
    connect(&gate, &BreakGate::headsUpWithdrawn, this, &HeadsUpNotice::withdraw);
}

QString HeadsUpNotice::summary(double secondsLeft)
{
    return tr("Break in %1").arg(duration(secondsLeft));
}

QString HeadsUpNotice::body(bool longBreak, double breakSeconds)
{
    return (longBreak ? tr("A long break of %1.") : tr("A short break of %1.")).arg(duration(breakSeconds));
}

DesktopNotifications& HeadsUpNotice::notifications()
{
    if (m_notifications)
        return *m_notifications;
    m_notifications = new DesktopNotifications(this);
    connect(m_notifications, &DesktopNotifications::sent, this, [this](quint32 id) {
        m_sending = false;
        m_shownId = id;
        if (std::exchange(m_withdrawnWhileSending, false))
            withdraw();
    });
    connect(m_notifications, &DesktopNotifications::failed, this, [this](const QString& why) {
        m_sending = false;
        m_withdrawnWhileSending = false;
        if (std::exchange(m_toldNoServer, true))
            return;
        logger().warning(QStringLiteral("no heads-up before breaks: the desktop shows no notifications (") +
                         why + u')');
    });
    connect(m_notifications, &DesktopNotifications::actionInvoked, this, [](quint32, const QString& key) {
        if (key == startNowKey) {
            AppControl::startBreakNow();
        } else if (key == postponeKey) {
            const QString refusal = AppControl::postpone(0);
            if (!refusal.isEmpty())
                logger().info(QStringLiteral("postpone from the heads-up refused: ") + refusal);
        }
    });
    connect(m_notifications, &DesktopNotifications::closed, this, [this](quint32 id) {
        if (id == m_shownId)
            m_shownId = 0;
    });
    return *m_notifications;
}

void HeadsUpNotice::show(double secondsLeft, bool longBreak)
{
    const PrefState& prefs = AppState::prefState();
    DesktopNotifications::Notification notification;
    notification.summary = summary(secondsLeft);
    notification.body = body(longBreak, longBreak ? prefs.longBreakTime() : prefs.breakTime());
    notification.iconName = QStringLiteral("org.lulltide.Lulltide");
    notification.actions = QStringList{startNowKey, tr("Start now")};
    if (m_gate.postponeAllowed())
        notification.actions << postponeKey << tr("Postpone");
    withdraw();
    m_sending = true;
    notifications().notify(notification);
}

void HeadsUpNotice::withdraw()
{
    if (m_sending) {
        m_withdrawnWhileSending = true;
        return;
    }
    if (m_shownId == 0)
        return;
    notifications().close(std::exchange(m_shownId, 0));
}
