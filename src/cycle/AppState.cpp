// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppState.h"

#include "BreakGate.h"
#include "BreakScreen.h"
#include "CycleEvents.h"
#include "PromptState.h"
#include "TicktackController.h"
#include "TicktackState.h"
#include "WorkItem.h"
#include "preferences/PrefState.h"

namespace AppState {
namespace {
bool manualPauseValue = false;
bool workingValue = true;
StopCause stopCauseValue = StopCause::None;
std::shared_ptr<WorkItem> pendingIdleItem;
BreakScreen* installedBreakScreen = nullptr;

// Stands in until the program installs the break windows: nothing can be shown.
class NoBreakScreen final : public BreakScreen {
public:
    bool isShown() const override { return false; }

protected:
    bool showWindows() override { return false; }
    void closeWindows() override {}
};

bool freshPeriod(const TicktackState& state)
{
    return state.secondsLeft() == state.length();
}

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

    if (workingValue) {
        stopCauseValue = StopCause::None;
        TicktackController::work(prefState().workTime());
    } else {
        TicktackController::stop();
    }
    emit events().changed();
}

std::shared_ptr<WorkItem> mouseMoveEventItem()
{
    return pendingIdleItem;
}

void setMouseMoveEventItem(std::shared_ptr<WorkItem> item)
{
    pendingIdleItem = std::move(item);
}

CycleEvents& events()
{
    static CycleEvents* cycleEvents = [] {
        auto* made = new CycleEvents;
        // A countdown written at its full length is a fresh period.
        QObject::connect(&workState(), &TicktackState::timeStringChanged, made, [made] {
            if (freshPeriod(workState()))
                emit made->workStarted(workState().length());
        });
        QObject::connect(&breakState(), &TicktackState::timeStringChanged, made, [made] {
            if (freshPeriod(breakState()))
                emit made->breakStarted(promptState().kind(), breakState().length());
        });
        return made;
    }();
    return *cycleEvents;
}

BreakScreen& breakScreen()
{
    static NoBreakScreen none;
    return installedBreakScreen ? *installedBreakScreen : none;
}

void setBreakScreen(BreakScreen* screen)
{
    installedBreakScreen = screen;
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
