// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogLevel.h"

// Where the facade's records go. A handler decides the format and the destination;
// loggers hold one handler each, made by the factory given to LoggingSystem::bootstrap.
class LogHandler {
public:
    virtual ~LogHandler() = default;

    virtual void log(LogLevel level, const QString& message, const LogMetadata& metadata,
                     const QString& source, const QString& file, const QString& function, int line) = 0;

    virtual LogLevel logLevel() const = 0;
    virtual void setLogLevel(LogLevel level) = 0;

    virtual LogMetadata metadata() const = 0;
    virtual void setMetadata(const LogMetadata& metadata) = 0;

    QString metadataValue(const QString& key) const { return metadata().value(key); }
    void setMetadataValue(const QString& key, const QString& value)
    {
        LogMetadata changed = metadata();
        changed.insert(key, value);
        setMetadata(changed);
    }
};
