// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cycle/BreakScreen.h"

#include <QJsonObject>
#include <QObject>
#include <QProcess>

class ViewProcess;

// The break windows of a process of their own (`lulltide-views --break-screen`): started a few
// seconds before a break is due, so that the break appears at once, and ended with the break,
// so that nothing of Qt Quick, the views or the graphics stack stays in the process that counts.
// A break-screen process that dies during a break is started again; one that cannot make its
// windows is logged once, and the cycle goes on without break windows.
class BreakScreenProcess final : public QObject, public BreakScreen {
    Q_OBJECT

public:
    // `program` is Lulltide's own executable.
    explicit BreakScreenProcess(QString program, QObject* parent = nullptr);
    ~BreakScreenProcess() override;

    // Makes these windows the cycle's break screen.
    void install();

    bool isShown() const override { return m_shown; }

    // How long before a break is due its process starts.
    static constexpr double startAheadSeconds = 10.0;

signals:
    // The first frame of a break is on every screen.
    void drawn();

protected:
    bool showWindows() override;
    void closeWindows() override;

private:
    void start();
    // Lets the running process go: it ends once its connection closes.
    void retire();
    void sendState();
    void sendNow();
    void received(const QJsonObject& message);
    void ended(int exitCode, QProcess::ExitStatus status);
    // Starts the process when a break is near, and ends an idle one when none is.
    void followCountdown();
    void giveUp(const QString& why);

    QString m_program;
    ViewProcess* m_process = nullptr;
    bool m_shown = false;
    bool m_ready = false;
    // Whether the break that is on now has been drawn on every screen (by this process or one
    // that ended during it): a process started again for it shows it at once.
    bool m_seen = false;
    int m_failedStarts = 0;
    bool m_broken = false;
    bool m_sendQueued = false;
};
