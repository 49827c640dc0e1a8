// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppState.h"

#include "BreakGate.h"
#include "StateChanges.h"
#include "WorkItem.h"
#include "break/PromptState.h"
#include "preferences/PrefState.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"
#include "timer/TicktackController.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>

namespace AppState {
namespace {
bool manualPauseValue = false;
bool workingValue = true;
StopCause stopCauseValue = StopCause::None;
std::shared_ptr<WorkItem> pendingIdleItem;
} // namespace

bool manualPause()
{
    return manualPauseValue;
}

void setManualPause(bool manualPause)
{
    manualPauseValue = manualPause;
    if (manualPause)
        stopCauseValue = StopCause::Pause;
    setWorking(!manualPauseValue);
}

StopCause stopCause()
{
    return stopCauseValue;
}

void setStopCause(StopCause cause)
{
    stopCauseValue = cause;
}

bool working()
{
    return workingValue;
}

void setWorking(bool working)
{
    workingValue = working;

    QString image;
    QString title;
    if (workingValue) {
        stopCauseValue = StopCause::None;
        TicktackController::work(prefState().workTime());
        image = QStringLiteral("stop.circle");
        title = QCoreApplication::translate("AppState", "- Stop -");
    } else {
        TicktackController::stop();
        image = QStringLiteral("play.circle");
        // Spelled so on purpose: users know the entry by this text.
        title = QCoreApplication::translate("AppState", "- Wrok -");
    }

    if (StatusMenuItem* item = StatusBarController::menu().itemWithTag(pauseItemTag)) {
        item->setImage(image);
        item->setTitle(title);
    }
    emit changes().changed();
}

std::shared_ptr<WorkItem> mouseMoveEventItem()
{
    return pendingIdleItem;
}

void setMouseMoveEventItem(std::shared_ptr<WorkItem> item)
{
    pendingIdleItem = std::move(item);
}

StateChanges& changes()
{
    static StateChanges* notifier = new StateChanges;
    return *notifier;
}

BreakGate& breakGate()
{
    static BreakGate* gate = new BreakGate;
    return *gate;
}

PromptState& promptState()
{
    static PromptState* state = new PromptState;
    return *state;
}

PrefState& prefState()
{
    static PrefState* state = new PrefState;
    return *state;
}

TicktackState& workState()
{
    static TicktackState* state = new TicktackState;
    return *state;
}

TicktackState& breakState()
{
    static TicktackState* state = new TicktackState;
    return *state;
}

} // namespace AppState
