// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppDelegate.h"

#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/SystemEventController.h"
#include "history/History.h"
#include "logging/Logger.h"
#include "notifications/HeadsUpNotice.h"
#include "notifications/HoldNotice.h"
#include "preferences/SettingsStore.h"
#include "settings/SettingsWindow.h"
#include "statusbar/StatusBarController.h"

#include <QCoreApplication>
#include <QDir>
#include <utility>

namespace {

// The parts that observe the cycle live as long as the run, whichever delegate made them; the
// history file is closed by the quit path, never by a destructor after main() (the database
// driver is gone by then).
struct Observers {
    History* history = nullptr;
};

Observers& observers()
{
    static Observers parts;
    return parts;
}

} // namespace

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    QObject* owner = QCoreApplication::instance();
    WindowController::install();
    Observers& parts = observers();
    if (!parts.history) {
        // Follows the cycle from its first work period on.
        parts.history = new History(AppState::events());
        SettingsWindow::setHistoryStore(&parts.history->store());
        new HeadsUpNotice(AppState::events(), owner);
        new HoldNotice(AppState::events(), owner);
    }
    // The gate lets each due break start, from the first period on.
    AppState::breakGate();
    // Starts the first work period and labels the pause entry.
    AppState::setWorking(true);
    SettingsWindow::setup();
    StatusBarController::item();
    SystemEventController::setup();
    logger().info(QStringLiteral("sandbox home path: ") + QDir::homePath());
}

void AppDelegate::applicationWillTerminate()
{
    CycleControl::stop();
    // Written at every change already; a write the system still holds goes to the disk now.
    SettingsStore::save();
    Observers& parts = observers();
    SettingsWindow::setHistoryStore(nullptr);
    delete std::exchange(parts.history, nullptr);
}
