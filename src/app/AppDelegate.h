// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <memory>

class HistoryStore;

// Brings the application up once its event loop runs, and down when it ends: the one place
// that builds each part and connects it to the cycle.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    // The start-up sequence; the order matters because each step makes shared objects on
    // first use: the first work period starts before the status item exists.
    void applicationDidFinishLaunching();
    // The run ends: the open break and the run are closed in the history, and the history file
    // is closed here rather than by a destructor after the event loop.
    void applicationWillTerminate();
    bool applicationSupportsSecureRestorableState() const { return true; }

    // Breaks show in a process of their own, `program --break-screen`, rather than in this one.
    // Set before launching.
    void showBreaksThrough(const QString& program) { m_breakScreenProgram = program; }

private:
    QString m_breakScreenProgram;
};
