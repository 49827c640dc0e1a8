// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QObject>

class QLocalSocket;

// One end of the connection between Lulltide and its break-screen process: a local socket pair
// that carries one JSON object per line each way.
class BreakChannel : public QObject {
    Q_OBJECT

public:
    // The break-screen process finds its end here.
    static constexpr int childDescriptor = 3;

    // Takes over the connected socket `descriptor`; false (and the descriptor closed) when it is
    // no local socket, or, `fromParent`, when the parent process did not make it.
    bool open(int descriptor, bool fromParent = false);
    bool isOpen() const;

    void send(const QJsonObject& message);
    void close();
    // Reads what the other end sent before it went away.
    void drain();

signals:
    void received(const QJsonObject& message);
    // The other end went away (it ended, or closed its end).
    void closed();

private:
    void readLines();

    QLocalSocket* m_socket = nullptr;
};
