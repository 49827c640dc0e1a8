// SPDX-License-Identifier: GPL-3.0-or-later
#include "CycleControl.h"

#include "AppState.h"
#include "BreakGate.h"
#include "BreakScreen.h"
#include "PromptState.h"
#include "TicktackState.h"
#include "logging/Logger.h"

namespace CycleControl {

Status status()
{
    Status status;
    status.working = AppState::working();
    status.manualPause = AppState::manualPause();
    status.inBreak = AppState::breakScreen().isShown();
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
    if (!AppState::breakScreen().isShown())
        return;
    logger().info(why);
    AppState::breakScreen().close();
}

} // namespace

void pause(Origin origin)
{
    if (!AppState::manualPause()) {
        emit AppState::events().paused(origin);
        AppState::setManualPause(true);
    }
    closeBreakShown(QStringLiteral("paused during a break: closing the break windows"));
}

void resume(Origin origin)
{
    if (!AppState::manualPause() && AppState::working())
        return;
    emit AppState::events().resumed(origin);
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
    if (!AppState::breakScreen().isShown() || !AppState::promptState().showSkipButton())
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

bool canPostpone()
{
    return AppState::breakGate().postponeWouldMove();
}

void stop()
{
    emit AppState::events().stopped();
}

} // namespace CycleControl
