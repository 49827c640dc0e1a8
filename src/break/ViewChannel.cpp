// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewChannel.h"

#include "logging/ForwardingLogHandler.h"
#include "logging/LoggingSystem.h"

#include <QJsonDocument>
#include <QLocalSocket>
#include <utility>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A message is a few hundred bytes; a line longer than this is not one of ours.
constexpr qint64 longestLine = 1 << 20;

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
    ucred peer {};
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
    m_socket = new QLocalSocket(this);
    if (!m_socket->setSocketDescriptor(descriptor)) {
        delete std::exchange(m_socket, nullptr);
        ::close(descriptor);
        return false;
    }
    connect(m_socket, &QLocalSocket::readyRead, this, &ViewChannel::readLines);
    connect(m_socket, &QLocalSocket::disconnected, this, &ViewChannel::closed);
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
    return m_socket && m_socket->state() == QLocalSocket::ConnectedState;
}

void ViewChannel::send(const QJsonObject& message)
{
    if (!isOpen())
        return;
    m_socket->write(QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n');
    m_socket->flush();
}

void ViewChannel::close()
{
    if (m_socket)
        m_socket->disconnectFromServer();
}

void ViewChannel::drain()
{
    if (!m_socket)
        return;
    m_socket->waitForReadyRead(0);
    readLines();
}

void ViewChannel::readLines()
{
    while (m_socket->canReadLine()) {
        const QByteArray line = m_socket->readLine(longestLine);
        const QJsonDocument document = QJsonDocument::fromJson(line);
        // Anything but an object is dropped: neither end acts on what it cannot read.
        if (document.isObject())
            emit received(document.object());
    }
    if (m_socket->bytesAvailable() > longestLine) {
        // Garbage without line ends: the peer is not ours.
        m_socket->abort();
    }
}
