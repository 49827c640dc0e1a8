// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FileHandlerOutputStream.h"

#include <memory>
#include <optional>

class FileLogHandler;
class Logger;

// Makes file handlers that all write to one log file.
class FileLogging {
public:
    static std::optional<FileLogging> to(const QString& localFile, QString* error);

    std::unique_ptr<FileLogHandler> handler(const QString& label) const;

    // A logger whose only handler writes to the given file.
    static std::optional<Logger> logger(const QString& label, const QString& localFile, QString* error);

    const FileHandlerOutputStream& stream() const { return m_stream; }
    const QString& localFile() const { return m_localFile; }

private:
    FileLogging(FileHandlerOutputStream stream, QString localFile);

    FileHandlerOutputStream m_stream;
    QString m_localFile;
};
