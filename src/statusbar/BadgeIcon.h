// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRect>
#include <QString>

// The panel icon drawn by the program: the "muyu" image, with the minutes left as a badge for
// panels that show no text beside their icons, or a pause sign while the cycle stands still.
namespace BadgeIcon {

// The badge for a countdown text ("24:13" → "24", "0130:00" → "90", "0230:00" → "2h") or a
// held break's wait ("+03:12" → "+3", "+25:00" → "25", "+0130:00" → "+1h"); empty when the
// text is empty or neither.
QString badgeText(const QString& countdown);

// Where the image goes in an icon of `size` pixels that carries a badge: drawn smaller in the
// upper left corner, so the badge in the lower right covers only its edge and the wooden fish
// stays recognisable also at 16 px.
QRect imageArea(int size);

// The SVG image at `size` × `size` pixels with `badge` drawn over its lower right corner (the
// whole image when `badge` is empty). A null image when the SVG cannot be read.
QImage draw(const QString& svgPath, int size, const QString& badge);

// The image with a pause sign where the badge goes: the cycle is paused or stopped. The image
// keeps its colours, so it stays as visible on a dark panel as on a light one.
QImage drawPaused(const QString& svgPath, int size);

} // namespace BadgeIcon
