#include "SystemEventController.h"

#include "PointerMonitor.h"
#include "ScreenLockMonitor.h"
#include "SystemEventActions.h"
#include "break/WindowController.h"

#include <QCoreApplication>

namespace SystemEventController {
namespace {

std::chrono::milliseconds timeout = std::chrono::seconds(300);

} // namespace

std::chrono::milliseconds idleTimeout()
{
    return timeout;
}

void setIdleTimeout(std::chrono::milliseconds value)
{
    timeout = value;
}

void setup()
{
    QObject* owner = QCoreApplication::instance();
    auto* locks = new ScreenLockMonitor(owner);
    QObject::connect(locks, &ScreenLockMonitor::locked, owner, &SystemEventActions::didLockScreenShow);
    QObject::connect(locks, &ScreenLockMonitor::unlocked, owner, &SystemEventActions::didLockScreenDismiss);
    locks->start();

    if (PointerMonitor* pointer = PointerMonitor::create(owner)) {
        QObject::connect(pointer, &PointerMonitor::activity, owner, [] {
            // The break windows cover every screen; what the pointer does over them is the
            // break screen's business, not activity at the desk.
            if (!WindowController::isBreakShown())
                SystemEventActions::onTrigger();
        });
    }

    // Arms the idle timeout from the start.
    SystemEventActions::onTrigger();
}

} // namespace SystemEventController
