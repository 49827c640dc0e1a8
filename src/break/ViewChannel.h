// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QObject>

class QSocketNotifier;

// One end of the connection between Lulltide and a process of its own that shows views (the
// break screen, the settings window): a local socket pair that carries one JSON object per line
// each way. Plain system calls rather than QLocalSocket, which would bring Qt Network into a
// build without update checks.
class ViewChannel : public QObject {
    Q_OBJECT

public:
    // Where such a process finds its end.
    static constexpr int childDescriptor = 3;

    // Takes over the connected socket `descriptor`; false (and the descriptor closed) when it is
    // no local socket.
    bool open(int descriptor);
    // In the view process: takes over its end, made by the parent process, and sends the
    // process's log records there. False when this process was not started by Lulltide.
    bool openToParent();
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
    void readAvailable();
    void flush();
    void closeNow();

    int m_descriptor = -1;
    QSocketNotifier* m_reader = nullptr;
    QSocketNotifier* m_writer = nullptr;
    QByteArray m_input;
    QByteArray m_output;
};
