// SPDX-License-Identifier: GPL-3.0-or-later
#include "GSettingsKey.h"

// GIO names a structure member "signals", which Qt defines as a keyword.
#undef signals
#include <gio/gio.h>
#define signals Q_SIGNALS

namespace GSettingsKey {

GSettings* open(const QByteArray& schema, const QByteArray& key)
{
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    GSettingsSchema* found = source ? g_settings_schema_source_lookup(source, schema.constData(), TRUE) : nullptr;
    if (!found)
        return nullptr;
    GSettings* settings =
        g_settings_schema_has_key(found, key.constData()) ? g_settings_new_full(found, nullptr, nullptr) : nullptr;
    g_settings_schema_unref(found);
    return settings;
}

bool readBool(const QByteArray& schema, const QByteArray& key, bool fallback)
{
    GSettings* settings = open(schema, key);
    if (!settings)
        return fallback;
    const bool value = g_settings_get_boolean(settings, key.constData());
    g_object_unref(settings);
    return value;
}

} // namespace GSettingsKey
