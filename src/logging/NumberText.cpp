// SPDX-License-Identifier: GPL-3.0-or-later
#include "NumberText.h"

#include <charconv>
#include <cmath>

QString numberText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    // Plain digits from 0.0001 up to 2^53, where every whole number is still exact; an
    // exponent outside that range ("1e-05", "1e+16").
    const double magnitude = std::fabs(value);
    const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 9007199254740992.0);
    char buffer[400];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value,
                                      plain ? std::chars_format::fixed : std::chars_format::scientific);
    QString text = QString::fromLatin1(buffer, result.ptr - buffer);
    if (plain && !text.contains(u'.'))
        text += QStringLiteral(".0");
    return text;
}
