// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

// The countdown as shown: one instance for work periods, one for breaks.
// Setters notify on every assignment, also of an unchanged value: the status item reacts to
// each pair it is handed, and observers must see every write the timer makes.
class TicktackState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The countdown states belong to the application")
    Q_PROPERTY(QString timeString READ timeString WRITE setTimeString NOTIFY timeStringChanged)
    Q_PROPERTY(bool timesUp READ timesUp WRITE setTimesUp NOTIFY timesUpChanged)

public:
    explicit TicktackState(QObject* parent = nullptr);

    QString timeString() const { return m_timeString; }
    void setTimeString(const QString& timeString);

    bool timesUp() const { return m_timesUp; }
    void setTimesUp(bool timesUp);

signals:
    void timeStringChanged(const QString& timeString);
    void timesUpChanged(bool timesUp);

private:
    QString m_timeString;
    bool m_timesUp = false;
};
