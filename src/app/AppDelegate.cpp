// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppDelegate.h"

#include "AppState.h"
#include "break/WindowController.h"
#include "events/SystemEventController.h"
#include "history/HistoryRecorder.h"
#include "logging/Logger.h"
#include "statusbar/StatusBarController.h"

#include <QDir>

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) {}

void AppDelegate::applicationDidFinishLaunching()
{
    // Follows the cycle from its first work period on.
    HistoryRecorder::instance().start();
    // Starts the first work period and labels the pause entry.
    AppState::setWorking(true);
    WindowController::setup();
    StatusBarController::item();
    SystemEventController::setup();
    logger().info(QStringLiteral("sandbox home path: ") + QDir::homePath());
}

void AppDelegate::applicationWillTerminate()
{
    HistoryRecorder::instance().stopped();
}
