// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <functional>

class QDBusPendingCall;
class QDBusServiceWatcher;

// A condition that a desktop service tells on the session bus. The service may start after us,
// restart or go: it is asked again whenever it appears, and holds nothing while it is away.
// Subclasses ask and listen. Nothing waits for the bus: the service's owner is learnt from
// answers and announcements, and signals from anyone else are ignored.
class DBusHoldSource : public HoldSource, protected QDBusContext {
    Q_OBJECT

public:
    DBusHoldSource(const QDBusConnection& connection, const QString& service, const QString& reason,
                   QObject* parent = nullptr);

    // Subscribes and asks; call once after construction.
    void start();

    QString reason() const override { return holding() ? m_reason : QString(); }

protected:
    // Subscribes to the service's change signals (once).
    virtual void subscribe() = 0;
    // Asks the service for the present state (at start and whenever it appears).
    virtual void query() = 0;
    // Runs `done` with the answer once it is back, unless the owner changed meanwhile; an error
    // answer comes as an empty value.
    void whenAnswered(const QDBusPendingCall& call, std::function<void(const QVariant&)> done);
    // Connects `slot` to a signal of the service's object at `path`. (Naming the service here
    // would make the bus library ask for its owner and wait for the answer.)
    void listen(const QString& path, const QString& interface, const QString& signal, const char* slot);
    // In a slot connected by listen(): whether the signal came from the service's owner.
    bool fromOwner() const;

    QDBusConnection m_connection;
    const QString m_service;

private:
    void ownerChanged(const QString& owner);

    QDBusServiceWatcher* m_watcher = nullptr;
    // The unique name of the service's owner; empty while nobody owns it.
    QString m_owner;
    QString m_reason;
};
