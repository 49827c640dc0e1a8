#pragma once

#include "LogHandler.h"

#include <cstdio>
#include <optional>

// Writes each record as one line to standard output (or standard error).
class StreamLogHandler : public LogHandler {
public:
    static StreamLogHandler standardOutput(const QString& label) { return StreamLogHandler(label, stdout); }
    static StreamLogHandler standardError(const QString& label) { return StreamLogHandler(label, stderr); }

    void log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString& source,
             const QString& file, const QString& function, int line) override;

    LogLevel logLevel() const override { return m_logLevel; }
    void setLogLevel(LogLevel level) override { m_logLevel = level; }
    LogMetadata metadata() const override { return m_metadata; }
    void setMetadata(const LogMetadata& metadata) override;

private:
    StreamLogHandler(QString label, std::FILE* stream);

    QString m_label;
    std::FILE* m_stream;
    LogLevel m_logLevel = LogLevel::info;
    LogMetadata m_metadata;
    std::optional<QString> m_prettyMetadata;
};
