// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "LogHandler.h"

#include <optional>

// A handler that writes each record as one text line; subclasses say where the line goes.
// It keeps the level and the metadata, whose text form is rendered once when it is set.
class LineLogHandler : public LogHandler {
public:
    explicit LineLogHandler(QString label) : m_label(std::move(label)) {}

    void log(LogLevel level, const QString& message, const LogMetadata& metadata, const QString& source,
             const QString& file, const QString& function, int line) final;

    LogLevel logLevel() const override { return m_logLevel; }
    void setLogLevel(LogLevel level) override { m_logLevel = level; }
    LogMetadata metadata() const override { return m_metadata; }
    void setMetadata(const LogMetadata& metadata) override;

    const QString& label() const { return m_label; }
    const std::optional<QString>& prettyMetadata() const { return m_prettyMetadata; }

protected:
    virtual void writeLine(const QString& line) = 0;

private:
    QString m_label;
    LogLevel m_logLevel = LogLevel::info;
    LogMetadata m_metadata;
    std::optional<QString> m_prettyMetadata;
};
