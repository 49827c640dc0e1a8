// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileLogHandler.h"

#include "FileLogging.h"

FileLogHandler::FileLogHandler(QString label, const FileLogging& fileLogger)
    : LineLogHandler(std::move(label)), m_stream(fileLogger.stream())
{
}

std::unique_ptr<FileLogHandler> FileLogHandler::create(const QString& label, const QString& localFile,
                                                       QString* error)
{
    auto fileLogging = FileLogging::to(localFile, error);
    if (!fileLogging)
        return nullptr;
    return std::make_unique<FileLogHandler>(label, *fileLogging);
}

void FileLogHandler::writeLine(const QString& line)
{
    m_stream.write(line);
}
