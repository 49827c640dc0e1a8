// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QList>
#include <QObject>

// org.freedesktop.PowerManagement.Inhibit as KDE's power management offers it.
class StandInPowerManagement : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PowerManagement.Inhibit")

public:
    explicit StandInPowerManagement(const QDBusConnection& bus);
    bool start();
    void setInhibit(bool inhibit);
    // From now on questions wait for answerHeld(), as from a service that is slow to answer.
    void holdAnswers() { m_holdAnswers = true; }
    qsizetype heldQuestions() const { return m_held.size(); }
    void answerHeld();

public slots:
    Q_SCRIPTABLE bool HasInhibit();

signals:
    Q_SCRIPTABLE void HasInhibitChanged(bool hasInhibit);

private:
    QDBusConnection m_bus;
    bool m_inhibit = false;
    bool m_holdAnswers = false;
    QList<QDBusMessage> m_held;
};
