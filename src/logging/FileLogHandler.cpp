#include "FileLogHandler.h"

#include "FileLogging.h"
#include "LogLine.h"

FileLogHandler::FileLogHandler(QString label, const FileLogging& fileLogger)
    : m_stream(fileLogger.stream()), m_label(std::move(label))
{
}

std::unique_ptr<FileLogHandler> FileLogHandler::create(const QString& label, const QString& localFile,
                                                       QString* error)
{
    auto fileLogging = FileLogging::to(localFile, error);
    if (!fileLogging)
        return nullptr;
    return std::make_unique<FileLogHandler>(label, *fileLogging);
}

void FileLogHandler::setMetadata(const LogMetadata& metadata)
{
    m_metadata = metadata;
    m_prettyMetadata = LogLine::prettify(m_metadata);
}

void FileLogHandler::log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString&,
                         const QString&, const QString&, int)
{
    const auto metadataText = LogLine::effectiveMetadata(m_prettyMetadata, m_metadata, metadata);
    m_stream.write(LogLine::format(level, m_label, metadataText, message));
}
