// SPDX-License-Identifier: GPL-3.0-or-later
#include "StreamLogHandler.h"

void StreamLogHandler::writeLine(const QString& line)
{
    const QByteArray bytes = line.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), m_stream);
    // Line by line, so a terminal or a reading test sees each record as it happens.
    std::fflush(m_stream);
}
