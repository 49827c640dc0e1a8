// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

namespace SymbolIcon {

// The freedesktop icon that stands for a symbol name ("stop.circle" → "media-playback-stop");
// empty for an unknown or empty name.
QString freedesktopName(const QString& symbolName);

} // namespace SymbolIcon
