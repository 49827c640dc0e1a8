// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

class QQuickItem;

// Helpers shared by the test programs. Every program runs in a world of its own: HOME and the
// XDG folders point into a fresh temporary directory before the application object exists.
namespace TestSupport {

// Points HOME, XDG_CONFIG_HOME, XDG_CACHE_HOME and XDG_DATA_HOME at a new temporary folder.
QString isolateUserDirs();

// The day's log file as text (empty when there is none yet).
QString logText();
QStringList logLines();

// The log files of a program run with HOME at `home`, as one text.
QString logTextIn(const QString& home);

// Runs this test program again as a child in `mode` (see LULLTIDE_TEST_MAIN_WITH_CHILD),
// with the given environment, and returns its exit code, standard output and error.
struct ChildResult {
    int exitCode = -1;
    bool crashed = false;
    QString standardOutput;
    QString standardError;
};
ChildResult runChild(const QByteArray& mode, const QProcessEnvironment& environment, int timeoutMs = 20000);

// Starts a dbus-daemon of this test program's own and points DBUS_SESSION_BUS_ADDRESS at it, so
// names a test takes (a panel's watcher) meet no other program. The daemon ends with the program.
// Must run before the application object exists; a child started by runChild() keeps its parent's.
void startPrivateSessionBus();
// The same, and a second daemon standing in for the system bus (DBUS_SYSTEM_BUS_ADDRESS).
void startPrivateBuses();

// Starts an Xvfb of this test program's own with openbox managing it, and points DISPLAY at it:
// for tests that need a window manager without disturbing the others on the shared display.
void startPrivateDisplayWithWindowManager();

// Writes a stand-in program `name` into `folder` that records its arguments in the file it
// returns (one after another, each ended by a NUL), for programs we hand work to (xdg-email,
// xdg-open). Put `folder` first on PATH to use it.
QString writeStandInTool(const QString& folder, const QString& name);
// What a stand-in tool was given; empty until it ran.
QStringList recordedArguments(const QString& record);

// One run of the real program with a HOME of its own, ended (SIGTERM) with the object.
struct ProgramRun {
    QTemporaryDir home;
    QProcess process;
    QString log() const;
    ~ProgramRun();
};

// The first item below `parent` (at any depth) with the object name.
QQuickItem* findItem(QQuickItem* parent, const QString& objectName);

// The windows `xdotool search` finds with `arguments` on the X server of `environment`.
// A window that goes while xdotool reads it (a program making and dropping a hidden helper
// window) makes xdotool fail with BadWindow; the search is then repeated, so the answer is
// never a spurious empty list.
QStringList searchWindows(const QStringList& arguments,
                          const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

// The windows whose role (WM_WINDOW_ROLE) is `role` on the X server of `environment`; with
// `onlyVisible`, only those viewable (mapped, as xdotool's --onlyvisible). Ids in decimal, as
// xdotool prints them.
QStringList
windowsWithRole(const QString& role, bool onlyVisible,
                const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

// The process and all its descendants, as /proc lists them now.
QList<qint64> processTree(qint64 pid);

// Whether the process is still there. A zombie whose other threads are still ending counts:
// its files, its X connection among them, stay open until the last thread has gone.
bool processRunning(qint64 pid);

// Waits up to `ms` for each of the processes to end, then kills those left. False when any had
// to be killed.
bool waitForProcessesToEnd(const QList<qint64>& pids, int ms);

// The visible windows of a program and of the processes it started (its break screen), as
// the X server lists them.
QStringList
visibleWindowsOf(qint64 pid,
                 const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());

// Asks the window to close as a window manager's close button does (WM_DELETE_WINDOW), on the
// display of this process's environment. False when the display cannot be opened.
bool askWindowToClose(const QString& window);

// An environment whose HOME and XDG folders point into `root`.
QProcessEnvironment environmentWithHome(const QString& root);

// That environment for a Wayland client of the compositor at `socket` in the runtime folder
// `runtime`, with Qt on Wayland, no X display and the C locale.
QProcessEnvironment waylandClientWithHome(const QString& root, const QString& runtime, const QString& socket);

// Waits up to `ms` for `process` to end. When it does not, its threads' stacks (gdb) go to the
// test's output before false is returned: a hang is found where it happens.
bool waitForEnd(QProcess& process, int ms);

// The process's Xlib error handler, as an address to compare (Xlib's own headers stay out of
// the tests, whose names they would clash with).
const void* currentXlibErrorHandler();

// The accessibility bus as a desktop session starts it, on this test's session bus; it ends
// with the object.
struct AccessibilityBus {
    QProcess launcher;
    AccessibilityBus();
    ~AccessibilityBus();
    // Waits until the bus is there.
    bool started();
};

// What a screen reader finds of Lulltide: tests/support/atspi-tree.py with `arguments`.
QString atspi(const QStringList& arguments);

} // namespace TestSupport
