// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <optional>

namespace NumberParsing {

// A finite decimal number, the whole text: "25", "0.5", "+3", "-1", "1e3".
// Letters, blanks, an empty text, "inf" and "nan" give nothing.
std::optional<double> parseDouble(const QString& text);

// A whole decimal integer, the whole text: an optional sign and digits only ("+3" → 3).
// "2.5", "", " 3" and values beyond 64 bits give nothing.
std::optional<qint64> parseInteger(const QString& text);

} // namespace NumberParsing
