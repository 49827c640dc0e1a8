// SPDX-License-Identifier: GPL-3.0-or-later
#include "IconFont.h"

#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

namespace {

const char assetName[] = "iconfont";
int registrationCount = 0;

} // namespace

std::optional<IconFont> IconFont::fromRawValue(const QString& rawValue)
{
    if (rawValue == QStringLiteral("\uE64B"))
        return IconFont(muyu);
    if (rawValue == QStringLiteral("\uE64C"))
        return IconFont(muyugun);
    return std::nullopt;
}

QString IconFont::rawValue() const
{
    return m_value == muyu ? QStringLiteral("\uE64B") : QStringLiteral("\uE64C");
}

void IconFont::registerFont(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Can not found font named: %s", assetName);
    const QByteArray data = file.readAll();
    if (data.isEmpty())
        qFatal("Can not found font named: %s", assetName);
    if (QFontDatabase::addApplicationFontFromData(data) < 0)
        qFatal("Register Iconfont failed: %s", "the font database cannot read the data as a font");
    ++registrationCount;
}

int IconFont::registrations()
{
    return registrationCount;
}

QString IconFont::name()
{
    static const QString family = [] {
        registerFont(QStringLiteral(":/%1").arg(QLatin1String(assetName)));
        return QString::fromLatin1(assetName);
    }();
    return family;
}

QImage IconFont::loadIcon(int size) const
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QFont font(name());
    font.setPixelSize(size);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(QGuiApplication::palette().color(QPalette::WindowText));
    painter.drawText(QRect(0, 0, size, size), Qt::AlignCenter, rawValue());
    return image;
}
