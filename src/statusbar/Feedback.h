// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

// The feedback mail: a prepared message to the makers with today's log attached, opened in the
// user's mail program through xdg-email.
namespace Feedback {

// The request to write in Chinese or English, room for the user's text, then the version,
// the machine and the system.
QString body();
QString subject();

// What xdg-email is given: subject, body, the log file when there is one, the address.
QStringList xdgEmailArguments(const QString& logFile);

// Opens the mail; does nothing at all when xdg-email is not installed.
void compose();

} // namespace Feedback
