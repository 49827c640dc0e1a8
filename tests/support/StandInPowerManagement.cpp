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

bool StandInPowerManagement::HasInhibit()
{
    if (m_holdAnswers) {
        setDelayedReply(true);
        m_held.append(message());
    }
    return m_inhibit;
}

void StandInPowerManagement::answerHeld()
{
    for (const QDBusMessage& question : std::as_const(m_held))
        m_bus.send(question.createReply(m_inhibit));
    m_held.clear();
}
