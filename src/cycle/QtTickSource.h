// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TickSource.h"

#include <memory>

class QTimer;

// Ticks once a second from a precise QTimer on the main thread. A new timer is made for every
// countdown, so a countdown's first tick comes one full second after it starts.
class QtTickSource : public TickSource {
public:
    QtTickSource();
    ~QtTickSource() override;

    void start(std::function<void()> onTick) override;
    void stop() override;

private:
    std::unique_ptr<QTimer> m_timer;
};
