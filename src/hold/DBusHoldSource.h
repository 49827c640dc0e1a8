// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

#include <QDBusConnection>
#include <functional>

class QDBusPendingCall;
class QDBusServiceWatcher;

// A condition that a desktop service tells on the session bus. The service may start after us,
// restart or go: it is asked again whenever it appears, and holds nothing while it is away.
// Subclasses ask and listen; answers from anyone but the service's owner are ignored by the bus
// library's sender matching.
class DBusHoldSource : public HoldSource {
    Q_OBJECT

public:
    DBusHoldSource(const QDBusConnection& connection, const QString& service, const QString& reason,
                   QObject* parent = nullptr);

    // Subscribes and asks; call once after construction.
    void start();

    bool holding() const override { return m_holding; }
    QString reason() const override { return m_holding ? m_reason : QString(); }

protected:
    // Subscribes to the service's change signals (once).
    virtual void subscribe() = 0;
    // Asks the service for the present state (at start and whenever it appears).
    virtual void query() = 0;
    void setHolding(bool holding);
    // Runs `done` with the answer once it is back; an error answer counts as not holding.
    void whenAnswered(const QDBusPendingCall& call, std::function<void(const QVariant&)> done);

    QDBusConnection m_connection;
    const QString m_service;

private:
    QDBusServiceWatcher* m_watcher = nullptr;
    QString m_reason;
    bool m_holding = false;
};
