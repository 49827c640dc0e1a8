// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileLogging.h"

#include "FileLogHandler.h"
#include "Logger.h"

FileLogging::FileLogging(FileHandlerOutputStream stream, QString localFile)
    : m_stream(std::move(stream)), m_localFile(std::move(localFile))
{
}

std::optional<FileLogging> FileLogging::to(const QString& localFile, QString* error)
{
    auto stream = FileHandlerOutputStream::open(localFile, error);
    if (!stream)
        return std::nullopt;
    return FileLogging(std::move(*stream), localFile);
}

std::unique_ptr<FileLogHandler> FileLogging::handler(const QString& label) const
{
    return std::make_unique<FileLogHandler>(label, *this);
}

std::optional<Logger> FileLogging::logger(const QString& label, const QString& localFile, QString* error)
{
    auto fileLogging = to(localFile, error);
    if (!fileLogging)
        return std::nullopt;
    return std::optional<Logger>(std::in_place, label, fileLogging->handler(label));
}
