// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QSettings;

// The user's settings file: $XDG_CONFIG_HOME/lulltide/lulltide.conf, INI, every key at top level.
namespace SettingsStore {

QSettings& settings();

// Writes pending changes to disk at once; a failure is reported once per kind on stderr.
void save();

} // namespace SettingsStore
