// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewProcess.h"

#include "ViewChannel.h"
#include "logging/Logger.h"

#include <QTimer>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// A retired process that has not ended by then is ended.
constexpr int retireGraceMs = 5000;
// A log line from a view process longer than this is cut.
constexpr int longestLogText = 4000;

} // namespace

ViewProcess::ViewProcess(const QString& program, const QString& option, QObject* parent)
    : QObject(parent), m_channel(new ViewChannel)
{
    m_channel->setParent(this);
    m_process.setProgram(program);
    m_process.setArguments({option});
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
    connect(&m_process, &QProcess::finished, this, &ViewProcess::finish);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        m_startError = m_process.errorString();
        finish(-1, QProcess::CrashExit);
    });
    connect(m_channel, &ViewChannel::received, this, &ViewProcess::forward);
}

void ViewProcess::start()
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        m_startError = QStringLiteral("no socket pair: ") + QString::fromLocal8Bit(std::strerror(errno));
        // Told once the caller is back in the event loop, as a failed start of QProcess is.
        QTimer::singleShot(0, this, [this] { finish(-1, QProcess::CrashExit); });
        return;
    }
    const int childEnd = ends[1];
    m_process.setChildProcessModifier([childEnd] {
        // dup2 leaves close-on-exec off on the copy; an end already in place needs it cleared.
        if (childEnd == ViewChannel::childDescriptor)
            fcntl(childEnd, F_SETFD, 0);
        else
            dup2(childEnd, ViewChannel::childDescriptor);
    });
    m_process.start();
    ::close(childEnd);
    m_channel->open(ends[0]);
}

void ViewProcess::send(const QJsonObject& message)
{
    m_channel->send(message);
}

ViewProcess::~ViewProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(1000);
    }
}

void ViewProcess::retire()
{
    m_retired = true;
    m_channel->close();
    if (m_finished)
        deleteLater();
    else
        QTimer::singleShot(retireGraceMs, this, [this] { m_process.kill(); });
}

void ViewProcess::finish(int exitCode, QProcess::ExitStatus status)
{
    if (std::exchange(m_finished, true))
        return;
    // What it said last (often why it ended) is still in the connection.
    m_channel->drain();
    if (!m_retired)
        emit ended(exitCode, status);
    deleteLater();
}

void ViewProcess::forward(const QJsonObject& message)
{
    if (!message.contains(QStringLiteral("log"))) {
        emit received(message);
        return;
    }
    const int level = message.value(QStringLiteral("log")).toInt(-1);
    if (level >= int(LogLevel::trace) && level <= int(LogLevel::critical))
        logger().log(LogLevel(level), message.value(QStringLiteral("text")).toString().left(longestLogText));
}
