// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogHandler.h"

#include <memory>
#include <optional>
#include <source_location>

// A labelled logger of the facade. Records below its level are dropped; the rest go to its
// handler, with the calling file and function taken from the call site.
class Logger {
public:
    explicit Logger(QString label);
    Logger(QString label, std::unique_ptr<LogHandler> handler);

    const QString& label() const { return m_label; }
    LogLevel logLevel() const { return m_handler->logLevel(); }
    void setLogLevel(LogLevel level) { m_handler->setLogLevel(level); }
    LogHandler& handler() { return *m_handler; }

    void log(LogLevel level, const QString& message, const LogMetadata& metadata = {},
             std::source_location location = std::source_location::current());

    void trace(const QString& message, const LogMetadata& metadata = {},
               std::source_location location = std::source_location::current());
    void debug(const QString& message, const LogMetadata& metadata = {},
               std::source_location location = std::source_location::current());
    void info(const QString& message, const LogMetadata& metadata = {},
              std::source_location location = std::source_location::current());
    void notice(const QString& message, const LogMetadata& metadata = {},
                std::source_location location = std::source_location::current());
    void warning(const QString& message, const LogMetadata& metadata = {},
                 std::source_location location = std::source_location::current());
    void error(const QString& message, const LogMetadata& metadata = {},
               std::source_location location = std::source_location::current());
    void critical(const QString& message, const LogMetadata& metadata = {},
                  std::source_location location = std::source_location::current());

    // The log file the process logger opened (kept past midnight), else today's: the mail attaches it.
    static std::optional<QString> logfilePath();

private:
    QString m_label;
    std::unique_ptr<LogHandler> m_handler;
};

// The process-wide logger, labelled with the application id. Built on first use: it
// removes other days' log files, opens today's for appending and writes a greeting.
Logger& logger();
