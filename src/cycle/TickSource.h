// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

// Delivers the countdown's ticks. Each start() begins a fresh series whose first tick
// comes one interval later; stop() ends it. Tests install a source they step by hand.
class TickSource {
public:
    virtual ~TickSource() = default;
    virtual void start(std::function<void()> onTick) = 0;
    virtual void stop() = 0;
    virtual double interval() const { return 1.0; }
};
