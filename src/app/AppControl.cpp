#include "AppControl.h"

#include "AppState.h"
#include "break/PromptState.h"
#include "break/WindowController.h"
#include "logging/Logger.h"
#include "timer/TicktackState.h"

#include <QCoreApplication>
#include <QTimer>

namespace AppControl {

Status status()
{
    Status status;
    status.working = AppState::working();
    status.manualPause = AppState::manualPause();
    status.inBreak = WindowController::isBreakShown();
    status.workTimeString = AppState::workState().timeString();
    status.breakTimeString = AppState::breakState().timeString();
    return status;
}

QString statusLine(const Status& status)
{
    if (status.inBreak)
        return QStringLiteral("break ") + status.breakTimeString;
    if (status.manualPause)
        return QStringLiteral("paused");
    if (status.working)
        return QStringLiteral("working ") + status.workTimeString;
    return QStringLiteral("stopped");
}

void pause()
{
    if (!AppState::manualPause())
        AppState::setManualPause(true);
    if (WindowController::isBreakShown()) {
        logger().info(QStringLiteral("paused during a break: closing the break windows"));
        WindowController::closeBreak();
    }
}

void resume()
{
    if (AppState::manualPause() || !AppState::working())
        AppState::setManualPause(false);
}

void togglePause()
{
    if (AppState::manualPause())
        AppState::setManualPause(false);
    else
        pause();
}

bool skip()
{
    if (!WindowController::isBreakShown() || !AppState::promptState().showSkipButton())
        return false;
    AppState::promptState().skip();
    return true;
}

void showSettings()
{
    WindowController::showPrefView();
}

void quit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
}

} // namespace AppControl
