// SPDX-License-Identifier: GPL-3.0-or-later
#include "ApplicationLook.h"

#include "Config.h"
#include "Translations.h"
#include "appinfo/AppInfo.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIcon>

namespace ApplicationLook {

void nameTheApplication()
{
    QCoreApplication::setApplicationName(AppInfo::name());
    QCoreApplication::setApplicationVersion(AppInfo::version());
    Translations::install();
}

void useTheDesktopsIcons()
{
    QGuiApplication::setDesktopFileName(QString::fromUtf8(Config::appId));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/org.lulltide.Lulltide.svg")));
    // Without a desktop's platform theme Qt looks for icons in hicolor only, which has none of
    // the common action icons the menus and tabs name.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("Adwaita"));
}

QString viewsProgram()
{
    const QString beside = QCoreApplication::applicationDirPath() + QStringLiteral("/lulltide-views");
    return QFileInfo(beside).isExecutable() ? beside : QString::fromUtf8(Config::viewsProgram);
}

} // namespace ApplicationLook
