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

} // namespace SystemEventController
