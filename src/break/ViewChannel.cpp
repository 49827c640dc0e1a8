// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewChannel.h"

#include "logging/ForwardingLogHandler.h"
#include "logging/LoggingSystem.h"

#include <QJsonDocument>
#include <QSocketNotifier>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A message is a few hundred bytes; a line longer than this is not one of ours.
constexpr qsizetype longestLine = 1 << 20;

bool isLocalStreamSocket(int descriptor)
{
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISSOCK(status.st_mode))
        return false;
    int type = 0;
    socklen_t length = sizeof type;
    return getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_STREAM;
}

// A socket pair's other end belongs to the process that made the pair: Lulltide, which
// started this one. Any other socket is one this process merely inherited.
bool madeByParent(int descriptor)
{
    ucred peer{};
    socklen_t length = sizeof peer;
    return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 && peer.pid == getppid();
}

} // namespace

bool ViewChannel::open(int descriptor)
{
    if (!isLocalStreamSocket(descriptor)) {
        ::close(descriptor);
        return false;
    }
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    m_descriptor = descriptor;
    m_reader = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(m_reader, &QSocketNotifier::activated, this, &ViewChannel::readAvailable);
    m_writer = new QSocketNotifier(descriptor, QSocketNotifier::Write, this);
    m_writer->setEnabled(false);
    connect(m_writer, &QSocketNotifier::activated, this, &ViewChannel::flush);
    return true;
}

bool ViewChannel::openToParent()
{
    if (!isLocalStreamSocket(childDescriptor) || !madeByParent(childDescriptor) || !open(childDescriptor))
        return false;
    LoggingSystem::bootstrap([this](const QString&) {
        return std::make_unique<ForwardingLogHandler>([this](LogLevel level, const QString& message) {
            send({{QStringLiteral("log"), int(level)}, {QStringLiteral("text"), message}});
        });
    });
    return true;
}

bool ViewChannel::isOpen() const
{
    return m_descriptor >= 0;
}

void ViewChannel::send(const QJsonObject& message)
{
    if (!isOpen())
        return;
    m_output += QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
    flush();
}

void ViewChannel::flush()
{
    while (isOpen() && !m_output.isEmpty()) {
        const ssize_t written =
            ::send(m_descriptor, m_output.constData(), size_t(m_output.size()), MSG_NOSIGNAL);
        if (written > 0) {
            m_output.remove(0, written);
        } else if (written < 0 && errno == EINTR) {
            continue;
        } else if (written < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            m_writer->setEnabled(true); // the rest when the other end has read
            return;
        } else {
            closeNow();
            emit closed();
            return;
        }
    }
    if (m_writer)
        m_writer->setEnabled(false);
}

void ViewChannel::close()
{
    if (!isOpen())
        return;
    // What is still to send goes first, as far as it can without waiting.
    flush();
    closeNow();
}

void ViewChannel::closeNow()
{
    if (!isOpen())
        return;
    delete std::exchange(m_reader, nullptr);
    delete std::exchange(m_writer, nullptr);
    ::close(std::exchange(m_descriptor, -1));
}

void ViewChannel::drain()
{
    readAvailable();
}

void ViewChannel::readAvailable()
{
    bool ended = false;
    char chunk[4096];
    while (isOpen()) {
        const ssize_t got = ::read(m_descriptor, chunk, sizeof chunk);
        if (got > 0) {
            m_input.append(chunk, got);
            continue;
        }
        if (got < 0 && errno == EINTR)
            continue;
        ended = got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK);
        break;
    }
    qsizetype end = 0;
    while ((end = m_input.indexOf('\n')) >= 0) {
        const QJsonDocument document = QJsonDocument::fromJson(m_input.left(end));
        m_input.remove(0, end + 1);
        // Anything but an object is dropped: neither end acts on what it cannot read.
        if (document.isObject())
            emit received(document.object());
        if (!isOpen())
            return; // closed by a receiver
    }
    // Garbage without line ends: the other end is not ours.
    if (m_input.size() > longestLine)
        ended = true;
    if (ended && isOpen()) {
        closeNow();
        emit closed();
    }
}
