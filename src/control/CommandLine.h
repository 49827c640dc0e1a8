// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringList>
#include <optional>

class QDBusConnection;

// The program's command line. It is read before any GUI object exists: help, the version,
// usage errors and the requests for the running Lulltide need only the session bus, never a
// display. Only a launch that will run Lulltide itself goes on to make the QApplication.
namespace CommandLine {

// Exit codes, as --help and the manual page list them.
enum ExitCode { Done = 0, Failed = 1, UsageError = 2 };

// What main() does once the command line has been read.
struct Outcome {
    // Set when this process has nothing more to do.
    std::optional<int> exitCode;
    // A launch that opens the settings window once Lulltide runs (--settings, nobody running).
    bool showSettings = false;
};

// A launch that needs no reading: no option but --settings, and a display to start on. Such a
// run makes its QApplication first, with no QCoreApplication before it (an application object
// made after an earlier one has ended is invisible to screen readers). Needs no application.
std::optional<Outcome> plainLaunch(const QStringList& arguments);

// Needs a QCoreApplication (for the translations) and nothing more. Answers --help, --version
// and usage errors, sends a request to the running Lulltide and prints its answer, or finds
// that this process is to run Lulltide itself.
Outcome read();

// For a launch that found the name taken when it tried to own it: asks the Lulltide that holds
// it to show its settings, or says that another program holds it. Returns the exit code.
int handOver(const QDBusConnection& bus, bool showSettings);

} // namespace CommandLine
