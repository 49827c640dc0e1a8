// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

// Brings the application up once its event loop runs.
class AppDelegate : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(QObject* parent = nullptr);

    // The start-up sequence; the order matters because each step makes shared objects on
    // first use: the first work period starts before the status item exists.
    void applicationDidFinishLaunching();
    // Nothing to do: every setting is already saved when it changes.
    void applicationWillTerminate();
    bool applicationSupportsSecureRestorableState() const { return true; }
};
