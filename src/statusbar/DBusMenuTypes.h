// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QMetaType>
#include <QStringList>
#include <QVariantMap>

// A menu entry with its children, as GetLayout hands it out: (ia{sv}av).
struct DBusMenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

// An entry's properties: (ia{sv}).
struct DBusMenuItemProperties {
    int id = 0;
    QVariantMap properties;
};
using DBusMenuItemPropertiesList = QList<DBusMenuItemProperties>;

// The names of properties an entry lost: (ias).
struct DBusMenuItemPropertyNames {
    int id = 0;
    QStringList names;
};
using DBusMenuItemPropertyNamesList = QList<DBusMenuItemPropertyNames>;

// One event of EventGroup: (isvu).
struct DBusMenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};
using DBusMenuEventList = QList<DBusMenuEvent>;

// A key combination: a list of combinations, each a list of modifiers and a key (aas).
using DBusMenuShortcut = QList<QStringList>;

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemPropertyNames& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemPropertyNames& item);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event);

Q_DECLARE_METATYPE(DBusMenuLayoutItem)
Q_DECLARE_METATYPE(DBusMenuItemProperties)
Q_DECLARE_METATYPE(DBusMenuItemPropertyNames)
Q_DECLARE_METATYPE(DBusMenuEvent)

namespace DBusMenuTypes {
// Must run before an object using these types is registered on a bus.
void registerMetaTypes();
} // namespace DBusMenuTypes
