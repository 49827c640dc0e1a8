// SPDX-License-Identifier: GPL-3.0-or-later
#include "XfconfHoldSource.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace {
const QString service = QStringLiteral("org.xfce.Xfconf");
const QString path = QStringLiteral("/org/xfce/Xfconf");
const QString interface = QStringLiteral("org.xfce.Xfconf");
const QString channel = QStringLiteral("xfce4-notifyd");
const QString doNotDisturb = QStringLiteral("/do-not-disturb");

bool isOn(const QVariant& value)
{
    return value.typeId() == QMetaType::Bool && value.toBool();
}
} // namespace

XfconfHoldSource::XfconfHoldSource(const QDBusConnection& connection, QObject* parent)
    : DBusHoldSource(connection, service, QCoreApplication::translate("HoldSource", "Do Not Disturb is on"),
                     parent)
{
}

void XfconfHoldSource::subscribe()
{
    listen(path, interface, QStringLiteral("PropertyChanged"),
           SLOT(propertyChanged(QString, QString, QDBusVariant)));
    listen(path, interface, QStringLiteral("PropertyRemoved"), SLOT(propertyRemoved(QString, QString)));
}

void XfconfHoldSource::query()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("GetProperty"));
    call << channel << doNotDisturb;
    // An unset property answers with an error: Do Not Disturb was never switched on.
    whenAnswered(m_connection.asyncCall(call), [this](const QVariant& value) { setHolding(isOn(value)); });
}

void XfconfHoldSource::propertyChanged(const QString& changedChannel, const QString& changedProperty,
                                       const QDBusVariant& value)
{
    if (changedChannel == channel && changedProperty == doNotDisturb && fromOwner())
        setHolding(isOn(value.variant()));
}

void XfconfHoldSource::propertyRemoved(const QString& changedChannel, const QString& changedProperty)
{
    if (changedChannel == channel && changedProperty == doNotDisturb && fromOwner())
        setHolding(false);
}
