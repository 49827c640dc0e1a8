// SPDX-License-Identifier: GPL-3.0-or-later
#include "LogSetup.h"

#include <QFile>
#include <QStandardPaths>
#include <filesystem>
#include <string>
#include <system_error>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <vector>

namespace fs = std::filesystem;

namespace LogSetup {

QString logDirectory()
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (cache.isEmpty())
        return {};
    return cache + QStringLiteral("/Logs/");
}

namespace {

QString format(std::time_t when, const icu::Locale& locale)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::SimpleDateFormat formatter(icu::UnicodeString::fromUTF8("YYYYMMdd"), locale, status);
    if (U_FAILURE(status))
        return {};
    icu::UnicodeString text;
    formatter.format(UDate(when) * 1000.0, text);
    std::string utf8;
    text.toUTF8String(utf8);
    return QString::fromStdString(utf8);
}

QString describe(const std::error_code& code, const fs::path& path)
{
    return QString::fromStdString(code.message()) + QStringLiteral(": ") + QFile::decodeName(path.c_str());
}

} // namespace

QString dateString(std::time_t when, const char* localeName)
{
    return format(when, icu::Locale(localeName));
}

QString dateString(std::time_t when)
{
    return format(when, icu::Locale::getDefault());
}

namespace {
std::time_t systemClock()
{
    return std::time(nullptr);
}
std::time_t (*clock)() = systemClock;
} // namespace

std::time_t now()
{
    return clock();
}

void setClock(std::time_t (*newClock)())
{
    clock = newClock ? newClock : systemClock;
}

QString todayString()
{
    return dateString(now());
}

QString logFileName(const QString& identifier, const QString& date)
{
    return identifier + u'.' + date + QStringLiteral(".log");
}

bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error)
{
    return prepareDirectory(directory, identifier, today, error, [](const QString& folder, QString* why) {
        std::error_code code;
        if (!fs::create_directories(fs::path(QFile::encodeName(folder).toStdString()), code) && code) {
            *why = QString::fromStdString(code.message()) + QStringLiteral(": ") + folder;
            return false;
        }
        return true;
    });
}

bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error, const MakeDirectory& makeDirectory)
{
    std::error_code code;
    if (!fs::exists(fs::path(QFile::encodeName(directory).toStdString()), code))
        return makeDirectory(directory, error); // a new directory holds nothing to clean

    // Names are compared as the bytes on disk, so a name that is not UTF-8 matches as well.
    std::string rootText = QFile::encodeName(directory).toStdString();
    while (rootText.size() > 1 && rootText.ends_with('/'))
        rootText.pop_back();
    rootText += '/';
    const fs::path root(rootText);
    const std::string prefix = QFile::encodeName(identifier).toStdString();
    const std::string day = QFile::encodeName(today).toStdString();

    // List first, then remove, so that removing a folder does not disturb the walk.
    std::vector<fs::path> doomed;
    fs::recursive_directory_iterator it(root, code);
    fs::path current = root; // the entry an error is about: the last one reached
    for (const fs::recursive_directory_iterator end; !code && it != end; it.increment(code)) {
        current = it->path();
        const std::string relative = current.native().substr(rootText.size());
        // The folder is shared with other programs, and only paths that begin with our
        // identifier can ever match: no other folder is entered, so their link loops and locked
        // folders cannot stop our logging. Links are not followed either.
        if (!relative.starts_with(prefix)) {
            it.disable_recursion_pending();
            continue;
        }
        if (relative.ends_with(".log") && relative.find(day) == std::string::npos)
            doomed.push_back(current);
    }
    if (code) {
        *error = describe(code, current);
        return false;
    }
    for (const fs::path& path : doomed) {
        std::error_code gone;
        if (!fs::exists(fs::symlink_status(path, gone)))
            continue; // inside a folder removed a moment ago
        fs::remove_all(path, code);
        if (code) {
            *error = describe(code, path);
            return false;
        }
    }
    return true;
}

} // namespace LogSetup
