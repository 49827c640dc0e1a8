// SPDX-License-Identifier: GPL-3.0-or-later
#include "SystemEventController.h"

#include "AppState.h"
#include "BreakScreen.h"
#include "SystemEventActions.h"
#include "WorkItem.h"
#include "events/PointerMonitor.h"
#include "events/ScreenLockMonitor.h"

#include <QCoreApplication>
#include <limits>

namespace SystemEventController {
namespace {

std::chrono::milliseconds timeout = std::chrono::seconds(300);
bool compositorReportsIdleness = false;

} // namespace

std::chrono::milliseconds idleTimeout()
{
    return timeout;
}

void setIdleTimeout(std::chrono::milliseconds value)
{
    timeout = value;
}

std::chrono::milliseconds idleItemDelay()
{
    return compositorReportsIdleness ? std::chrono::milliseconds(std::numeric_limits<int>::max()) : timeout;
}

void setup()
{
    QObject* owner = QCoreApplication::instance();
    auto* locks = new ScreenLockMonitor(owner);
    QObject::connect(locks, &ScreenLockMonitor::locked, owner, &SystemEventActions::didLockScreenShow);
    QObject::connect(locks, &ScreenLockMonitor::unlocked, owner, &SystemEventActions::didLockScreenDismiss);
    locks->start();

    if (PointerMonitor* pointer = PointerMonitor::create(timeout, owner)) {
        QObject::connect(pointer, &PointerMonitor::activity, owner, [locks] {
            // The break windows cover every screen; what the pointer does over them is the
            // break screen's business, not activity at the desk. So is what it does over the lock
            // screen (Shift typed into its password field among it): the unlock decides what follows.
            if (!AppState::breakScreen().isShown() && !locks->isLocked())
                SystemEventActions::onTrigger();
        });
        compositorReportsIdleness = pointer->reportsIdleness();
        // The compositor's word that the desk has been idle stands for the timeout running out.
        QObject::connect(pointer, &PointerMonitor::idle, owner, [] {
            if (const auto item = AppState::mouseMoveEventItem())
                item->runNow();
        });
        // Arms the idle timeout from the start. Without a monitor nothing would ever move it
        // on, and the cycle would stop after one timeout of a person working.
        SystemEventActions::onTrigger();
    }
}

} // namespace SystemEventController
