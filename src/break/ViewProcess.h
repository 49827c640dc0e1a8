// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QProcess>

class ViewChannel;

// A process of Lulltide's own that shows Qt Quick views (`lulltide-views --break-screen`,
// `lulltide-views --settings-window`), and the connection to it. What it logs goes to this process's
// log. It deletes itself once it has ended.
class ViewProcess : public QObject {
    Q_OBJECT

public:
    // `program` is Lulltide's own executable, `option` what the process is to show.
    ViewProcess(const QString& program, const QString& option, QObject* parent = nullptr);
    // A process still running then (a break screen still telling a screen reader that the break
    // is over, as Lulltide quits) is ended.
    ~ViewProcess() override;

    void start();
    void send(const QJsonObject& message);
    // Lets it go: its connection closes, after which it ends by itself (or is ended a few
    // seconds later). ended() is not emitted for it any more.
    void retire();

    // Why it ended, when it could not be started at all; empty otherwise.
    QString startError() const { return m_startError; }

signals:
    void received(const QJsonObject& message);
    // It ended by itself (or never started: see startError()).
    void ended(int exitCode, QProcess::ExitStatus status);

private:
    void finish(int exitCode, QProcess::ExitStatus status);
    void forward(const QJsonObject& message);

    QProcess m_process;
    ViewChannel* m_channel = nullptr;
    QString m_startError;
    bool m_retired = false;
    bool m_finished = false;
};
