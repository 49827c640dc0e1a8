#include "LoginItem.h"

#include "Config.h"
#include "statusbar/AppInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

namespace LoginItem {
namespace {

// The installed program is found on PATH; a build run from its tree starts itself by path.
QString command()
{
    const QString self = QCoreApplication::applicationFilePath();
    if (QFileInfo(self).fileName() == QLatin1String("lulltide") &&
        QStandardPaths::findExecutable(QStringLiteral("lulltide")) != self)
        return u'"' + self + u'"';
    return QStringLiteral("lulltide");
}

} // namespace

QString entryPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart/") + QString::fromUtf8(Config::appId) + QStringLiteral(".desktop");
}

bool setEnabled(bool enabled, QString* error)
{
    const QString path = entryPath();
    if (!enabled) {
        QFile entry(path);
        if (entry.exists() && !entry.remove()) {
            *error = entry.errorString();
            return false;
        }
        return true;
    }

    const QString directory = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(directory)) {
        *error = QStringLiteral("cannot create %1").arg(directory);
        return false;
    }
    QSaveFile entry(path);
    if (!entry.open(QIODevice::WriteOnly)) {
        *error = entry.errorString();
        return false;
    }
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=%1\n"
                                        "Comment=Break reminder\n"
                                        "Exec=%2\n"
                                        "Icon=%3\n"
                                        "Terminal=false\n"
                                        "X-GNOME-Autostart-enabled=true\n")
                             .arg(AppInfo::name(), command(), QString::fromUtf8(Config::appId));
    entry.write(text.toUtf8());
    if (!entry.commit()) {
        *error = entry.errorString();
        return false;
    }
    return true;
}

} // namespace LoginItem
