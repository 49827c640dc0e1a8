// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogLevel.h"

#include <QByteArray>
#include <optional>

// The text form shared by the facade's handlers:
// "<timestamp> <level> <label> :[ <metadata>] <message>\n".
namespace LogLine {

// Local time as "%Y-%m-%dT%H:%M:%S%z", e.g. 2024-03-05T14:07:09+0800.
QString timestamp();

// "k=v k2=v2", or nothing for empty metadata.
std::optional<QString> prettify(const LogMetadata& metadata);

// The metadata text of one record: the handler's pre-rendered text when the call brings none,
// otherwise the handler's metadata merged with the call's (the call's values win).
std::optional<QString> effectiveMetadata(const std::optional<QString>& handlerText,
                                         const LogMetadata& handlerMetadata, const LogMetadata& callMetadata);

QString format(LogLevel level, const QString& label, const std::optional<QString>& metadataText,
               const QString& message);

} // namespace LogLine
