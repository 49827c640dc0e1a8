// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QObject>

// org.freedesktop.PowerManagement.Inhibit as KDE's power management offers it.
class StandInPowerManagement : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PowerManagement.Inhibit")

public:
    explicit StandInPowerManagement(const QDBusConnection& bus);
    bool start();
    void setInhibit(bool inhibit);

public slots:
    Q_SCRIPTABLE bool HasInhibit() const { return m_inhibit; }

signals:
    Q_SCRIPTABLE void HasInhibitChanged(bool hasInhibit);

private:
    QDBusConnection m_bus;
    bool m_inhibit = false;
};
