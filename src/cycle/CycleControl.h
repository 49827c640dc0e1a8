// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CycleEvents.h"

#include <QString>

// The requests anyone may make of the cycle: the menu, a middle click, the break view's
// buttons, the heads-up, the command line and the bus all come through here, so each action
// has one way in. What happened is told by CycleEvents.
namespace CycleControl {

using Origin = CycleEvents::Origin;

struct Status {
    bool working = false;
    bool manualPause = false;
    bool inBreak = false;
    // A due break waiting for what holds it; heldTimeString is the wait, "+03:12".
    bool held = false;
    QString heldTimeString;
    QString workTimeString;
    QString breakTimeString;
};

Status status();

// One line for people and scripts: "working 24:13", "break 03:12", "held +03:12", "paused" or
// "stopped" (counting stopped by idleness or the screen lock).
QString statusLine(const Status& status);

// Pauses by hand as the menu's pause entry does; nothing when already paused. A break on the
// screen is closed too: it covers the panel, so nobody could resume from there, and its
// countdown no longer runs.
void pause(Origin origin = Origin::Other);
// Ends a pause by hand, or restarts counting stopped by idleness; a running work period or
// break goes on untouched. A break screen still up (the greeting of a new day) closes first:
// the fresh work period would otherwise count behind it.
void resume(Origin origin = Origin::Other);
// The menu's pause entry, its middle click and its shortcut: pause() or resume().
void togglePause(Origin origin = Origin::Other);
// The Skip button: false (and nothing happens) when no break is up or the break is forced.
bool skip();
// Moves the coming or shown break `minutes` from now (the setting when 0): the Postpone button,
// the heads-up's action, the menu, the command line and the bus. Empty when done, else why not.
QString postpone(double minutes);
// Whether postpone() would move the break now: the menu offers it only then.
bool canPostpone();
// The heads-up's "Start now".
void startBreakNow();
// The program ends: the open break and the run are told as ended.
void stop();

} // namespace CycleControl
