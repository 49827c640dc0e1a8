// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "HoldSource.h"

#include <QByteArray>

struct _GSettings; // NOLINT(bugprone-reserved-identifier): GIO's own name for GSettings

// Holds while a boolean GSettings key has a given value: GNOME's Do Not Disturb is
// org.gnome.desktop.notifications show-banners = false. GIO tells of changes in the event loop
// Qt shares with GLib; nothing is polled.
class GSettingsHoldSource : public HoldSource {
    Q_OBJECT

public:
    GSettingsHoldSource(QByteArray schema, QByteArray key, bool holdingValue, QString reason,
                        QObject* parent = nullptr);
    ~GSettingsHoldSource() override;

    // Reads the key and follows it; false when the schema or key is not installed.
    bool start();

    QString reason() const override { return holding() ? m_reason : QString(); }

private:
    static void changed(_GSettings* settings, const char* key, void* self);
    void update();

    QByteArray m_schema;
    QByteArray m_key;
    bool m_holdingValue;
    QString m_reason;
    _GSettings* m_settings = nullptr;
};
