// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DBusHoldSource.h"

// Holds while an application inhibits power management and idleness through
// org.freedesktop.PowerManagement.Inhibit, as players and presentation programs do on KDE
// Plasma and other desktops: HasInhibit, then HasInhibitChanged.
class PowerInhibitHoldSource : public DBusHoldSource {
    Q_OBJECT

public:
    explicit PowerInhibitHoldSource(const QDBusConnection& connection, QObject* parent = nullptr);

protected:
    void subscribe() override;
    void query() override;

private slots:
    void hasInhibitChanged(bool hasInhibit);
};
