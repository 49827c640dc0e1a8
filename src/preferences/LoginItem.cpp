#include "LoginItem.h"

#include "Config.h"
#include "statusbar/AppInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
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

// The installed desktop entry (a packager may have adapted it), else the one built in, with the
// program to start and the switch GNOME's session reads.
QString entryText()
{
    const QString fileName = QString::fromUtf8(Config::appId) + QStringLiteral(".desktop");
    QString source = QStandardPaths::locate(QStandardPaths::ApplicationsLocation, fileName);
    QFile file(source.isEmpty() ? QStringLiteral(":/desktop/") + fileName : source);
    QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    if (!text.startsWith(QLatin1String("[Desktop Entry]\n")))
        text = QStringLiteral("[Desktop Entry]\nType=Application\nName=%1\nExec=lulltide\nIcon=%2\n")
                   .arg(AppInfo::name(), QString::fromUtf8(Config::appId));
    if (!text.endsWith(u'\n'))
        text += u'\n';

    // Only the main group's lines: the actions that follow keep their own commands.
    qsizetype groupEnd = text.indexOf(QLatin1String("\n["));
    groupEnd = groupEnd < 0 ? text.size() : groupEnd + 1;
    QString group = text.left(groupEnd);
    static const QRegularExpression exec(QStringLiteral("^Exec=.*$"), QRegularExpression::MultilineOption);
    group.replace(exec, QStringLiteral("Exec=") + command());
    while (group.endsWith(QLatin1String("\n\n")))
        group.chop(1);
    group += QStringLiteral("X-GNOME-Autostart-enabled=true\n");
    const QString actions = text.mid(groupEnd);
    return actions.isEmpty() ? group : group + u'\n' + actions;
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
    const QString text = entryText();
    entry.write(text.toUtf8());
    if (!entry.commit()) {
        *error = entry.errorString();
        return false;
    }
    return true;
}

} // namespace LoginItem
