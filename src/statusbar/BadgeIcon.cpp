// SPDX-License-Identifier: GPL-3.0-or-later
#include "BadgeIcon.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>
#include <QSvgRenderer>

namespace BadgeIcon {

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

QImage draw(const QString& svgPath, int size, const QString& badge, bool dimmed)
{
    QSvgRenderer renderer(svgPath);
    if (!renderer.isValid())
        return {};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    if (dimmed)
        painter.setOpacity(0.35);
    renderer.render(&painter, QRectF(0, 0, size, size));
    painter.setOpacity(1.0);

    if (!badge.isEmpty()) {
        // A deep blue pill with a light rim and white digits reads on light and dark panels and
        // stands apart from the wood.
        const qreal height = std::round(size * 0.68);
        QFont font;
        font.setBold(true);
        font.setPixelSize(int(std::round(height * 0.9)));
        font.setHintingPreference(QFont::PreferFullHinting);
        const qreal textWidth = QFontMetricsF(font).horizontalAdvance(badge);
        const qreal width = std::min<qreal>(size, std::max(height, textWidth + height * 0.3));
        const QRectF pill(size - width, size - height, width, height);
        const qreal rim = std::max(1.0, size / 24.0);

        QPainterPath path;
        path.addRoundedRect(pill.adjusted(rim / 2, rim / 2, -rim / 2, -rim / 2), height / 2, height / 2);
        painter.setPen(QPen(QColor(255, 255, 255, 230), rim));
        painter.setBrush(QColor(0x17, 0x50, 0x6E));
        painter.drawPath(path);

        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(pill, Qt::AlignCenter, badge);
    }
    painter.end();
    return image;
}

} // namespace BadgeIcon
