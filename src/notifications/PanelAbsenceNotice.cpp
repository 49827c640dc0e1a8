// SPDX-License-Identifier: GPL-3.0-or-later
#include "PanelAbsenceNotice.h"

#include "TrackedNotification.h"
#include "appinfo/AppInfo.h"
#include "cycle/AppState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"
#include "logging/SaidOnce.h"
#include "preferences/PrefState.h"
#include "settings/SettingsWindow.h"

#include <QCoreApplication>
#include <QSet>
#include <QSystemTrayIcon>
#include <QTimer>
#include <utility>

namespace PanelAbsenceNotice {
namespace {

const QString settingsAction = QStringLiteral("settings");
// At login we may start a few seconds before the panel does; it gets that long to take the item
// before we tell anyone that nothing shows it. LULLTIDE_PANEL_GRACE_MS shortens it for tests.
int graceMs()
{
    bool ok = false;
    const int given = qEnvironmentVariableIntValue("LULLTIDE_PANEL_GRACE_MS", &ok);
    return ok && given >= 0 && given <= 60000 ? given : 10000;
}

TrackedNotification* tracker = nullptr;
QTimer* graceTimer = nullptr;
bool sending = false;
SaidOnce failure;

// The clock time the running work countdown ends at; empty when none runs.
QString nextBreakTime()
{
    const TicktackState& work = AppState::workState();
    if (!AppState::working() || work.timesUp() || !(work.secondsLeft() > 0))
        return {};
    return TicktackController::clockTimeIn(work.secondsLeft());
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

TrackedNotification& tracked()
{
    if (tracker)
        return *tracker;
    tracker = new TrackedNotification(qApp);
    QObject::connect(tracker, &TrackedNotification::shown, [] {
        sending = false;
        AppState::prefState().setToldNoPanel(true);
        logger().info(QStringLiteral("a desktop notification told where Lulltide is"));
    });
    QObject::connect(tracker, &TrackedNotification::failed, [](const QString& why) {
        sending = false;
        failure.warning(QStringLiteral("no desktop notification can tell where Lulltide is: ") + why);
    });
    QObject::connect(tracker, &TrackedNotification::actionInvoked, [](const QString& actionKey) {
        // A click on the notice itself asks for the same as its button.
        if (actionKey == settingsAction || actionKey == QLatin1String("default"))
            SettingsWindow::show();
    });
    return *tracker;
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
    tried = true;
    sending = true;
    tracked().show(notice());
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
        graceTimer->setInterval(graceMs());
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
    if (tracker)
        tracker->withdraw();
}

} // namespace PanelAbsenceNotice
