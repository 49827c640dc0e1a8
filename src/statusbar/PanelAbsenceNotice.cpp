// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelAbsenceNotice.h"

#include "AppInfo.h"
#include "DesktopNotifications.h"
#include "app/AppControl.h"
#include "app/AppState.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <QSystemTrayIcon>
#include <QTimer>

namespace PanelAbsenceNotice {
namespace {

const QString settingsAction = QStringLiteral("settings");
// At login we may start a few seconds before the panel does; it gets that long to take the item
// before we tell anyone that nothing shows it.
constexpr int graceMs = 10000;

DesktopNotifications* notifications = nullptr;
QTimer* graceTimer = nullptr;
bool sending = false;
bool failureLogged = false;
quint32 shownId = 0;

// The clock time the running work countdown ends at; empty when none runs.
QString nextBreakTime()
{
    const TicktackState& work = AppState::workState();
    if (AppState::manualPause() || work.timesUp())
        return {};
    // "25:00", or "0100:00" past an hour.
    const QString text = work.timeString();
    const qsizetype colon = text.lastIndexOf(u':');
    bool minutesOk = false;
    bool secondsOk = false;
    const qint64 minutes = text.left(colon).toLongLong(&minutesOk);
    const qint64 seconds = text.mid(colon + 1).toLongLong(&secondsOk);
    if (colon < 0 || !minutesOk || !secondsOk || minutes < 0 || minutes > 100000)
        return {};
    const QDateTime end = QDateTime::currentDateTime().addSecs(minutes * 60 + seconds);
    // To the minute: some locales' short format carries seconds, which only look precise.
    QString format = QLocale().timeFormat(QLocale::ShortFormat);
    format.remove(QRegularExpression(QStringLiteral("[:.]ss?")));
    return QLocale().toString(end.time(), format);
}

DesktopNotifications::Notification notice()
{
    DesktopNotifications::Notification notification;
    notification.iconName = AppInfo::identifier();
    notification.summary = QCoreApplication::translate("PanelAbsenceNotice", "Lulltide is running");
    const QString time = nextBreakTime();
    if (!time.isEmpty())
        notification.body =
            QCoreApplication::translate("PanelAbsenceNotice", "The next break comes at %1.").arg(time) +
            u'\n';
    notification.body += QCoreApplication::translate(
        "PanelAbsenceNotice",
        "No panel on this desktop can show Lulltide. Open Lulltide from the application menu to "
        "reach its settings. On GNOME, the \"AppIndicator and KStatusNotifierItem Support\" "
        "extension shows its countdown in the top bar.");
    notification.actions = {settingsAction, QCoreApplication::translate("PanelAbsenceNotice", "Settings")};
    return notification;
}

void makeNotifications()
{
    notifications = new DesktopNotifications(qApp);
    QObject::connect(notifications, &DesktopNotifications::sent, [](quint32 id) {
        sending = false;
        shownId = id;
        AppState::prefState().setToldNoPanel(true);
        logger().info(QStringLiteral("a desktop notification told where Lulltide is"));
    });
    QObject::connect(notifications, &DesktopNotifications::failed, [](const QString& why) {
        sending = false;
        if (failureLogged)
            return;
        failureLogged = true;
        logger().warning(QStringLiteral("no desktop notification can tell where Lulltide is: ") + why);
    });
    QObject::connect(notifications, &DesktopNotifications::actionInvoked,
                     [](quint32, const QString& actionKey) {
                         // A click on the notice itself asks for the same as its button.
                         if (actionKey == settingsAction || actionKey == QLatin1String("default"))
                             AppControl::showSettings();
                     });
    QObject::connect(notifications, &DesktopNotifications::closed, [](quint32 id) {
        if (id == shownId)
            shownId = 0;
    });
}

void tell()
{
    // One try a run: a panel that comes and goes all day must not bring a notice each time, and
    // a try that found no server is made again at the next start.
    static bool tried = false;
    if (tried || sending || AppState::prefState().toldNoPanel())
        return;
    // An XEmbed tray that came meanwhile already holds the item.
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        panelFound();
        return;
    }
    if (!notifications)
        makeNotifications();
    tried = true;
    sending = true;
    notifications->notify(notice());
}

} // namespace

void noStatusNotifierPanel(const QString& why)
{
    // Each finding once: a panel that restarts again and again must not fill the log.
    static QSet<QString> told;
    const auto tellOnce = [](const QString& line) {
        if (!told.contains(line))
            logger().info(line);
        told.insert(line);
    };
    if (QSystemTrayIcon::isSystemTrayAvailable()) {
        tellOnce(why + QStringLiteral(": the panel shows a tray icon without the countdown"));
        panelFound();
        return;
    }
    tellOnce(why + QStringLiteral(" and no system tray: nothing in the panel shows Lulltide"));
    if (AppState::prefState().toldNoPanel())
        return;
    if (!graceTimer) {
        graceTimer = new QTimer(qApp);
        graceTimer->setSingleShot(true);
        graceTimer->setInterval(graceMs);
        QObject::connect(graceTimer, &QTimer::timeout, tell);
    }
    graceTimer->start();
}

void panelFound()
{
    if (graceTimer && graceTimer->isActive()) {
        graceTimer->stop();
        logger().info(QStringLiteral("a panel took the item in time: no notice needed"));
    }
    if (AppState::prefState().toldNoPanel())
        AppState::prefState().setToldNoPanel(false);
    if (notifications && shownId != 0) {
        notifications->close(shownId);
        shownId = 0;
    }
}

} // namespace PanelAbsenceNotice
