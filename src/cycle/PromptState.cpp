// SPDX-License-Identifier: GPL-3.0-or-later
#include "PromptState.h"

#include "AppState.h"
#include "BreakGate.h"
#include "BreakScreen.h"
#include "CycleControl.h"
#include "CycleEvents.h"
#include "TicktackController.h"
#include "TicktackState.h"
#include "WorkItem.h"
#include "logging/Logger.h"
#include "preferences/BreakStyle.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"

#include <QRandomGenerator>
#include <utility>

PromptState::PromptState(QObject* parent) : QObject(parent), m_prompt(AppState::prefState().breakPrompt()) {}

void PromptState::setPrompt(const QString& prompt)
{
    m_prompt = prompt;
    emit promptChanged();
}

void PromptState::setShowSkipButton(bool show)
{
    m_showSkipButton = show;
    emit showSkipButtonChanged();
}

QString PromptState::newDayPrompt()
{
    return QStringLiteral("今天, 我又来上班了 \n 这一次 \n属于我的鱼都要摸回来");
}

void PromptState::showBreak()
{
    PrefState& prefs = AppState::prefState();
    const qint64 rotation = prefs.shortBreakTimes();
    if (rotation == 0)
        qFatal("short_break_times is 0: a rotation needs at least one break");
    const bool repeat = std::exchange(m_repeat, false);
    if (!repeat)
        m_shortBreakTimes = (m_shortBreakTimes + 1) % rotation;

    if (const auto idleItem = AppState::mouseMoveEventItem())
        idleItem->cancel();

    if (!AppState::breakScreen().show()) {
        skipUnshownBreak();
        return;
    }

    double seconds = prefs.breakTime();
    setKind((repeat ? m_kind == Kind::Long : m_shortBreakTimes == 0) ? Kind::Long : Kind::Short);
    if (m_kind == Kind::Long) {
        // Every long break shows the long-break prompt; the "custom" switch only reveals its editor.
        setPrompt(prefs.longBreakPrompt());
        setShowSkipButton(!prefs.forceLongBreak());
        seconds = prefs.longBreakTime();
    } else {
        QString prompt = prefs.breakPrompt();
        if (!prefs.customBreakPrompt()) {
            const QStringList prompts = prefs.styleState()->breakStyle().prompts();
            if (!prompts.isEmpty())
                prompt = prompts.at(QRandomGenerator::global()->bounded(prompts.size()));
        }
        setPrompt(prompt);
        setShowSkipButton(true);
    }
    updatePostponeButton();
    TicktackController::break_(seconds);
}

void PromptState::showNewDay()
{
    setKind(Kind::NewDay);
    setPrompt(newDayPrompt());
    updatePostponeButton();
    if (!AppState::breakScreen().show()) {
        skipUnshownBreak();
        return;
    }
    TicktackController::break_(10.0);
}

void PromptState::closePrompt()
{
    AppState::breakScreen().close();
    TicktackController::work(AppState::prefState().workTime());
}

void PromptState::skipUnshownBreak()
{
    // Nobody would see the break, and its end comes from the view: the cycle goes on without it.
    logger().error(QStringLiteral("no break screen can be shown: the next work period starts"));
    TicktackController::work(AppState::prefState().workTime());
}

void PromptState::resetShortBreakTimes()
{
    m_shortBreakTimes = 0;
    m_repeat = false;
}

PromptState::Kind PromptState::nextKind() const
{
    if (m_repeat)
        return m_kind;
    const qint64 rotation = AppState::prefState().shortBreakTimes();
    return rotation != 0 && (m_shortBreakTimes + 1) % rotation == 0 ? Kind::Long : Kind::Short;
}

QString PromptState::kindName() const
{
    switch (m_kind) {
    case Kind::Long:
        return QStringLiteral("long");
    case Kind::NewDay:
        return QStringLiteral("newDay");
    case Kind::Short:
        break;
    }
    return QStringLiteral("short");
}

void PromptState::setKind(Kind kind)
{
    if (kind == m_kind)
        return;
    m_kind = kind;
    emit kindChanged();
}

void PromptState::repeatBreak()
{
    m_repeat = true;
}

void PromptState::updatePostponeButton()
{
    const bool show = m_kind != Kind::NewDay && m_showSkipButton && AppState::breakGate().postponeAllowed();
    if (show == m_showPostponeButton)
        return;
    m_showPostponeButton = show;
    emit showPostponeButtonChanged();
}

void PromptState::postpone()
{
    CycleControl::postpone(0);
}

void PromptState::skip()
{
    logger().info(QStringLiteral("skip break view"));
    emit AppState::events().breakEnded(AppState::breakState().timesUp());
    AppState::breakGate().breakFinished();
    AppState::promptState().closePrompt();
}
