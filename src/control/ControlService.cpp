// SPDX-License-Identifier: GPL-3.0-or-later
#include "ControlService.h"

#include "Config.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleEvents.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"
#include "settings/SettingsWindow.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

const QString ControlService::serviceName = QString::fromUtf8(Config::appId);
const QString ControlService::objectPath = QStringLiteral("/org/lulltide/Lulltide");
const QString ControlService::interfaceName = QStringLiteral("org.lulltide.Lulltide");
const QString ControlService::cannotSkipError = QStringLiteral("org.lulltide.Lulltide.Error.CannotSkip");
const QString ControlService::cannotPostponeError =
    QStringLiteral("org.lulltide.Lulltide.Error.CannotPostpone");

ControlService::ControlService(QDBusConnection connection, QObject* parent)
    : QObject(parent), m_connection(std::move(connection)), m_announced(CycleControl::status()),
      m_announcedStatus(CycleControl::statusLine(m_announced))
{
    m_countdownPending.setSingleShot(true);
    connect(&m_countdownPending, &QTimer::timeout, this, &ControlService::announce);
    connect(&AppState::events(), &CycleEvents::changed, this, &ControlService::announce);
    connect(&AppState::workState(), &TicktackState::timeStringChanged, this, &ControlService::announce);
    connect(&AppState::breakState(), &TicktackState::timeStringChanged, this, &ControlService::announce);
    connect(&AppState::breakGate(), &BreakGate::changed, this, &ControlService::announce);
}

ControlService::Claim ControlService::claim()
{
    if (!m_connection.isConnected())
        return Claim::NoBus;
    // The object first: whoever sees the name can call it at once.
    if (!m_connection.registerObject(objectPath, this,
                                     QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSlots))
        return Claim::AlreadyRunning;
    const auto reply =
        m_connection.interface()->registerService(serviceName, QDBusConnectionInterface::DontQueueService,
                                                  QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid())
        return Claim::NoBus;
    if (reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        m_connection.unregisterObject(objectPath);
        return Claim::AlreadyRunning;
    }
    // The bus library tells a lost connection with this signal of its own, on no real path.
    m_connection.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                         SLOT(sessionBusLost()));
    return Claim::Owned;
}

void ControlService::Skip()
{
    const bool inBreak = CycleControl::status().inBreak;
    if (CycleControl::skip() || !inBreak || !calledFromDBus())
        return;
    sendErrorReply(cannotSkipError, QStringLiteral("This break cannot be skipped: long breaks are forced."));
}

void ControlService::Postpone(uint minutes)
{
    QString refusal;
    if (minutes > maxPostponeMinutes)
        refusal =
            QCoreApplication::translate("ControlService", "A break can be postponed by at most %1 minutes.")
                .arg(maxPostponeMinutes);
    else
        refusal = CycleControl::postpone(minutes);
    if (!refusal.isEmpty() && calledFromDBus())
        sendErrorReply(cannotPostponeError, refusal);
}

void ControlService::sessionBusLost()
{
    logger().warning(
        QStringLiteral("lost the D-Bus session bus: the desktop session is over, Lulltide ends"));
    QCoreApplication::exit(1);
}

void ControlService::announce()
{
    const CycleControl::Status now = CycleControl::status();
    QVariantMap changed;
    if (now.working != m_announced.working)
        changed.insert(QStringLiteral("Working"), now.working);
    if (now.manualPause != m_announced.manualPause)
        changed.insert(QStringLiteral("ManualPause"), now.manualPause);
    if (now.inBreak != m_announced.inBreak)
        changed.insert(QStringLiteral("InBreak"), now.inBreak);

    // The status line moves with the countdown, and at once when the state itself changed.
    const QString status = CycleControl::statusLine(now);
    if (!changed.isEmpty() && status != m_announcedStatus)
        changed.insert(QStringLiteral("Status"), status);
    const bool countdownChanged =
        now.workTimeString != m_announced.workTimeString ||
        now.breakTimeString != m_announced.breakTimeString ||
        (status != m_announcedStatus && !changed.contains(QStringLiteral("Status")));
    if (countdownChanged) {
        const qint64 since = m_sinceCountdown.isValid() ? m_sinceCountdown.elapsed() : countdownInterval;
        if (since >= countdownInterval - countdownSlack) {
            if (now.workTimeString != m_announced.workTimeString)
                changed.insert(QStringLiteral("WorkTimeString"), now.workTimeString);
            if (now.breakTimeString != m_announced.breakTimeString)
                changed.insert(QStringLiteral("BreakTimeString"), now.breakTimeString);
            if (status != m_announcedStatus)
                changed.insert(QStringLiteral("Status"), status);
            m_sinceCountdown.start();
            m_countdownPending.stop();
        } else if (!m_countdownPending.isActive()) {
            // Said a little after the next regular tick would be: that tick, when it comes,
            // says it in passing and keeps the announcements in step with the ticks (one
            // wake-up a second, not two); when none comes, this does.
            m_countdownPending.start(countdownInterval + countdownSlack);
        }
    }
    if (changed.isEmpty())
        return;

    if (changed.contains(QStringLiteral("Working")))
        m_announced.working = now.working;
    if (changed.contains(QStringLiteral("ManualPause")))
        m_announced.manualPause = now.manualPause;
    if (changed.contains(QStringLiteral("InBreak")))
        m_announced.inBreak = now.inBreak;
    if (changed.contains(QStringLiteral("WorkTimeString")))
        m_announced.workTimeString = now.workTimeString;
    if (changed.contains(QStringLiteral("BreakTimeString")))
        m_announced.breakTimeString = now.breakTimeString;
    if (changed.contains(QStringLiteral("Status")))
        m_announcedStatus = status;

    QDBusMessage signal = QDBusMessage::createSignal(
        objectPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("PropertiesChanged"));
    signal << interfaceName << changed << QStringList();
    m_connection.send(signal);
}

void ControlService::ShowSettings()
{
    SettingsWindow::show();
}

void ControlService::Quit()
{
    // After the reply is sent: the caller hears that the request was taken.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}
