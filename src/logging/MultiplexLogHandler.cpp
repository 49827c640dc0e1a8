// SPDX-License-Identifier: GPL-3.0-or-later
#include "MultiplexLogHandler.h"

#include <algorithm>

MultiplexLogHandler::MultiplexLogHandler(std::vector<std::unique_ptr<LogHandler>> handlers)
    : m_handlers(std::move(handlers))
{
}

void MultiplexLogHandler::log(LogLevel level, const QString& message, const LogMetadata& metadata,
                              const QString& source, const QString& file, const QString& function, int line)
{
    for (const auto& handler : m_handlers) {
        if (level >= handler->logLevel())
            handler->log(level, message, metadata, source, file, function, line);
    }
}

LogLevel MultiplexLogHandler::logLevel() const
{
    LogLevel lowest = LogLevel::critical;
    for (const auto& handler : m_handlers)
        lowest = std::min(lowest, handler->logLevel());
    return lowest;
}

void MultiplexLogHandler::setLogLevel(LogLevel level)
{
    for (const auto& handler : m_handlers)
        handler->setLogLevel(level);
}

LogMetadata MultiplexLogHandler::metadata() const
{
    LogMetadata merged;
    for (const auto& handler : m_handlers)
        merged.insert(handler->metadata());
    return merged;
}

void MultiplexLogHandler::setMetadata(const LogMetadata& metadata)
{
    for (const auto& handler : m_handlers)
        handler->setMetadata(metadata);
}
