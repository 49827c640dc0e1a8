// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

// The panel icon drawn by the program: the "muyu" image, with the minutes left as a badge for
// panels that show no text beside their icons.
namespace BadgeIcon {

// The badge for a countdown text ("24:13" → "24", "0130:00" → "90", "0230:00" → "2h") or a
// held break's wait ("+03:12" → "+3", "+25:00" → "25", "+0130:00" → "+1h"); empty when the
// text is empty or neither.
QString badgeText(const QString& countdown);

// The SVG image at `size` × `size` pixels with `badge` drawn over its lower right corner (no
// badge when it is empty), faded when `dimmed` (paused). A null image when the SVG cannot be read.
QImage draw(const QString& svgPath, int size, const QString& badge, bool dimmed = false);

} // namespace BadgeIcon
