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
