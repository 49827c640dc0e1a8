// SPDX-License-Identifier: GPL-3.0-or-later
#include "SaidOnce.h"

#include "Logger.h"

bool SaidOnce::warning(const QString& line)
{
    if (m_said)
        return false;
    m_said = true;
    logger().warning(line);
    return true;
}
