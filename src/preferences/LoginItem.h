// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

// Launch at login through an XDG autostart entry.
namespace LoginItem {

// $XDG_CONFIG_HOME/autostart/<application id>.desktop
QString entryPath();

// The entry that starts `program` (a path, or a name found on PATH) at login: the installed
// desktop entry (a packager may have adapted it), else the one built in.
QString entryText(const QString& program);

// Writes the entry (enabled) or removes it (disabled). Returns false with a description in
// *error when the file system refuses.
bool setEnabled(bool enabled, QString* error);

// setEnabled() for a change of the setting: a refusal is told, "SMAppService error: " and the
// reason, on standard error (the system log) and in the day's log, and otherwise ignored.
void apply(bool enabled);

} // namespace LoginItem
