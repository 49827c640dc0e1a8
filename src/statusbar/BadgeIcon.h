// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QString>

// The panel icon drawn by the program: the "muyu" image, with the minutes left as a badge for
// panels that show no text beside their icons.
namespace BadgeIcon {

// The badge for a countdown text ("24:13" → "24", "0130:00" → "90", "0230:00" → "2h");
// empty when the text is empty or no countdown.
QString badgeText(const QString& countdown);

// The SVG image at `size` × `size` pixels with `badge` drawn over its lower right corner (no
// badge when it is empty). A null image when the SVG cannot be read.
QImage draw(const QString& svgPath, int size, const QString& badge);

} // namespace BadgeIcon
