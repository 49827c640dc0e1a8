// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppState.h"

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
std::shared_ptr<WorkItem> pendingIdleItem;
} // namespace

bool manualPause()
{
    return manualPauseValue;
}

void setManualPause(bool manualPause)
{
    manualPauseValue = manualPause;
    setWorking(!manualPauseValue);
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
