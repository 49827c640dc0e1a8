// SPDX-License-Identifier: GPL-3.0-or-later
#include "FileHandlerOutputStream.h"

#include <QFile>

FileHandlerOutputStream::FileHandlerOutputStream(std::shared_ptr<QFile> fileHandle,
                                                 QStringConverter::Encoding encoding)
    : m_fileHandle(std::move(fileHandle)), m_encoding(encoding)
{
}

std::optional<FileHandlerOutputStream> FileHandlerOutputStream::open(const QString& localFile, QString* error,
                                                                     QStringConverter::Encoding encoding)
{
    if (!QFile::exists(localFile)) {
        QFile creator(localFile);
        if (!creator.open(QIODevice::WriteOnly)) {
            *error = QStringLiteral("couldNotCreateFile (%1: %2)").arg(localFile, creator.errorString());
            return std::nullopt;
        }
    }
    auto handle = std::make_shared<QFile>(localFile);
    // Unbuffered: each record reaches the file at once, as a crash must not lose the last lines.
    if (!handle->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
        *error = QStringLiteral("%1: %2").arg(localFile, handle->errorString());
        return std::nullopt;
    }
    return FileHandlerOutputStream(std::move(handle), encoding);
}

void FileHandlerOutputStream::write(const QString& text)
{
    QStringEncoder encoder(m_encoding);
    const QByteArray bytes = encoder.encode(text);
    if (encoder.hasError())
        return;
    m_fileHandle->write(bytes);
}
