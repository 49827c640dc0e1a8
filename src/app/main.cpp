#include "AppDelegate.h"
#include "Config.h"
#include "statusbar/AppInfo.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(AppInfo::name());
    QApplication::setApplicationVersion(AppInfo::version());
    QApplication::setDesktopFileName(QString::fromUtf8(Config::appId));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/org.lulltide.Lulltide.svg")));
    // No main window: closing the settings window or a break window must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);

    AppDelegate delegate;
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    return app.exec();
}
