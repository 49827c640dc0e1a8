// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "RemoteBreakState.h"
#include "ViewChannel.h"

#include <QObject>
#include <optional>

// The break-screen process (`lulltide-views --break-screen`, started by Lulltide itself): it makes the
// break windows ahead of the break, shows them when told, sends Skip and Postpone back, and ends
// with the break. The process that counts never loads Qt Quick, and what a break costs goes
// with this one.
class BreakScreenChild : public QObject {
    Q_OBJECT

public:
    // How the process ends when it cannot serve.
    enum ExitCode { NotStartedByLulltide = 2, ViewCannotBeMade = 3 };

    // Sets what Qt's Wayland platform reads as it starts: before the QGuiApplication.
    static void prepareProcess();

    // Opens the connection to Lulltide, sends the log there, and makes the windows; the exit
    // code when that fails. Needs the QGuiApplication.
    std::optional<int> start();
    // The windows go first: their views show m_state.
    ~BreakScreenChild() override;

private:
    void apply(const QJsonObject& message);
    // Ends the process: at once, or after a screen reader was told that the break is over.
    void leave();
    // Says "drawn" once the first frame of the break is on every screen.
    void tellWhenDrawn();

    // Long enough for the reader to fetch the last words from this process and start saying
    // them before the windows go and the focus moves on.
    static constexpr int screenReaderGrace = 1500;

    ViewChannel m_channel;
    RemoteBreakState m_state;
    bool m_leaving = false;
};
