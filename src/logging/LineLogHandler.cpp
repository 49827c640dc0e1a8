// SPDX-License-Identifier: GPL-3.0-or-later
#include "LineLogHandler.h"

#include "LogLine.h"

void LineLogHandler::setMetadata(const LogMetadata& metadata)
{
    m_metadata = metadata;
    m_prettyMetadata = LogLine::prettify(m_metadata);
}

// Where the record was made (source, file, function, line) is not written.
void LineLogHandler::log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString&,
                         const QString&, const QString&, int)
{
    const auto metadataText = LogLine::effectiveMetadata(m_prettyMetadata, m_metadata, metadata);
    writeLine(LogLine::format(level, m_label, metadataText, message));
}
