// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppControl.h"

#include "AppState.h"
#include "BreakGate.h"
#include "break/PromptState.h"
#include "break/WindowController.h"
#include "history/HistoryRecorder.h"
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

QString originName(Origin origin)
{
    switch (origin) {
    case Origin::Menu:
        return QStringLiteral("menu");
    case Origin::MiddleClick:
        return QStringLiteral("middle_click");
    case Origin::Bus:
        return QStringLiteral("bus");
    case Origin::Other:
        break;
    }
    return QStringLiteral("other");
}

void pause(Origin origin)
{
    if (!AppState::manualPause()) {
        HistoryRecorder::instance().paused(originName(origin));
        AppState::setManualPause(true);
    }
    closeBreakShown(QStringLiteral("paused during a break: closing the break windows"));
}

void resume(Origin origin)
{
    if (!AppState::manualPause() && AppState::working())
        return;
    HistoryRecorder::instance().resumed(originName(origin));
    closeBreakShown(QStringLiteral("resumed during a break: closing the break windows"));
    AppState::setManualPause(false);
}

void togglePause(Origin origin)
{
    if (AppState::manualPause())
        resume(origin);
    else
        pause(origin);
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
