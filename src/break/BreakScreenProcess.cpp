// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakScreenProcess.h"

#include "BreakScreenChild.h"
#include "ViewProcess.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "cycle/PromptState.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"

#include <QTimer>
#include <utility>

namespace {

// A process that dies this many times before its windows are made will not make them.
constexpr int failedStartsToGiveUp = 3;

} // namespace

BreakScreenProcess::BreakScreenProcess(QString program, QObject* parent)
    : QObject(parent), m_program(std::move(program))
{
    PromptState& prompt = AppState::promptState();
    TicktackState& countdown = AppState::breakState();
    connect(&prompt, &PromptState::promptChanged, this, &BreakScreenProcess::sendState);
    connect(&prompt, &PromptState::showSkipButtonChanged, this, &BreakScreenProcess::sendState);
    connect(&prompt, &PromptState::showPostponeButtonChanged, this, &BreakScreenProcess::sendState);
    connect(&prompt, &PromptState::kindChanged, this, &BreakScreenProcess::sendState);
    connect(&countdown, &TicktackState::timeStringChanged, this, &BreakScreenProcess::sendState);
    // The end of the break countdown ends the break just as Skip does.
    connect(&countdown, &TicktackState::timesUpChanged, this, [this](bool timesUp) {
        if (timesUp && m_shown)
            AppState::promptState().skip();
    });
    connect(&AppState::workState(), &TicktackState::timeStringChanged, this,
            &BreakScreenProcess::followCountdown);
    // Paused or stopped, no break is near.
    connect(&AppState::events(), &CycleEvents::changed, this, [this] {
        if (!AppState::working() && !m_shown)
            retire();
    });
    // A held break may wait for the length of a film: it opens on demand when the hold ends.
    connect(&AppState::events(), &CycleEvents::held, this, &BreakScreenProcess::followCountdown);
}

BreakScreenProcess::~BreakScreenProcess()
{
    if (&AppState::breakScreen() == this)
        AppState::setBreakScreen(nullptr);
}

void BreakScreenProcess::install()
{
    AppState::setBreakScreen(this);
}

bool BreakScreenProcess::showWindows()
{
    if (m_broken)
        return false;
    m_shown = true;
    m_seen = false;
    if (!m_process)
        start();
    sendState();
    return true;
}

void BreakScreenProcess::closeWindows()
{
    m_shown = false;
    retire();
}

void BreakScreenProcess::followCountdown()
{
    if (m_shown || m_broken)
        return;
    const bool near = AppState::working() && !AppState::breakGate().held() &&
                      AppState::workState().secondsLeft() <= startAheadSeconds;
    if (near && !m_process)
        start();
    else if (!near)
        retire();
}

void BreakScreenProcess::start()
{
    m_process = new ViewProcess(m_program, QStringLiteral("--break-screen"), this);
    m_ready = false;
    connect(m_process, &ViewProcess::received, this, &BreakScreenProcess::received);
    connect(m_process, &ViewProcess::ended, this, &BreakScreenProcess::ended);
    m_process->start();
}

void BreakScreenProcess::retire()
{
    if (!m_process)
        return;
    m_ready = false;
    m_process->send({{QStringLiteral("shown"), false}});
    std::exchange(m_process, nullptr)->retire();
}

void BreakScreenProcess::sendState()
{
    // The cycle sets the prompt, the buttons and the countdown one after the other as a break
    // opens: they go as one message once it is done.
    if (std::exchange(m_sendQueued, true))
        return;
    QTimer::singleShot(0, this, [this] {
        m_sendQueued = false;
        sendNow();
    });
}

void BreakScreenProcess::sendNow()
{
    if (!m_shown || !m_process)
        return;
    const PromptState& prompt = AppState::promptState();
    m_process->send({
        {QStringLiteral("shown"), true},
        {QStringLiteral("prompt"), prompt.prompt()},
        {QStringLiteral("skip"), prompt.showSkipButton()},
        {QStringLiteral("postpone"), prompt.showPostponeButton()},
        {QStringLiteral("time"), AppState::breakState().timeString()},
        {QStringLiteral("kind"), prompt.kindName()},
        {QStringLiteral("length"), AppState::breakState().length()},
        {QStringLiteral("left"), AppState::breakState().secondsLeft()},
        {QStringLiteral("again"), m_seen},
    });
}

void BreakScreenProcess::received(const QJsonObject& message)
{
    if (message.value(QStringLiteral("ready")).toBool()) {
        m_ready = true;
        m_failedStarts = 0;
        return;
    }
    if (!m_shown)
        return;
    if (message.value(QStringLiteral("drawn")).toBool()) {
        m_seen = true;
        emit drawn();
        return;
    }
    const QString action = message.value(QStringLiteral("action")).toString();
    if (action == QLatin1String("skip"))
        CycleControl::skip();
    else if (action == QLatin1String("postpone") && AppState::promptState().showPostponeButton())
        CycleControl::postpone(0);
}

void BreakScreenProcess::ended(int exitCode, QProcess::ExitStatus status)
{
    const QString startError = m_process->startError();
    m_process = nullptr; // it deletes itself
    const bool wasReady = std::exchange(m_ready, false);
    if (!startError.isEmpty())
        giveUp(startError);
    else if (status == QProcess::NormalExit && exitCode == BreakScreenChild::ViewCannotBeMade)
        giveUp(QStringLiteral("the break view cannot be made"));
    else if (!wasReady && ++m_failedStarts >= failedStartsToGiveUp)
        giveUp(QStringLiteral("it ended before its windows were made"));
    if (m_broken)
        return;
    if (m_shown) {
        // Ending the break-screen process does not end the break.
        logger().warning(QStringLiteral("the break screen ended during the break: starting it again"));
        start();
        sendState();
    } else {
        followCountdown();
    }
}

void BreakScreenProcess::giveUp(const QString& why)
{
    if (std::exchange(m_broken, true))
        return;
    logger().error(QStringLiteral("the break screen cannot start: ") + why +
                   QStringLiteral(": breaks go on without it"));
    // Nobody sees the break already on: it ends, and the next work period starts.
    if (m_shown)
        AppState::promptState().skip();
}
