// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogHandler.h"

#include <memory>
#include <vector>

// Forwards every record to several handlers, in the order they were given.
class MultiplexLogHandler : public LogHandler {
public:
    explicit MultiplexLogHandler(std::vector<std::unique_ptr<LogHandler>> handlers);

    void log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString& source,
             const QString& file, const QString& function, int line) override;

    // The lowest level of the handlers: a record any of them wants gets through.
    LogLevel logLevel() const override;
    void setLogLevel(LogLevel level) override;
    LogMetadata metadata() const override;
    void setMetadata(const LogMetadata& metadata) override;

private:
    std::vector<std::unique_ptr<LogHandler>> m_handlers;
};
