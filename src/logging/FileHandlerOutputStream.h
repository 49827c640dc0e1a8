// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStringConverter>
#include <memory>
#include <optional>

class QFile;

// A text stream that appends to one open file. Copies share the file handle, so every
// handler made for the day's log writes through the same descriptor.
class FileHandlerOutputStream {
public:
    enum class Error { couldNotCreateFile };

    // Creates the file when it is missing and opens it positioned at its end.
    // On failure returns nothing and describes the problem in *error.
    static std::optional<FileHandlerOutputStream>
    open(const QString& localFile, QString* error,
         QStringConverter::Encoding encoding = QStringConverter::Utf8);

    // Text that cannot be encoded without loss is dropped.
    void write(const QString& text);

    QStringConverter::Encoding encoding() const { return m_encoding; }

private:
    FileHandlerOutputStream(std::shared_ptr<QFile> fileHandle, QStringConverter::Encoding encoding);

    std::shared_ptr<QFile> m_fileHandle;
    QStringConverter::Encoding m_encoding;
};
