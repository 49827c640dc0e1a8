// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

// The countdown as shown: one instance for work periods, one for breaks.
// Setters notify on every assignment, also of an unchanged value: the status item reacts to
// each pair it is handed, and observers must see every write the timer makes.
class TicktackState : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString timeString READ timeString WRITE setTimeString NOTIFY timeStringChanged)
    Q_PROPERTY(bool timesUp READ timesUp WRITE setTimesUp NOTIFY timesUpChanged)
    Q_PROPERTY(double length READ length NOTIFY countdownChanged)
    Q_PROPERTY(double secondsLeft READ secondsLeft NOTIFY countdownChanged)

public:
    explicit TicktackState(QObject* parent = nullptr);

    QString timeString() const { return m_timeString; }
    void setTimeString(const QString& timeString);

    bool timesUp() const { return m_timesUp; }
    void setTimesUp(bool timesUp);

    // The period's full length and what is left of it, in seconds, for those who act before
    // the end (the heads-up). Set before the time string of the same tick.
    double length() const { return m_length; }
    double secondsLeft() const { return m_secondsLeft; }
    void setCountdown(double length, double secondsLeft);

signals:
    void timeStringChanged(const QString& timeString);
    void timesUpChanged(bool timesUp);
    void countdownChanged();

private:
    QString m_timeString;
    bool m_timesUp = false;
    double m_length = 0;
    double m_secondsLeft = 0;
};
