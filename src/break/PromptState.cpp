// SPDX-License-Identifier: GPL-3.0-or-later
#include "PromptState.h"

#include "BreakStyle.h"
#include "PrefStyleState.h"
#include "WindowController.h"
#include "app/AppState.h"
#include "app/WorkItem.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"
#include "timer/TicktackController.h"

#include <QRandomGenerator>

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
    m_shortBreakTimes = (m_shortBreakTimes + 1) % rotation;

    if (const auto idleItem = AppState::mouseMoveEventItem())
        idleItem->cancel();

    if (!WindowController::showBreak()) {
        skipUnshownBreak();
        return;
    }

    double seconds = prefs.breakTime();
    if (m_shortBreakTimes == 0) {
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
    TicktackController::break_(seconds);
}

void PromptState::showNewDay()
{
    setPrompt(newDayPrompt());
    if (!WindowController::showBreak()) {
        skipUnshownBreak();
        return;
    }
    TicktackController::break_(10.0);
}

void PromptState::closePrompt()
{
    WindowController::closeBreak();
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
}

void PromptState::skip()
{
    logger().info(QStringLiteral("skip break view"));
    AppState::promptState().closePrompt();
}
