// SPDX-License-Identifier: GPL-3.0-or-later
#include "NumberParsing.h"

#include <charconv>
#include <cmath>

namespace NumberParsing {
namespace {

// from_chars takes no leading plus; a single one is allowed here, before a digit or a point.
QByteArray withoutPlus(const QString& text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.startsWith('+') && bytes.size() > 1 && bytes.at(1) != '-' && bytes.at(1) != '+')
        bytes.remove(0, 1);
    return bytes;
}

} // namespace

std::optional<double> parseDouble(const QString& text)
{
    const QByteArray bytes = withoutPlus(text);
    if (bytes.isEmpty())
        return std::nullopt;
    // A sign alone ("-", or "+" kept by withoutPlus) has no digit to look at.
    const qsizetype firstIndex = bytes.at(0) == '-' ? 1 : 0;
    if (firstIndex >= bytes.size())
        return std::nullopt;
    const char first = bytes.at(firstIndex);
    if (!(std::isdigit(static_cast<unsigned char>(first)) || first == '.'))
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(bytes.constData(), bytes.constData() + bytes.size(), value);
    if (error != std::errc() || end != bytes.constData() + bytes.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<qint64> parseInteger(const QString& text)
{
    const QByteArray bytes = withoutPlus(text);
    if (bytes.isEmpty())
        return std::nullopt;
    qint64 value = 0;
    const auto [end, error] = std::from_chars(bytes.constData(), bytes.constData() + bytes.size(), value);
    if (error != std::errc() || end != bytes.constData() + bytes.size())
        return std::nullopt;
    return value;
}

} // namespace NumberParsing
