// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <functional>
#include <memory>

class QTimer;

// A piece of work scheduled to run once on the main thread after a delay, which can be
// cancelled until it runs. A scheduled item stays alive until it has run or been cancelled,
// even when nobody holds it any more: dropping the handle does not cancel the work.
class WorkItem : public std::enable_shared_from_this<WorkItem> {
public:
    static std::shared_ptr<WorkItem> schedule(std::chrono::milliseconds delay, std::function<void()> body);
    ~WorkItem();

    void cancel();
    // Moves the moment the item runs to no earlier than `delay` from now. It only notes the time,
    // so it is cheap enough for every pointer event: a timer that fires early waits out the rest.
    void postpone(std::chrono::milliseconds delay);
    bool isCancelled() const { return m_cancelled; }
    bool hasRun() const { return m_hasRun; }
    // Runs the item now if it is still pending, whatever its timer says.
    void runNow();
    // How long until the item runs; zero once it has run or been cancelled.
    std::chrono::milliseconds remaining() const;

private:
    explicit WorkItem(std::function<void()> body);
    void perform();
    void releaseTimer();

    std::function<void()> m_body;
    std::chrono::steady_clock::time_point m_notBefore;
    QTimer* m_timer = nullptr;
    std::shared_ptr<WorkItem> m_selfWhileScheduled;
    bool m_cancelled = false;
    bool m_hasRun = false;
};
