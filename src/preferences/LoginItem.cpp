// SPDX-License-Identifier: GPL-3.0-or-later
#include "LoginItem.h"

#include "Config.h"
#include "appinfo/AppInfo.h"
#include "logging/Logger.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <filesystem>
#include <system_error>

namespace LoginItem {
namespace {

// The installed program is found on PATH; a build run from its tree starts itself by path.
QString program()
{
    QString self = QCoreApplication::applicationFilePath();
    if (QFileInfo(self).fileName() == QLatin1String("lulltide") &&
        QStandardPaths::findExecutable(QStringLiteral("lulltide")) != self)
        return self;
    return QStringLiteral("lulltide");
}

// A string value of a desktop entry: backslashes and the characters a line cannot hold escaped.
QString stringValue(const QString& text)
{
    QString escaped;
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\\':
            escaped += QStringLiteral("\\\\");
            break;
        case u'\n':
            escaped += QStringLiteral("\\n");
            break;
        case u'\t':
            escaped += QStringLiteral("\\t");
            break;
        case u'\r':
            escaped += QStringLiteral("\\r");
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

// The Exec= value that starts exactly `program`: a path goes in double quotes with the double
// quote, backtick, dollar and backslash escaped, and "%" doubled so that it starts no field code;
// then, as in every string value, the backslashes are escaped once more. A session reads it back
// in the opposite order.
QString execValue(const QString& program)
{
    if (!program.contains(u'/'))
        return stringValue(program);
    QString quoted = QStringLiteral("\"");
    for (const QChar character : program) {
        if (character == u'"' || character == u'`' || character == u'$' || character == u'\\')
            quoted += u'\\';
        else if (character == u'%')
            quoted += u'%';
        quoted += character;
    }
    quoted += u'"';
    return stringValue(quoted);
}

} // namespace

QString entryText(const QString& program)
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

    // Only the main group's lines: the actions that follow keep their own commands. TryExec makes a
    // desktop pass over the entry of a program that is gone.
    qsizetype groupEnd = text.indexOf(QLatin1String("\n["));
    groupEnd = groupEnd < 0 ? text.size() : groupEnd + 1;
    const QString launch = QStringLiteral("Exec=") + execValue(program) + QStringLiteral("\nTryExec=") +
                           stringValue(program) + u'\n';
    QString group;
    bool execWritten = false;
    for (const QString& line : text.left(groupEnd).split(u'\n')) {
        if (line.startsWith(QLatin1String("TryExec=")))
            continue;
        if (line.startsWith(QLatin1String("Exec="))) {
            if (!execWritten)
                group += launch;
            execWritten = true;
            continue;
        }
        group += line + u'\n';
    }
    while (group.endsWith(QLatin1String("\n\n")))
        group.chop(1);
    if (!execWritten)
        group += launch;
    group += QStringLiteral("X-GNOME-Autostart-enabled=true\n");
    const QString actions = text.mid(groupEnd);
    return actions.isEmpty() ? group : group + u'\n' + actions;
}

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
            *error = QStringLiteral("cannot remove %1: %2").arg(path, entry.errorString());
            return false;
        }
        return true;
    }

    const QString directory = QFileInfo(path).absolutePath();
    std::error_code code;
    std::filesystem::create_directories(QFile::encodeName(directory).toStdString(), code);
    if (code) {
        *error =
            QStringLiteral("cannot create %1: %2").arg(directory, QString::fromStdString(code.message()));
        return false;
    }
    QSaveFile entry(path);
    if (!entry.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, entry.errorString());
        return false;
    }
    const QString text = entryText(program());
    entry.write(text.toUtf8());
    if (!entry.commit()) {
        *error = QStringLiteral("cannot write %1: %2").arg(path, entry.errorString());
        return false;
    }
    return true;
}

void apply(bool enabled)
{
    QString error;
    if (setEnabled(enabled, &error)) // nothing to tell
        return;
    const QString message = QStringLiteral("SMAppService error: ") + error;
    qWarning("%s", qUtf8Printable(message));
    logger().info(message);
}

} // namespace LoginItem
