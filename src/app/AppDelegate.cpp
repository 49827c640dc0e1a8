// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppDelegate.h"

#include "break/BreakScreenProcess.h"
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
#include <cstdlib>
#include <utility>

namespace {

AppDelegate* launchedDelegate = nullptr;

// Qt and Xlib end the program with exit() from inside the event loop when the X server goes
// away: the run is closed as a quit closes it (the windows went with the server).
void endedOutsideTheEventLoop()
{
    if (AppDelegate* delegate = std::exchange(launchedDelegate, nullptr)) {
        logger().warning(QStringLiteral("the display connection is gone: Lulltide ends"));
        delegate->applicationWillTerminate();
    }
}

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

AppDelegate::~AppDelegate()
{
    if (launchedDelegate == this)
        launchedDelegate = nullptr;
}

void AppDelegate::applicationDidFinishLaunching()
{
    QObject* owner = QCoreApplication::instance();
    // Without a program of their own (the tests) the break windows are the ones installed.
    if (!m_breakScreenProgram.isEmpty())
        (new BreakScreenProcess(m_breakScreenProgram, owner))->install();
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
    // Registered last: exit() runs it before taking down what was made up to here (the log, the
    // history file, the settings), which it needs.
    if (!launchedDelegate) {
        launchedDelegate = this;
        std::atexit(endedOutsideTheEventLoop);
    }
}

void AppDelegate::applicationWillTerminate()
{
    if (launchedDelegate == this)
        launchedDelegate = nullptr;
    CycleControl::stop();
    // Written at every change already; a write the system still holds goes to the disk now.
    SettingsStore::save();
    Observers& parts = observers();
    SettingsWindow::setHistoryStore(nullptr);
    delete std::exchange(parts.history, nullptr);
}
