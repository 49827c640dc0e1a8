// SPDX-License-Identifier: GPL-3.0-or-later
#include "BadgeIcon.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>
#include <QSvgRenderer>

#include <cmath>
#include <functional>

namespace BadgeIcon {
namespace {

// A deep blue pill for the minutes, a slate one for the pause sign; both with a light rim, so
// they read on light and dark panels and stand apart from the wood.
const QColor minutesColor(0x17, 0x50, 0x6E);
const QColor pauseColor(0x4A, 0x4F, 0x57);

qreal badgeHeight(int size)
{
    // Digits of 8 px are the smallest that still read on a 16 px icon.
    return std::max(8.0, std::round(size * 0.5));
}

// Draws the image in its corner and the pill of `width` (made by `widthFor` from the pill's
// height) in the lower right, then `content` inside the pill.
QImage compose(const QString& svgPath, int size, const std::function<qreal(qreal)>& widthFor,
               const std::function<void(QPainter&, const QRectF&)>& content)
{
    QSvgRenderer renderer(svgPath);
    if (!renderer.isValid())
        return {};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!widthFor) {
        renderer.render(&painter, QRectF(0, 0, size, size));
        return image;
    }
    renderer.render(&painter, QRectF(imageArea(size)));
    const qreal height = badgeHeight(size);
    const qreal width = std::min<qreal>(size, std::max(height, widthFor(height)));
    content(painter, QRectF(size - width, size - height, width, height));
    return image;
}

QFont digitsFont(qreal height)
{
    QFont font;
    font.setBold(true);
    font.setPixelSize(int(std::round(height * 0.9)));
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

void drawPill(QPainter& painter, const QRectF& pill, const QColor& color, int size)
{
    const qreal rim = std::max(1.0, size / 24.0);
    QPainterPath path;
    path.addRoundedRect(pill.adjusted(rim / 2, rim / 2, -rim / 2, -rim / 2), pill.height() / 2,
                        pill.height() / 2);
    painter.setPen(QPen(QColor(255, 255, 255, 230), rim));
    painter.setBrush(color);
    painter.drawPath(path);
}

} // namespace

QString badgeText(const QString& countdown)
{
    // "MM:SS", with the hours written before the minutes when there are any: "HHMM:SS".
    // A held break's wait ("+03:12") gets its sign: the minutes count up, not down.
    static const QRegularExpression format(QStringLiteral("^(\\+?)(\\d*)(\\d\\d):\\d\\d$"));
    const QRegularExpressionMatch match = format.match(countdown);
    if (!match.hasMatch())
        return {};
    const QString sign = match.captured(1);
    const long long hours = match.captured(2).isEmpty() ? 0 : match.captured(2).toLongLong();
    const long long minutes = hours * 60 + match.captured(3).toLongLong();
    // Three digits do not fit a 16-pixel icon; from 100 minutes on the hours say enough.
    if (minutes < (sign.isEmpty() ? 100 : 10))
        return sign + QString::number(minutes);
    if (!sign.isEmpty() && minutes < 60)
        return QString::number(minutes);
    return sign + QString::number(minutes / 60) + u'h';
}

QRect imageArea(int size)
{
    const int side = int(std::round(size * 0.7));
    return {0, 0, side, side};
}

QImage draw(const QString& svgPath, int size, const QString& badge)
{
    if (badge.isEmpty())
        return compose(svgPath, size, {}, {});
    const auto widthFor = [&badge](qreal height) {
        return QFontMetricsF(digitsFont(height)).horizontalAdvance(badge) + height * 0.3;
    };
    return compose(svgPath, size, widthFor, [&badge, size](QPainter& painter, const QRectF& pill) {
        drawPill(painter, pill, minutesColor, size);
        painter.setFont(digitsFont(pill.height()));
        painter.setPen(Qt::white);
        painter.drawText(pill, Qt::AlignCenter, badge);
    });
}

QImage drawPaused(const QString& svgPath, int size)
{
    const auto widthFor = [](qreal height) { return height * 1.25; };
    return compose(svgPath, size, widthFor, [size](QPainter& painter, const QRectF& pill) {
        drawPill(painter, pill, pauseColor, size);
        // Two upright bars, as on every player's pause button.
        const qreal barHeight = std::round(pill.height() * 0.5);
        const qreal barWidth = std::max(1.5, std::round(pill.height() * 0.18));
        const qreal gap = std::max(1.5, std::round(pill.height() * 0.16));
        const qreal top = pill.center().y() - barHeight / 2;
        const qreal left = pill.center().x() - barWidth - gap / 2;
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawRect(QRectF(left, top, barWidth, barHeight));
        painter.drawRect(QRectF(left + barWidth + gap, top, barWidth, barHeight));
    });
}

} // namespace BadgeIcon
