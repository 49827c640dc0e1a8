#include "LogSetup.h"

#include <QStandardPaths>
#include <QStringList>
#include <filesystem>
#include <memory>
#include <system_error>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

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

} // namespace

QString dateString(std::time_t when, const char* localeName)
{
    return format(when, icu::Locale(localeName));
}

QString dateString(std::time_t when)
{
    return format(when, icu::Locale::getDefault());
}

QString todayString()
{
    return dateString(std::time(nullptr));
}

QString logFileName(const QString& identifier, const QString& date)
{
    return identifier + u'.' + date + QStringLiteral(".log");
}

bool prepareDirectory(const QString& directory, const QString& identifier, const QString& today,
                      QString* error)
{
    const fs::path root = fs::path(directory.toStdString());
    std::error_code code;
    if (!fs::exists(root, code)) {
        // A new directory holds nothing to clean.
        if (!fs::create_directories(root, code) && code) {
            *error = QString::fromStdString(code.message()) + QStringLiteral(": ") + directory;
            return false;
        }
        return true;
    }

    // List first, then remove, so that removing a folder does not disturb the walk.
    QStringList doomed;
    fs::recursive_directory_iterator it(root, code);
    fs::path current = root; // the entry an error is about: the last one reached
    for (const fs::recursive_directory_iterator end; !code && it != end; it.increment(code)) {
        current = it->path();
        // Without throwing: an entry that cannot be resolved (a symlink loop) is an error to
        // report, not a reason to end the program.
        const fs::path relativePath = fs::relative(it->path(), root, code);
        if (code)
            break;
        const QString relative = QString::fromStdString(relativePath.generic_string());
        if (relative.startsWith(identifier) && relative.endsWith(QStringLiteral(".log")) &&
            !relative.contains(today))
            doomed << relative;
    }
    if (code) {
        *error = QString::fromStdString(code.message()) + QStringLiteral(": ") +
                 QString::fromStdString(current.string());
        return false;
    }
    for (const QString& relative : doomed) {
        const fs::path path = root / relative.toStdString();
        if (!fs::exists(fs::symlink_status(path, code)))
            continue; // inside a folder removed a moment ago
        fs::remove_all(path, code);
        if (code) {
            *error = QString::fromStdString(code.message()) + QStringLiteral(": ") +
                     QString::fromStdString(path.string());
            return false;
        }
    }
    return true;
}

} // namespace LogSetup
