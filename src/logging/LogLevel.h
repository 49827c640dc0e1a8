// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

// The seven levels of the logging facade, lowest first.
enum class LogLevel { trace, debug, info, notice, warning, error, critical };

// Key-value pairs attached to a log record.
using LogMetadata = QMap<QString, QString>;

inline const char* logLevelName(LogLevel level)
{
    switch (level) {
    case LogLevel::trace:
        return "trace";
    case LogLevel::debug:
        return "debug";
    case LogLevel::info:
        return "info";
    case LogLevel::notice:
        return "notice";
    case LogLevel::warning:
        return "warning";
    case LogLevel::error:
        return "error";
    case LogLevel::critical:
        return "critical";
    }
    return "info";
}
