// SPDX-License-Identifier: GPL-3.0-or-later
#include "StandInPowerManagement.h"

StandInPowerManagement::StandInPowerManagement(const QDBusConnection& bus) : m_bus(bus) {}

bool StandInPowerManagement::start()
{
    return m_bus.registerObject(QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"), this,
                                QDBusConnection::ExportScriptableContents) &&
           m_bus.registerService(QStringLiteral("org.freedesktop.PowerManagement"));
}

void StandInPowerManagement::setInhibit(bool inhibit)
{
    m_inhibit = inhibit;
    emit HasInhibitChanged(inhibit);
}
