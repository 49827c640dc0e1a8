#include "AppDelegate.h"
#include "CommandLine.h"
#include "Config.h"
#include "ControlService.h"
#include "Translations.h"
#include "logging/Logger.h"
#include "statusbar/AppInfo.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>

int main(int argc, char* argv[])
{
    if (CommandLine::isClientRequest(argc, argv)) {
        // A request for the running instance: no display, no window, no cycle of our own.
        QCoreApplication client(argc, argv);
        QCoreApplication::setApplicationName(AppInfo::name());
        QCoreApplication::setApplicationVersion(AppInfo::version());
        Translations::install();
        return CommandLine::runClient();
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(AppInfo::name());
    QApplication::setApplicationVersion(AppInfo::version());
    QApplication::setDesktopFileName(QString::fromUtf8(Config::appId));
    Translations::install();
    CommandLine::checkLaunchArguments();

    auto* control = new ControlService(QDBusConnection::sessionBus(), &app);
    switch (control->claim()) {
    case ControlService::Claim::Owned:
        break;
    case ControlService::Claim::AlreadyRunning:
        CommandLine::sayAlreadyRunning();
        return 0;
    case ControlService::Claim::NoBus:
        delete control;
        logger().warning(
            QStringLiteral("no D-Bus session bus: running as a lone instance that scripts cannot reach"));
        break;
    }

    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/org.lulltide.Lulltide.svg")));
    // Without a desktop's platform theme Qt looks for icons in hicolor only, which has none of
    // the common action icons the menus and tabs name.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
    // No main window: closing the settings window or a break window must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);

    AppDelegate delegate;
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    return app.exec();
}
