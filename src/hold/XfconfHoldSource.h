// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DBusHoldSource.h"

#include <QDBusVariant>

// Holds while XFCE's notification daemon is set to Do Not Disturb: the property /do-not-disturb
// of the xfconf channel xfce4-notifyd, read and followed over xfconf's bus interface.
class XfconfHoldSource : public DBusHoldSource {
    Q_OBJECT

public:
    explicit XfconfHoldSource(const QDBusConnection& connection, QObject* parent = nullptr);

protected:
    void subscribe() override;
    void query() override;

private slots:
    void propertyChanged(const QString& channel, const QString& property, const QDBusVariant& value);
    void propertyRemoved(const QString& channel, const QString& property);
};
