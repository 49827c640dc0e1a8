// SPDX-License-Identifier: GPL-3.0-or-later
#include "PowerInhibitHoldSource.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace {
const QString service = QStringLiteral("org.freedesktop.PowerManagement");
const QString path = QStringLiteral("/org/freedesktop/PowerManagement/Inhibit");
const QString interface = QStringLiteral("org.freedesktop.PowerManagement.Inhibit");
} // namespace

PowerInhibitHoldSource::PowerInhibitHoldSource(const QDBusConnection& connection, QObject* parent)
    : DBusHoldSource(connection, service,
                     QCoreApplication::translate("HoldSource", "an application keeps the session awake"),
                     parent)
{
}

void PowerInhibitHoldSource::subscribe()
{
    listen(path, interface, QStringLiteral("HasInhibitChanged"), SLOT(hasInhibitChanged(bool)));
}

void PowerInhibitHoldSource::query()
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("HasInhibit"));
    whenAnswered(m_connection.asyncCall(call), [this](const QVariant& value) {
        setHolding(value.typeId() == QMetaType::Bool && value.toBool());
    });
}

void PowerInhibitHoldSource::hasInhibitChanged(bool hasInhibit)
{
    if (fromOwner())
        setHolding(hasInhibit);
}
