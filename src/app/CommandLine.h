#pragma once

// The program's command line. Options other than --help and --version are requests for the
// running instance: the program then acts as a small client of its bus object and never opens
// a window or starts a cycle of its own.
namespace CommandLine {

// Whether the arguments name one of our options, so that the program runs as a client.
// Decided before any application object exists: a client needs no display.
bool isClientRequest(int argc, char* argv[]);

// Needs a QCoreApplication. Prints help or the version, or sends the request to the running
// instance and prints its answer; returns the exit code.
int runClient();

// For a launch of the program itself: rejects what it does not know with a message and exit
// code 1 (the application object has taken its own options already).
void checkLaunchArguments();

// What a launch says when it finds the program already running, before it exits.
void sayAlreadyRunning();

} // namespace CommandLine
