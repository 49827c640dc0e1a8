// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LineLogHandler.h"

#include <cstdio>

// Writes each record as one line to standard output (or standard error).
class StreamLogHandler : public LineLogHandler {
public:
    static StreamLogHandler standardOutput(const QString& label) { return StreamLogHandler(label, stdout); }
    static StreamLogHandler standardError(const QString& label) { return StreamLogHandler(label, stderr); }

protected:
    void writeLine(const QString& line) override;

private:
    StreamLogHandler(QString label, std::FILE* stream) : LineLogHandler(std::move(label)), m_stream(stream) {}

    std::FILE* m_stream;
};
