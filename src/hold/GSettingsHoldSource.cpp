// SPDX-License-Identifier: GPL-3.0-or-later
#include "GSettingsHoldSource.h"

// GIO names a structure member "signals", which Qt defines as a keyword.
#undef signals
#include <gio/gio.h>
#define signals Q_SIGNALS

GSettingsHoldSource::GSettingsHoldSource(QByteArray schema, QByteArray key, bool holdingValue, QString reason,
                                         QObject* parent)
    : HoldSource(parent), m_schema(std::move(schema)), m_key(std::move(key)), m_holdingValue(holdingValue),
      m_reason(std::move(reason))
{
}

GSettingsHoldSource::~GSettingsHoldSource()
{
    if (m_settings) {
        g_signal_handlers_disconnect_by_data(m_settings, this);
        g_object_unref(m_settings);
    }
}

bool GSettingsHoldSource::start()
{
    // g_settings_new() aborts the process for a schema that is not installed: look first.
    GSettingsSchemaSource* source = g_settings_schema_source_get_default();
    GSettingsSchema* schema =
        source ? g_settings_schema_source_lookup(source, m_schema.constData(), TRUE) : nullptr;
    if (!schema)
        return false;
    const bool hasKey = g_settings_schema_has_key(schema, m_key.constData());
    g_settings_schema_unref(schema);
    if (!hasKey)
        return false;
    m_settings = g_settings_new(m_schema.constData());
    g_signal_connect(m_settings, QByteArray("changed::" + m_key).constData(),
                     G_CALLBACK(&GSettingsHoldSource::changed), this);
    update();
    return true;
}

void GSettingsHoldSource::changed(GSettings*, const char*, void* self)
{
    static_cast<GSettingsHoldSource*>(self)->update();
}

void GSettingsHoldSource::update()
{
    const bool holding = bool(g_settings_get_boolean(m_settings, m_key.constData())) == m_holdingValue;
    setHolding(holding);
}
