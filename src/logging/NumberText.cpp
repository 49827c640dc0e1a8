#include "NumberText.h"

#include <charconv>
#include <cmath>

QString numberText(double value)
{
    if (std::isnan(value))
        return QStringLiteral("nan");
    if (std::isinf(value))
        return value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    QString text = QString::fromLatin1(buffer, result.ptr - buffer);
    if (!text.contains(u'.') && !text.contains(u'e'))
        text += QStringLiteral(".0");
    return text;
}
