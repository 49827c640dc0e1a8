// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>

class QImage;

// One image of a StatusNotifierItem icon: a(iiay), ARGB32 in network byte order.
struct SniIconPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    static SniIconPixmap fromImage(const QImage& image);
};
using SniIconPixmapList = QList<SniIconPixmap>;

// The item's tooltip: (sa(iiay)ss) icon name, images, title, text.
struct SniToolTip {
    QString iconName;
    SniIconPixmapList iconPixmaps;
    QString title;
    QString text;
};

QDBusArgument& operator<<(QDBusArgument& argument, const SniIconPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, SniIconPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const SniToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, SniToolTip& toolTip);

Q_DECLARE_METATYPE(SniIconPixmap)
Q_DECLARE_METATYPE(SniToolTip)

namespace StatusNotifierTypes {
// Must run before an object using these types is registered on a bus.
void registerMetaTypes();
} // namespace StatusNotifierTypes
