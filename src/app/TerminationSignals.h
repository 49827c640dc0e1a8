// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QSocketNotifier;

// A logout (SIGTERM, SIGHUP) or Control+C in a terminal (SIGINT) ends Lulltide the way --quit
// does, through the event loop, so that the open break and the run are closed in the history.
// The handler only writes a byte into a pipe; the rest happens on the main thread.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

    // Catches the three signals; false (and said in the log) when the pipe cannot be made.
    bool install();

private:
    void readSignal();

    QSocketNotifier* m_notifier = nullptr;
};
