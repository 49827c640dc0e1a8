#pragma once

#include <QString>

// Launch at login through an XDG autostart entry.
namespace LoginItem {

// $XDG_CONFIG_HOME/autostart/<application id>.desktop
QString entryPath();

// Writes the entry (enabled) or removes it (disabled). Returns false with a description in
// *error when the file system refuses.
bool setEnabled(bool enabled, QString* error);

} // namespace LoginItem
