// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cycle/TickSource.h"

#include <functional>

// A tick source that ticks only when the test says so.
class ManualTickSource : public TickSource {
public:
    void start(std::function<void()> onTick) override
    {
        m_onTick = std::move(onTick);
        ++m_starts;
    }
    void stop() override { m_onTick = nullptr; }

    // Delivers n ticks to the running countdown, if any.
    void tick(int n = 1)
    {
        for (int i = 0; i < n && m_onTick; ++i) {
            auto onTick = m_onTick; // the tick may stop this countdown and start another
            onTick();
        }
    }
    bool running() const { return bool(m_onTick); }
    int starts() const { return m_starts; }

private:
    std::function<void()> m_onTick;
    int m_starts = 0;
};
