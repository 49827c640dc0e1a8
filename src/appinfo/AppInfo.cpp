// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppInfo.h"

#include "Config.h"

#include <QGuiApplication>
#include <QRegularExpression>
#include <sys/utsname.h>

namespace AppInfo {
namespace {

QString textOr(const QVariantMap& infos, const char* key, const char* fallback)
{
    const QVariant value = infos.value(QLatin1String(key));
    if (value.typeId() == QMetaType::QString && !value.toString().isEmpty())
        return value.toString();
    return QString::fromUtf8(fallback);
}

} // namespace

const QVariantMap& infos()
{
    static const QVariantMap values{
        {QStringLiteral("name"), QString::fromUtf8(Config::name)},
        {QStringLiteral("version"), QString::fromUtf8(Config::version)},
        {QStringLiteral("build"), QString::fromUtf8(Config::build)},
        {QStringLiteral("identifier"), QString::fromUtf8(Config::appId)},
    };
    return values;
}

QString name(const QVariantMap& infos)
{
    return textOr(infos, "name", "Lulltide");
}

QString version(const QVariantMap& infos)
{
    return textOr(infos, "version", "1.0.0");
}

QString build(const QVariantMap& infos)
{
    return textOr(infos, "build", "1");
}

QString identifier(const QVariantMap& infos)
{
    return textOr(infos, "identifier", "1");
}

QIcon icon()
{
    const QIcon windowIcon = QGuiApplication::windowIcon();
    return windowIcon.isNull() ? QIcon(QStringLiteral(":/icons/org.lulltide.Lulltide.svg")) : windowIcon;
}

QString copyright(const QDate& today)
{
    return QStringLiteral("Copyright \u00A9 %1 %2.").arg(today.year()).arg(QString::fromUtf8(Config::maker));
}

QString releaseNotesLink()
{
    return QString::fromUtf8(Config::releaseNotesUrl);
}

QString feedbackAddress()
{
    return QString::fromUtf8(Config::feedbackAddress);
}

QString modelFromMachineField(const char* field, std::size_t size)
{
    QString text;
    for (std::size_t i = 0; i < size; ++i) {
        const auto byte = static_cast<signed char>(field[i]);
        if (byte == 0)
            continue;
        if (byte < 0)
            qFatal("machine name holds a byte above 127 at position %zu", i);
        text += QChar(static_cast<unsigned char>(byte));
    }
    return text;
}

QString model()
{
    utsname info{};
    if (uname(&info) != 0)
        return {};
    return modelFromMachineField(info.machine, sizeof info.machine);
}

QString osVersionFromRelease(const QString& release)
{
    static const QRegularExpression numbers(QStringLiteral("^(\\d+)(?:\\.(\\d+))?(?:\\.(\\d+))?"));
    const QRegularExpressionMatch match = numbers.match(release);
    auto part = [&](int index) {
        return match.captured(index).isEmpty() ? QStringLiteral("0") : match.captured(index);
    };
    return part(1) + u'.' + part(2) + u'.' + part(3);
}

QString osVersion()
{
    utsname info{};
    if (uname(&info) != 0)
        return QStringLiteral("0.0.0");
    return osVersionFromRelease(QString::fromLatin1(info.release));
}

} // namespace AppInfo
