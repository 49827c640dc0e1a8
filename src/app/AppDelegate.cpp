// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppDelegate.h"

#include "AppState.h"
#include "break/WindowController.h"
#include "events/SystemEventController.h"
#include "logging/Logger.h"
#include "statusbar/StatusBarController.h"

#include <QDir>

AppDelegate::AppDelegate(QObject* parent) : QObject(parent) {}

void AppDelegate::applicationDidFinishLaunching()
{
    // Starts the first work period and labels the pause entry.
    AppState::setWorking(true);
    WindowController::setup();
    StatusBarController::item();
    SystemEventController::setup();
    logger().info(QStringLiteral("sandbox home path: ") + QDir::homePath());
}

void AppDelegate::applicationWillTerminate() {}
