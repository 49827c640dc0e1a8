// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDate>
#include <QIcon>
#include <QString>
#include <QVariantMap>

// Read-only facts about the application and the machine.
namespace AppInfo {

// The compiled-in application facts ("name", "version", "build", "identifier"), read once.
const QVariantMap& infos();

// Each fact falls back when the value is missing or empty: "Lulltide", "1.0.0", "1", "1".
QString name(const QVariantMap& infos = AppInfo::infos());
QString version(const QVariantMap& infos = AppInfo::infos());
QString build(const QVariantMap& infos = AppInfo::infos());
QString identifier(const QVariantMap& infos = AppInfo::infos());

// "Copyright © <year> <maker>." with the year of the given day (today by default).
// The application's icon: the window icon the program set, or the built-in one.
QIcon icon();

QString copyright(const QDate& today = QDate::currentDate());
QString releaseNotesLink();
QString feedbackAddress();

// The kernel's machine field (x86_64, aarch64, …).
QString model();
// The bytes of a machine field: zero bytes are skipped wherever they stand; a byte above 127
// is a programming error that ends the process.
QString modelFromMachineField(const char* field, std::size_t size);

// The kernel release reduced to major.minor.patch ("6.1.0-18-amd64" → "6.1.0").
QString osVersion();
QString osVersionFromRelease(const QString& release);

} // namespace AppInfo
