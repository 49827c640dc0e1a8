// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

class BreakGate;
class BreakScreen;
class CycleEvents;
class PrefState;
class PromptState;
class TicktackState;
class WorkItem;

// The process-wide switches of the work cycle and the shared objects every part reaches
// through here. The objects are made on first use and live until the process ends.
namespace AppState {

inline constexpr int pauseItemTag = 9001;

bool manualPause();
// Stores the value, then sets working to its opposite.
void setManualPause(bool manualPause);

// Why the countdown stands still, for the panel's tooltip and scripts.
enum class StopCause { None, Pause, Lock, Idle };
StopCause stopCause();
// Kept until the next setWorking(true); set it before setWorking(false).
void setStopCause(StopCause cause);

bool working();
// Stores the value, then starts a fresh work period (true) or stops the countdown (false);
// observers (the pause entry of the status menu) hear of it through events().changed().
// Runs on every assignment, also of the same value.
void setWorking(bool working);

// The pending idle timeout. Replacing it does not cancel the previous item.
std::shared_ptr<WorkItem> mouseMoveEventItem();
void setMouseMoveEventItem(std::shared_ptr<WorkItem> item);

// What the cycle did; changed() is raised after working or the manual pause was assigned and
// when break windows open or close.
CycleEvents& events();

// The break windows, installed by the program; until then a break cannot be shown.
BreakScreen& breakScreen();
void setBreakScreen(BreakScreen* screen);

PromptState& promptState();
BreakGate& breakGate();
PrefState& prefState();
TicktackState& workState();
TicktackState& breakState();

} // namespace AppState
