#pragma once

#include <QString>
#include <ctime>

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

// "<identifier>.<date>.log"
QString logFileName(const QString& identifier, const QString& date);

// Creates the directory when it is missing; otherwise removes, recursively, every entry whose
// relative path begins with the identifier, ends in ".log" and does not hold today's date.
// Returns false with a description in *error on the first failure.
bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error);

} // namespace LogSetup
