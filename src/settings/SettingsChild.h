// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "break/ViewChannel.h"

#include <QObject>
#include <optional>

// The settings window's process (`lulltide-views --settings-window`, started by Lulltide itself): it
// shows the window, reads and writes the settings file as the window always has, tells Lulltide
// of every setting changed, and ends when the window closes.
class SettingsChild : public QObject {
    Q_OBJECT

public:
    enum ExitCode { NotStartedByLulltide = 2, ViewCannotBeMade = 3 };

    // Opens the connection to Lulltide and the window; the exit code when that fails. Needs the
    // QApplication.
    std::optional<int> start();

private slots:
    // A setting's change signal: its new value goes to Lulltide.
    void preferenceChanged();

private:
    void forwardChanges(QObject* settings);

    ViewChannel m_channel;
};
