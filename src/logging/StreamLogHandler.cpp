#include "StreamLogHandler.h"

#include "LogLine.h"

StreamLogHandler::StreamLogHandler(QString label, std::FILE* stream)
    : m_label(std::move(label)), m_stream(stream)
{
}

void StreamLogHandler::setMetadata(const LogMetadata& metadata)
{
    m_metadata = metadata;
    m_prettyMetadata = LogLine::prettify(m_metadata);
}

void StreamLogHandler::log(LogLevel level, const QString& message, const LogMetadata& metadata,
                           const QString&, const QString&, const QString&, int)
{
    const auto metadataText = LogLine::effectiveMetadata(m_prettyMetadata, m_metadata, metadata);
    const QByteArray bytes = LogLine::format(level, m_label, metadataText, message).toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), m_stream);
    // Line by line, so a terminal or a reading test sees each record as it happens.
    std::fflush(m_stream);
}
