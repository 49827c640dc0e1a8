// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <ctime>
#include <functional>

// Where the day's log file lives and how the directory is made ready for it.
namespace LogSetup {

// $XDG_CACHE_HOME/Logs/ (with the trailing slash); empty when no cache location is known.
QString logDirectory();

// The date as "YYYYMMdd": the year is the week-numbering one, so the last days of December
// can carry the next year. Week rules come from the default ICU locale unless one is named
// ("en_US", "de_DE"); the day is the local one.
QString dateString(std::time_t when);
QString dateString(std::time_t when, const char* localeName);
QString todayString();

// The wall clock the day is read from: the system's, unless a test sets another.
std::time_t now();
void setClock(std::time_t (*clock)());

// "<identifier>.<date>.log"
QString logFileName(const QString& identifier, const QString& date);

// Creates the directory when it is missing; otherwise removes, recursively, every entry whose
// relative path begins with the identifier, ends in ".log" and does not hold today's date
// (compared as bytes: names need not be UTF-8). Only folders whose relative path begins with the
// identifier are entered, and no symbolic link is followed: the folder is shared with other
// programs. Returns false with a description in *error on the first failure.
bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error);

// Makes the missing directory; returns false with a description in *error.
using MakeDirectory = std::function<bool(const QString& directory, QString* error)>;
// The same, with the directory made by `makeDirectory` (a test lets another writer in the moment
// the folder exists).
bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error, const MakeDirectory& makeDirectory);

} // namespace LogSetup
