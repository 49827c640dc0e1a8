// SPDX-License-Identifier: GPL-3.0-or-later
#include "GSettingsHoldSource.h"

#include "appinfo/GSettingsKey.h"

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
    m_settings = GSettingsKey::open(m_schema, m_key);
    if (!m_settings)
        return false;
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
