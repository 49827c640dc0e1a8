// SPDX-License-Identifier: GPL-3.0-or-later
#include "TerminationSignals.h"

#include "logging/Logger.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// [0] is written by the handler, [1] read by the event loop.
std::array<int, 2> pipeEnds{-1, -1};
constexpr std::array<int, 3> caught{SIGTERM, SIGHUP, SIGINT};

void onSignal(int number)
{
    const int saved = errno;
    const auto byte = static_cast<unsigned char>(number);
    // Async-signal-safe: one write, nothing else. A full pipe already holds a request to quit.
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[0], &byte, 1);
    errno = saved;
}

} // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    struct sigaction fallback {};
    fallback.sa_handler = SIG_DFL;
    for (int number : caught)
        ::sigaction(number, &fallback, nullptr);
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    pipeEnds = {-1, -1};
}

bool TerminationSignals::install()
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0) {
        logger().warning(QStringLiteral("cannot follow logout signals: ") +
                         QString::fromLocal8Bit(std::strerror(errno)) +
                         QStringLiteral("; a logout ends Lulltide without closing its history"));
        return false;
    }
    pipeEnds = {ends[0], ends[1]};
    m_notifier = new QSocketNotifier(pipeEnds[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readSignal);
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int number : caught)
        ::sigaction(number, &action, nullptr);
    return true;
}

void TerminationSignals::readSignal()
{
    unsigned char byte = 0;
    if (::read(pipeEnds[1], &byte, 1) != 1)
        return;
    logger().info(QStringLiteral("signal ") +
                  QString::fromLatin1(sigabbrev_np(byte) ? sigabbrev_np(byte) : "?") +
                  QStringLiteral(": Lulltide ends"));
    QCoreApplication::quit();
}
