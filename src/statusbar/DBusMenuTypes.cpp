// SPDX-License-Identifier: GPL-3.0-or-later
#include "DBusMenuTypes.h"

#include <QDBusMetaType>

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayoutItem& item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    // Children travel as variants, each wrapping the same structure.
    argument.beginArray(qMetaTypeId<QDBusVariant>());
    for (const DBusMenuLayoutItem& child : item.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayoutItem& item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    item.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        item.children.append(qdbus_cast<DBusMenuLayoutItem>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemProperties& item)
{
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemProperties& item)
{
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuItemPropertyNames& item)
{
    argument.beginStructure();
    argument << item.id << item.names;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuItemPropertyNames& item)
{
    argument.beginStructure();
    argument >> item.id >> item.names;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& event)
{
    argument.beginStructure();
    argument << event.id << event.eventId << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& event)
{
    argument.beginStructure();
    argument >> event.id >> event.eventId >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

namespace DBusMenuTypes {

void registerMetaTypes()
{
    static const bool registered = [] {
        qDBusRegisterMetaType<DBusMenuLayoutItem>();
        qDBusRegisterMetaType<DBusMenuItemProperties>();
        qDBusRegisterMetaType<DBusMenuItemPropertiesList>();
        qDBusRegisterMetaType<DBusMenuItemPropertyNames>();
        qDBusRegisterMetaType<DBusMenuItemPropertyNamesList>();
        qDBusRegisterMetaType<DBusMenuEvent>();
        qDBusRegisterMetaType<DBusMenuEventList>();
        qDBusRegisterMetaType<DBusMenuShortcut>();
        // Signals and slots name the lists by these names.
        qRegisterMetaType<DBusMenuItemPropertiesList>("DBusMenuItemPropertiesList");
        qRegisterMetaType<DBusMenuItemPropertyNamesList>("DBusMenuItemPropertyNamesList");
        qRegisterMetaType<DBusMenuEventList>("DBusMenuEventList");
        return true;
    }();
    Q_UNUSED(registered);
}

} // namespace DBusMenuTypes
