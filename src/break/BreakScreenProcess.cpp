// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakScreenProcess.h"

#include "BreakChannel.h"
#include "BreakScreenChild.h"
#include "cycle/AppState.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "cycle/PromptState.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"

#include <QTimer>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A process that dies this many times before its windows are made will not make them.
constexpr int failedStartsToGiveUp = 3;
// A retired process that has not ended by then is ended.
constexpr int retireGraceMs = 5000;
// A log line from the break screen longer than this is cut.
constexpr int longestLogText = 4000;

} // namespace

BreakScreenProcess::BreakScreenProcess(QString program, QObject* parent)
    : QObject(parent), m_program(std::move(program))
{
    PromptState& prompt = AppState::promptState();
    TicktackState& countdown = AppState::breakState();
    connect(&prompt, &PromptState::promptChanged, this, &BreakScreenProcess::sendState);
    connect(&prompt, &PromptState::showSkipButtonChanged, this, &BreakScreenProcess::sendState);
    connect(&prompt, &PromptState::showPostponeButtonChanged, this, &BreakScreenProcess::sendState);
    connect(&countdown, &TicktackState::timeStringChanged, this, &BreakScreenProcess::sendState);
    // The end of the break countdown ends the break just as Skip does.
    connect(&countdown, &TicktackState::timesUpChanged, this, [this](bool timesUp) {
        if (timesUp && m_shown)
            AppState::promptState().skip();
    });
    connect(&AppState::workState(), &TicktackState::timeStringChanged, this, &BreakScreenProcess::followCountdown);
    // Paused or stopped, no break is near.
    connect(&AppState::events(), &CycleEvents::changed, this, [this] {
        if (!AppState::working() && !m_shown)
            retire();
    });
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
    const bool near = AppState::working() && AppState::workState().secondsLeft() <= startAheadSeconds;
    if (near && !m_process)
        start();
    else if (!near)
        retire();
}

void BreakScreenProcess::start()
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        giveUp(QStringLiteral("no socket pair: ") + QString::fromLocal8Bit(std::strerror(errno)));
        return;
    }
    auto* process = new QProcess(this);
    process->setProgram(m_program);
    process->setArguments({QStringLiteral("--break-screen")});
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    process->setInputChannelMode(QProcess::ForwardedInputChannel);
    const int childEnd = ends[1];
    process->setChildProcessModifier([childEnd] {
        // dup2 leaves close-on-exec off on the copy; the end already in place needs it cleared.
        if (childEnd == BreakChannel::childDescriptor)
            fcntl(childEnd, F_SETFD, 0);
        else
            dup2(childEnd, BreakChannel::childDescriptor);
    });
    connect(process, &QProcess::finished, this,
            [this, process](int exitCode, QProcess::ExitStatus status) { ended(process, exitCode, status); });
    connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            m_failedStarts = failedStartsToGiveUp - 1; // it will not start the next time either
            ended(process, -1, QProcess::CrashExit);
        }
    });
    auto* channel = new BreakChannel;
    channel->setParent(process);
    connect(channel, &BreakChannel::received, this, &BreakScreenProcess::received);
    m_process = process;
    m_channel = channel;
    m_ready = false;
    process->start();
    ::close(childEnd);
    channel->open(ends[0]);
}

void BreakScreenProcess::retire()
{
    if (!m_process)
        return;
    QProcess* process = std::exchange(m_process, nullptr);
    BreakChannel* channel = std::exchange(m_channel, nullptr);
    m_ready = false;
    channel->send({{QStringLiteral("shown"), false}});
    channel->close();
    QTimer::singleShot(retireGraceMs, process, [process] { process->kill(); });
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
    if (!m_shown || !m_channel)
        return;
    const PromptState& prompt = AppState::promptState();
    m_channel->send({
        {QStringLiteral("shown"), true},
        {QStringLiteral("prompt"), prompt.prompt()},
        {QStringLiteral("skip"), prompt.showSkipButton()},
        {QStringLiteral("postpone"), prompt.showPostponeButton()},
        {QStringLiteral("time"), AppState::breakState().timeString()},
    });
}

void BreakScreenProcess::received(const QJsonObject& message)
{
    if (message.contains(QStringLiteral("log"))) {
        const int level = message.value(QStringLiteral("log")).toInt(-1);
        if (level >= int(LogLevel::trace) && level <= int(LogLevel::critical))
            logger().log(LogLevel(level), message.value(QStringLiteral("text")).toString().left(longestLogText));
        return;
    }
    if (message.value(QStringLiteral("ready")).toBool()) {
        m_ready = true;
        m_failedStarts = 0;
        return;
    }
    if (!m_shown)
        return;
    if (message.value(QStringLiteral("drawn")).toBool()) {
        emit drawn();
        return;
    }
    const QString action = message.value(QStringLiteral("action")).toString();
    if (action == QLatin1String("skip"))
        CycleControl::skip();
    else if (action == QLatin1String("postpone") && AppState::promptState().showPostponeButton())
        CycleControl::postpone(0);
}

void BreakScreenProcess::ended(QProcess* process, int exitCode, QProcess::ExitStatus status)
{
    process->deleteLater();
    if (process != m_process)
        return; // retired: it was meant to end
    // What it said last (the reason it could not go on) is still in the connection.
    m_channel->drain();
    m_process = nullptr;
    m_channel = nullptr;
    const bool wasReady = std::exchange(m_ready, false);
    if (status == QProcess::NormalExit && exitCode == BreakScreenChild::ViewCannotBeMade)
        giveUp(QStringLiteral("the break view cannot be made"));
    else if (!wasReady && ++m_failedStarts >= failedStartsToGiveUp)
        giveUp(process->error() == QProcess::FailedToStart ? process->errorString()
                                                           : QStringLiteral("it ended before its windows were made"));
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
    logger().error(QStringLiteral("the break screen cannot start: ") + why + QStringLiteral(": breaks go on without it"));
    // Nobody sees the break already on: it ends, and the next work period starts.
    if (m_shown)
        AppState::promptState().skip();
}
