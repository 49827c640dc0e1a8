// SPDX-License-Identifier: GPL-3.0-or-later
#include "ScreenLockMonitor.h"

#include "logging/Logger.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <unistd.h>

namespace {

const QString login1 = QStringLiteral("org.freedesktop.login1");
const QString login1Path = QStringLiteral("/org/freedesktop/login1");
const QString managerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString sessionInterface = QStringLiteral("org.freedesktop.login1.Session");
// The sources of login1; a screensaver is known by its interface's name.
const QString loginSession = QStringLiteral("login1 session");
const QString machineAsleep = QStringLiteral("sleep");

} // namespace

ScreenLockMonitor::ScreenLockMonitor(QObject* parent) : QObject(parent) {}

void ScreenLockMonitor::start()
{
    const bool session = listenOnSessionBus();
    const bool system = listenOnSystemBus();
    if (!session && !system)
        logger().info(QStringLiteral("no D-Bus: Lulltide does not notice when the screen locks"));
}

bool ScreenLockMonitor::listenOnSessionBus()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    // Any sender and any path: screensavers differ in where they put the object.
    for (const char* screenSaver : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                    "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver"})
        bus.connect(QString(), QString(), QString::fromLatin1(screenSaver), QStringLiteral("ActiveChanged"),
                    this, SLOT(screenSaverActiveChanged(bool, QDBusMessage)));
    return true;
}

bool ScreenLockMonitor::listenOnSystemBus()
{
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return false;
    bus.connect(login1, login1Path, managerInterface, QStringLiteral("PrepareForSleep"), this,
                SLOT(prepareForSleep(bool)));

    // The session this process belongs to; asked without waiting, logind may be slow to start.
    QDBusMessage call = QDBusMessage::createMethodCall(login1, login1Path, managerInterface,
                                                       QStringLiteral("GetSessionByPID"));
    call << quint32(::getpid());
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *watcher;
        if (reply.isError()) {
            logger().info(QStringLiteral("no login session of this process: ") + reply.error().message());
            return;
        }
        listenToSession(reply.value().path());
    });
    return true;
}

void ScreenLockMonitor::listenToSession(const QString& sessionPath)
{
    QDBusConnection bus = QDBusConnection::systemBus();
    bus.connect(login1, sessionPath, sessionInterface, QStringLiteral("Lock"), this, SLOT(sessionLocked()));
    bus.connect(login1, sessionPath, sessionInterface, QStringLiteral("Unlock"), this,
                SLOT(sessionUnlocked()));
    bus.connect(login1, sessionPath, QStringLiteral("org.freedesktop.DBus.Properties"),
                QStringLiteral("PropertiesChanged"), this,
                SLOT(sessionPropertiesChanged(QString, QVariantMap, QStringList)));
}

void ScreenLockMonitor::report(const QString& source, bool locked)
{
    if (locked)
        m_lockedSources.insert(source);
    else
        m_lockedSources.remove(source);
    const State now = m_lockedSources.isEmpty() ? State::Unlocked : State::Locked;
    if (now == m_state)
        return;
    m_state = now;
    if (now == State::Locked)
        emit this->locked();
    else
        emit unlocked();
}

void ScreenLockMonitor::screenSaverActiveChanged(bool active, const QDBusMessage& message)
{
    report(message.interface(), active);
}

// Lock and Unlock ask the session's locker to act; LockedHint is the locker's own word. One
// source for all three, so an unlock by password (which brings no Unlock) still clears a Lock.
void ScreenLockMonitor::sessionLocked()
{
    report(loginSession, true);
}

void ScreenLockMonitor::sessionUnlocked()
{
    report(loginSession, false);
}

void ScreenLockMonitor::sessionPropertiesChanged(const QString& interface, const QVariantMap& changed,
                                                 const QStringList&)
{
    if (interface == sessionInterface && changed.contains(QStringLiteral("LockedHint")))
        report(loginSession, changed.value(QStringLiteral("LockedHint")).toBool());
}

void ScreenLockMonitor::prepareForSleep(bool sleeping)
{
    report(machineAsleep, sleeping);
}
