// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// What the cycle does when the desktop around it changes: the screen locks or unlocks, or the
// pointer moves.
namespace SystemEventActions {

// The screen locked (or the machine goes to sleep): note the time for the new-day greeting, and
// stop the cycle and close the break screen when the cycle should restart after the lock.
void didLockScreenShow();

// The screen unlocked (or the machine woke up): greet the first unlock of a new day with a short
// break, start the rotation of breaks afresh, or start a fresh work period.
void didLockScreenDismiss();

// Pointer activity (or a modifier key): restart a cycle that stopped for idleness unless the user
// paused it, and arm the idle timeout again.
void onTrigger();

// Whether the moment `now` is another day of the Chinese calendar than `lastLock`, both in
// seconds since 1970, in the current time zone.
bool isNewDay(double lastLock, double now);

} // namespace SystemEventActions
