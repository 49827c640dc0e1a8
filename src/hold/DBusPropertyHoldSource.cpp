// SPDX-License-Identifier: GPL-3.0-or-later
#include "DBusPropertyHoldSource.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusVariant>

namespace {
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
}

DBusPropertyHoldSource::DBusPropertyHoldSource(const QDBusConnection& connection, Property property,
                                               const QString& reason, QObject* parent)
    : DBusHoldSource(connection, property.service, reason, parent), m_property(std::move(property))
{
}

void DBusPropertyHoldSource::subscribe()
{
    listen(m_property.path, propertiesInterface, QStringLiteral("PropertiesChanged"),
           SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
}

void DBusPropertyHoldSource::query()
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_property.service, m_property.path,
                                                       propertiesInterface, QStringLiteral("Get"));
    call << m_property.interface << m_property.name;
    whenAnswered(m_connection.asyncCall(call),
                 [this](const QVariant& value) { setHolding(m_property.holds(value)); });
}

void DBusPropertyHoldSource::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                               const QStringList& invalidated)
{
    if (interface != m_property.interface || !fromOwner())
        return;
    if (changed.contains(m_property.name))
        setHolding(m_property.holds(changed.value(m_property.name)));
    else if (invalidated.contains(m_property.name))
        query();
}
