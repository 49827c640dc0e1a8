// SPDX-License-Identifier: GPL-3.0-or-later
#include "StatusNotifierTypes.h"

#include <QDBusMetaType>
#include <QImage>
#include <QtEndian>

SniIconPixmap SniIconPixmap::fromImage(const QImage& image)
{
    // Hosts expect straight (not premultiplied) ARGB, each pixel a big-endian 32-bit word.
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    SniIconPixmap pixmap;
    pixmap.width = argb.width();
    pixmap.height = argb.height();
    pixmap.bytes.resize(qsizetype(argb.width()) * argb.height() * 4);
    auto* out = reinterpret_cast<quint32*>(pixmap.bytes.data());
    for (int y = 0; y < argb.height(); ++y) {
        const auto* line = reinterpret_cast<const quint32*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x)
            *out++ = qToBigEndian(line[x]);
    }
    return pixmap;
}

QDBusArgument& operator<<(QDBusArgument& argument, const SniIconPixmap& pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, SniIconPixmap& pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const SniToolTip& toolTip)
{
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.iconPixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, SniToolTip& toolTip)
{
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.iconPixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

namespace StatusNotifierTypes {

void registerMetaTypes()
{
    static const bool registered = [] {
        qDBusRegisterMetaType<SniIconPixmap>();
        qDBusRegisterMetaType<SniIconPixmapList>();
        qDBusRegisterMetaType<SniToolTip>();
        qRegisterMetaType<SniIconPixmapList>("SniIconPixmapList");
        return true;
    }();
    Q_UNUSED(registered);
}

} // namespace StatusNotifierTypes
