// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppDelegate.h"
#include "ApplicationLook.h"
#include "TerminationSignals.h"
#include "control/BusExitOrder.h"
#include "control/CommandLine.h"
#include "control/ControlService.h"
#include "logging/Logger.h"
#include "settings/SettingsWindow.h"

#include <QApplication>
#include <QTimer>

int main(int argc, char* argv[])
{
    BusExitOrder::keepTypesPastTheBusThread();
    // The command line first, with no GUI object: it must answer over ssh, from cron or a
    // typing error without a display, and most of its requests go to the running Lulltide.
    // A plain launch skips it: its QApplication must be the process's only application object,
    // or screen readers see nothing of its windows.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    std::optional<CommandLine::Outcome> launch = CommandLine::plainLaunch(arguments);
    CommandLine::Outcome outcome = launch.value_or(CommandLine::Outcome{});
    if (!launch) {
        QCoreApplication commandLine(argc, argv);
        ApplicationLook::nameTheApplication();
        outcome = CommandLine::read();
    }
    if (outcome.exitCode)
        return *outcome.exitCode;

    QApplication app(argc, argv);
    ApplicationLook::nameTheApplication();

    auto* control = new ControlService(QDBusConnection::sessionBus(), &app);
    switch (control->claim()) {
    case ControlService::Claim::Owned:
        break;
    case ControlService::Claim::AlreadyRunning:
        // Another launch took the name since the command line looked.
        return CommandLine::handOver(QDBusConnection::sessionBus(), outcome.showSettings);
    case ControlService::Claim::NoBus:
        delete control;
        logger().warning(
            QStringLiteral("no D-Bus session bus: running as a lone instance that scripts cannot reach"));
        break;
    }

    ApplicationLook::useTheDesktopsIcons();
    // No main window: closing the settings window or a break window must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);

    // A logout ends the run the way --quit does.
    TerminationSignals terminationSignals;
    terminationSignals.install();

    AppDelegate delegate;
    delegate.showBreaksThrough(ApplicationLook::viewsProgram());
    SettingsWindow::showThrough(ApplicationLook::viewsProgram());
    QTimer::singleShot(0, &delegate, [&delegate, showSettings = outcome.showSettings] {
        delegate.applicationDidFinishLaunching();
        if (showSettings)
            SettingsWindow::show();
    });
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    return app.exec();
}
