// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "FileHandlerOutputStream.h"
#include "LineLogHandler.h"

#include <memory>

class FileLogging;

// Writes records to the log file as
// "<timestamp> <level> <label> :[ <metadata>] <message>".
class FileLogHandler : public LineLogHandler {
public:
    FileLogHandler(QString label, const FileLogging& fileLogger);
    static std::unique_ptr<FileLogHandler> create(const QString& label, const QString& localFile,
                                                  QString* error);

protected:
    void writeLine(const QString& line) override;

private:
    FileHandlerOutputStream m_stream;
};
