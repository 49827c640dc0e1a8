// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

struct _GSettings; // NOLINT(bugprone-reserved-identifier): GIO's own name for GSettings

// A GSettings key of the desktop's, looked up safely: GIO aborts the process for a schema that
// is not installed, which on a desktop other than GNOME is the rule.
namespace GSettingsKey {

// The settings object of `schema` when the schema and its `key` are installed, else null.
// The caller owns it (g_object_unref).
_GSettings* open(const QByteArray& schema, const QByteArray& key);

// The boolean's value, or `fallback` when the schema or the key is not installed.
bool readBool(const QByteArray& schema, const QByteArray& key, bool fallback);

} // namespace GSettingsKey
