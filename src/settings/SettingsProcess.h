// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

class ViewProcess;

// The settings window of a process of its own (`lulltide-views --settings-window`), which ends when
// the window closes: what Qt Quick and the tabs cost goes with it. Each setting changed there
// is applied here too, through the same setter the window would have called.
class SettingsProcess : public QObject {
    Q_OBJECT

public:
    // `program` is Lulltide's own executable.
    explicit SettingsProcess(QString program, QObject* parent = nullptr);

    // Opens the settings window, or brings the open one to the front.
    void show();
    // Closes the window: its process ends.
    void close();

signals:
    // The first frame of a newly opened window is on the screen.
    void drawn();

private:
    void received(const QJsonObject& message);

    QString m_program;
    ViewProcess* m_process = nullptr;
};
