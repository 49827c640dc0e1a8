#pragma once

#include "FileHandlerOutputStream.h"
#include "LogHandler.h"

#include <memory>
#include <optional>

class FileLogging;

// Writes records to the log file as
// "<timestamp> <level> <label> :[ <metadata>] <message>".
class FileLogHandler : public LogHandler {
public:
    FileLogHandler(QString label, const FileLogging& fileLogger);
    static std::unique_ptr<FileLogHandler> create(const QString& label, const QString& localFile,
                                                  QString* error);

    void log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString& source,
             const QString& file, const QString& function, int line) override;

    LogLevel logLevel() const override { return m_logLevel; }
    void setLogLevel(LogLevel level) override { m_logLevel = level; }
    LogMetadata metadata() const override { return m_metadata; }
    void setMetadata(const LogMetadata& metadata) override;

    const std::optional<QString>& prettyMetadata() const { return m_prettyMetadata; }

private:
    FileHandlerOutputStream m_stream;
    QString m_label;
    LogLevel m_logLevel = LogLevel::info;
    LogMetadata m_metadata;
    std::optional<QString> m_prettyMetadata;
};
