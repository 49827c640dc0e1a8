// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QStringList>

// A panel's StatusNotifierWatcher as the real ones behave on the bus: it owns
// org.kde.StatusNotifierWatcher, takes registrations and announces them. Tests use it where a
// real panel is outside the machine.
class StandInWatcher : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ registeredItems)
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ isHostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    explicit StandInWatcher(const QDBusConnection& connection, QObject* parent = nullptr);

    // Takes the watcher's name and path; false when another process has the name.
    bool start();
    // Gives the name up, as a panel that quits does.
    void stop();

    // Each registered item as "<sender>/<path>", in order of registration.
    QStringList registeredItems() const { return m_items; }
    // The bus names that registered items.
    QStringList senders() const { return m_senders; }
    void clear();

    bool isHostRegistered() const { return true; }
    int protocolVersion() const { return 0; }

public slots:
    Q_SCRIPTABLE void RegisterStatusNotifierItem(const QString& service);
    Q_SCRIPTABLE void RegisterStatusNotifierHost(const QString& service);

signals:
    Q_SCRIPTABLE void StatusNotifierItemRegistered(const QString& item);
    Q_SCRIPTABLE void StatusNotifierItemUnregistered(const QString& item);
    Q_SCRIPTABLE void StatusNotifierHostRegistered();
    void itemRegistered(const QString& sender);

private:
    QDBusConnection m_connection;
    QStringList m_items;
    QStringList m_senders;
};
