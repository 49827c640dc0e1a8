// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

// Makes the cycle follow the person: it stops while the screen is locked, greets the first
// unlock of a new day, and stops when the pointer has been still for five minutes.
namespace SystemEventController {

// Listens for screen lock and unlock and for pointer activity, and arms the idle timeout.
void setup();

// How long the pointer must be still before the cycle stops: 300 s unless a test says otherwise.
std::chrono::milliseconds idleTimeout();
void setIdleTimeout(std::chrono::milliseconds timeout);

// How long a newly armed idle item waits by itself: the idle timeout, or, where the compositor
// tells of idleness, until it does (the longest a timer can wait).
std::chrono::milliseconds idleItemDelay();

} // namespace SystemEventController
