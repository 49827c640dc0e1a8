// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppControl.h"

#include "AppState.h"
#include "BreakGate.h"
#include "break/PromptState.h"
#include "break/WindowController.h"
#include "logging/Logger.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>
#include <QTimer>

namespace AppControl {

Status status()
{
    Status status;
    status.working = AppState::working();
    status.manualPause = AppState::manualPause();
    status.inBreak = WindowController::isBreakShown();
    status.held = AppState::breakGate().held();
    if (status.held)
        status.heldTimeString = AppState::breakGate().heldTimeString();
    status.workTimeString = AppState::workState().timeString();
    status.breakTimeString = AppState::breakState().timeString();
    return status;
}

QString statusLine(const Status& status)
{
    if (status.inBreak)
        return QStringLiteral("break ") + status.breakTimeString;
    if (status.manualPause)
        return QStringLiteral("paused");
    if (status.held)
        return QStringLiteral("held ") + status.heldTimeString;
    if (status.working)
        return QStringLiteral("working ") + status.workTimeString;
    return QStringLiteral("stopped");
}

namespace {

// A break screen left up while the cycle is paused, or behind a fresh work period, would stand
// still over every monitor with nothing to end it.
void closeBreakShown(const QString& why)
{
    if (!WindowController::isBreakShown())
        return;
    logger().info(why);
    WindowController::closeBreak();
}

} // namespace

void pause()
{
    if (!AppState::manualPause())
        AppState::setManualPause(true);
    closeBreakShown(QStringLiteral("paused during a break: closing the break windows"));
}

void resume()
{
    if (!AppState::manualPause() && AppState::working())
        return;
    closeBreakShown(QStringLiteral("resumed during a break: closing the break windows"));
    AppState::setManualPause(false);
}

void togglePause()
{
    if (AppState::manualPause())
        resume();
    else
        pause();
}

bool skip()
{
    if (!WindowController::isBreakShown() || !AppState::promptState().showSkipButton())
        return false;
    AppState::promptState().skip();
    return true;
}

QString postpone(double minutes)
{
    return AppState::breakGate().postpone(minutes * 60.0);
}

void startBreakNow()
{
    AppState::breakGate().startNow();
}

void showSettings()
{
    WindowController::showPrefView();
}

void quit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

} // namespace AppControl
