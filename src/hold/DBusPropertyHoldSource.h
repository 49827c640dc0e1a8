// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DBusHoldSource.h"

#include <QVariant>
#include <functional>

// Holds while a property of a desktop service says so: the session manager's inhibited actions,
// the notification server's Do Not Disturb. Followed through PropertiesChanged.
class DBusPropertyHoldSource : public DBusHoldSource {
    Q_OBJECT

public:
    struct Property {
        QString service;
        QString path;
        QString interface;
        QString name;
        // Whether a value holds; a value of the wrong type must answer false.
        std::function<bool(const QVariant&)> holds;
    };

    DBusPropertyHoldSource(const QDBusConnection& connection, Property property, const QString& reason,
                           QObject* parent = nullptr);

protected:
    void subscribe() override;
    void query() override;

private slots:
    void propertiesChanged(const QString& interface, const QVariantMap& changed,
                           const QStringList& invalidated);

private:
    Property m_property;
};
