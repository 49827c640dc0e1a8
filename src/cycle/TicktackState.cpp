// SPDX-License-Identifier: GPL-3.0-or-later
#include "TicktackState.h"

TicktackState::TicktackState(QObject* parent) : QObject(parent) {}

void TicktackState::setTimeString(const QString& timeString)
{
    m_timeString = timeString;
    emit timeStringChanged(m_timeString);
}

void TicktackState::setTimesUp(bool timesUp)
{
    m_timesUp = timesUp;
    emit timesUpChanged(m_timesUp);
}

void TicktackState::setCountdown(double length, double secondsLeft)
{
    m_length = length;
    m_secondsLeft = secondsLeft;
    emit countdownChanged();
}
