// SPDX-License-Identifier: GPL-3.0-or-later
#include "ForwardingLogHandler.h"

void ForwardingLogHandler::log(LogLevel level, const QString& message, const LogMetadata&, const QString&,
                               const QString&, const QString&, int)
{
    if (level >= m_logLevel)
        m_forward(level, message);
}
