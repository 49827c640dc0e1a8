// SPDX-License-Identifier: GPL-3.0-or-later
#include "RemoteBreakState.h"

void RemoteBreakState::setPrompt(const QString& prompt)
{
    if (prompt == m_prompt)
        return;
    m_prompt = prompt;
    emit promptChanged();
}

void RemoteBreakState::setShowSkipButton(bool show)
{
    if (show == m_showSkipButton)
        return;
    m_showSkipButton = show;
    emit showSkipButtonChanged();
}

void RemoteBreakState::setShowPostponeButton(bool show)
{
    if (show == m_showPostponeButton)
        return;
    m_showPostponeButton = show;
    emit showPostponeButtonChanged();
}

void RemoteBreakState::setTimeString(const QString& timeString)
{
    if (timeString == m_timeString)
        return;
    m_timeString = timeString;
    emit timeStringChanged();
}

void RemoteBreakState::setKindName(const QString& kindName)
{
    if (kindName == m_kindName)
        return;
    m_kindName = kindName;
    emit kindChanged();
}

void RemoteBreakState::setCountdown(double length, double secondsLeft)
{
    if (length == m_length && secondsLeft == m_secondsLeft)
        return;
    m_length = length;
    m_secondsLeft = secondsLeft;
    emit countdownChanged();
}
