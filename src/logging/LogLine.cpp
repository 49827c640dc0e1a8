// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogLine.h"

#include <QStringList>
#include <ctime>

namespace LogLine {

QString timestamp()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char buffer[255] = {};
    std::strftime(buffer, sizeof buffer, "%Y-%m-%dT%H:%M:%S%z", &local);
    return QString::fromLocal8Bit(buffer);
}

std::optional<QString> prettify(const LogMetadata& metadata)
{
    if (metadata.isEmpty())
        return std::nullopt;
    QStringList pairs;
    for (auto it = metadata.cbegin(); it != metadata.cend(); ++it)
        pairs << it.key() + u'=' + it.value();
    return pairs.join(u' ');
}

std::optional<QString> effectiveMetadata(const std::optional<QString>& handlerText,
                                         const LogMetadata& handlerMetadata, const LogMetadata& callMetadata)
{
    if (callMetadata.isEmpty())
        return handlerText;
    LogMetadata merged = handlerMetadata;
    merged.insert(callMetadata);
    return prettify(merged);
}

QString format(LogLevel level, const QString& label, const std::optional<QString>& metadataText,
               const QString& message)
{
    QString line =
        timestamp() + u' ' + QLatin1String(logLevelName(level)) + u' ' + label + QStringLiteral(" :");
    if (metadataText)
        line += u' ' + *metadataText;
    line += u' ' + message + u'\n';
    return line;
}

} // namespace LogLine
