// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogHandler.h"

#include <functional>

// Hands each record at or above its level to a function: a helper process's log goes to the
// process that keeps the day's log file.
class ForwardingLogHandler : public LogHandler {
public:
    using Forward = std::function<void(LogLevel level, const QString& message)>;

    explicit ForwardingLogHandler(Forward forward) : m_forward(std::move(forward)) {}

    void log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString& source,
             const QString& file, const QString& function, int line) override;
    LogLevel logLevel() const override { return m_logLevel; }
    void setLogLevel(LogLevel level) override { m_logLevel = level; }
    LogMetadata metadata() const override { return m_metadata; }
    void setMetadata(const LogMetadata& metadata) override { m_metadata = metadata; }

private:
    Forward m_forward;
    LogLevel m_logLevel = LogLevel::info;
    LogMetadata m_metadata;
};
