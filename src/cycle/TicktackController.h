// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <functional>
#include <memory>

class TicktackState;
class TickSource;

// Counts one period down at a time, once a second. Work periods write AppState::workState(),
// breaks AppState::breakState(). At zero the countdown raises timesUp once and keeps ticking
// (showing "00:00") until someone starts the next period or stops it.
namespace TicktackController {

void work(double seconds);
void break_(double seconds);
void stop();
void ticktack(double seconds, TicktackState& state);
// Counts the seconds since the call, on the same tick, instead of a countdown: how long a due
// break has waited. stop() or the next period ends it.
void countUp(std::function<void(double elapsed)> onSecond);

// 1500 → "25:00"; 3600 → "0100:00" (hours run straight into the minutes); ≤ 0 → "00:00".
QString format(double seconds);

// The wall-clock time `seconds` from now, to the minute, in the locale's short format: "14:05".
QString clockTimeIn(double seconds);

bool isRunning();

// Replaces the one-second timer (tests step time by hand). Stops any running countdown.
void setTickSource(std::unique_ptr<TickSource> source);

} // namespace TicktackController
