// SPDX-License-Identifier: GPL-3.0-or-later
#include "Logger.h"

#include "FileLogHandler.h"
#include "FileLogging.h"
#include "LogSetup.h"
#include "LoggingSystem.h"
#include "MultiplexLogHandler.h"
#include "StreamLogHandler.h"
#include "appinfo/AppInfo.h"

#include <QFileInfo>
#include <cstdio>

Logger::Logger(QString label) : m_label(std::move(label)), m_handler(LoggingSystem::makeHandler(m_label)) {}

Logger::Logger(QString label, std::unique_ptr<LogHandler> handler)
    : m_label(std::move(label)), m_handler(std::move(handler))
{
}

void Logger::log(LogLevel level, const QString& message, const LogMetadata& metadata,
                 std::source_location location)
{
    if (level < m_handler->logLevel())
        return;
    const QString file = QString::fromUtf8(location.file_name());
    m_handler->log(level, message, metadata, QFileInfo(file).completeBaseName(), file,
                   QString::fromUtf8(location.function_name()), int(location.line()));
}

void Logger::trace(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::trace, message, metadata, location);
}

void Logger::debug(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::debug, message, metadata, location);
}

void Logger::info(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::info, message, metadata, location);
}

void Logger::notice(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::notice, message, metadata, location);
}

void Logger::warning(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::warning, message, metadata, location);
}

void Logger::error(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::error, message, metadata, location);
}

void Logger::critical(const QString& message, const LogMetadata& metadata, std::source_location location)
{
    log(LogLevel::critical, message, metadata, location);
}

namespace {
// The file the process logger opened: the run keeps writing it after midnight (it is never
// rotated), so that is the file to hand on, not the one named by the new date.
std::optional<QString> openedLogFile;
} // namespace

std::optional<QString> Logger::logfilePath()
{
    if (openedLogFile)
        return openedLogFile;
    const QString directory = LogSetup::logDirectory();
    if (directory.isEmpty())
        return std::nullopt;
    return directory + LogSetup::logFileName(AppInfo::identifier(), LogSetup::todayString());
}

namespace {

Logger makeProcessLogger()
{
    const QString identifier = AppInfo::identifier();
    // A process that chose where its records go (a helper handing them to Lulltide) opens no
    // file and says no greeting of its own.
    if (LoggingSystem::isBootstrapped())
        return Logger(identifier);
    const QString directory = LogSetup::logDirectory();
    if (directory.isEmpty())
        return Logger(identifier);

    const QString today = LogSetup::todayString();
    QString error;
    std::optional<FileLogging> fileLogging;
    if (LogSetup::prepareDirectory(directory, identifier, today, &error))
        fileLogging = FileLogging::to(directory + LogSetup::logFileName(identifier, today), &error);

    if (fileLogging) {
        openedLogFile = fileLogging->localFile();
        LoggingSystem::bootstrap([fileLogging = *fileLogging](const QString& label) {
            std::vector<std::unique_ptr<LogHandler>> handlers;
            handlers.push_back(fileLogging.handler(label));
            handlers.push_back(std::make_unique<StreamLogHandler>(StreamLogHandler::standardOutput(label)));
            return std::make_unique<MultiplexLogHandler>(std::move(handlers));
        });
    } else {
        const QByteArray line = ("create logger error: " + error + u'\n').toUtf8();
        std::fwrite(line.constData(), 1, size_t(line.size()), stdout);
        std::fflush(stdout);
    }

    Logger processLogger(identifier);
    processLogger.info(QStringLiteral("~~~~~~~~~~~~~~~~~~~~~~~~hello ") + AppInfo::name() +
                       QStringLiteral("~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~"));
    return processLogger;
}

} // namespace

Logger& logger()
{
    static Logger processLogger = makeProcessLogger();
    return processLogger;
}
