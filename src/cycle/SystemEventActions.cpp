// SPDX-License-Identifier: GPL-3.0-or-later
#include "SystemEventActions.h"

#include "AppState.h"
#include "BreakScreen.h"
#include "CycleEvents.h"
#include "PromptState.h"
#include "SystemEventController.h"
#include "WorkItem.h"
#include "events/ChineseDate.h"
#include "preferences/PrefState.h"

#include <QCoreApplication>
#include <QDateTime>

namespace SystemEventActions {
namespace {

double secondsNow()
{
    return double(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

} // namespace

bool isNewDay(double lastLock, double now)
{
    return !(ChineseDate::of(lastLock) == ChineseDate::of(now));
}

void didLockScreenShow()
{
    PrefState& prefs = AppState::prefState();
    emit AppState::events().locked(prefs.restartTimerAfterAwake());
    if (prefs.showNewDayTip())
        prefs.setLastWeakupTimestamp(secondsNow());
    if (prefs.restartTimerAfterAwake()) {
        AppState::setStopCause(AppState::StopCause::Lock);
        AppState::setWorking(false);
        AppState::breakScreen().close();
    }
}

void didLockScreenDismiss()
{
    emit AppState::events().unlocked();
    PrefState& prefs = AppState::prefState();
    bool newDay = false;
    if (prefs.showNewDayTip()) {
        newDay = isNewDay(prefs.lastWeakupTimestamp(), secondsNow());
        if (newDay)
            AppState::promptState().showNewDay();
        // Every unlock starts the rotation afresh while the greeting is on, new day or not.
        AppState::promptState().resetShortBreakTimes();
    }
    if (!newDay && prefs.restartTimerAfterAwake() && !AppState::manualPause())
        AppState::setWorking(true);
}

void onTrigger()
{
    if (!AppState::prefState().stopTimerAfterMouseStop())
        return;
    if (!AppState::manualPause() && !AppState::working()) {
        if (AppState::stopCause() == AppState::StopCause::Idle)
            emit AppState::events().idleRestarted();
        AppState::setWorking(true);
    }

    const auto timeout = SystemEventController::idleItemDelay();
    // Pointer events come by the hundred each second: a pending timeout is moved, not rebuilt.
    const auto pending = AppState::mouseMoveEventItem();
    if (pending && !pending->isCancelled() && !pending->hasRun()) {
        pending->postpone(timeout);
        return;
    }
    AppState::setMouseMoveEventItem(WorkItem::schedule(timeout, [] {
        // Posted rather than done here: once the timeout has begun, a cancel no longer holds
        // the stop back.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [] {
                // Paused by hand or locked, the cycle had stopped already.
                if (AppState::working())
                    emit AppState::events().idleStopped();
                AppState::setStopCause(AppState::StopCause::Idle);
                AppState::setWorking(false);
            },
            Qt::QueuedConnection);
    }));
}

} // namespace SystemEventActions
