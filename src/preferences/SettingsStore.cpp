// SPDX-License-Identifier: GPL-3.0-or-later
#include "SettingsStore.h"

#include <QSettings>
#include <QtDebug>

namespace SettingsStore {

QSettings& settings()
{
    // The native format is an INI file on Linux ($XDG_CONFIG_HOME/lulltide/lulltide.conf) and the
    // user defaults domain on macOS.
    static QSettings* store = new QSettings(QSettings::NativeFormat, QSettings::UserScope,
                                            QStringLiteral("lulltide"), QStringLiteral("lulltide"));
    return *store;
}

void save()
{
    QSettings& store = settings();
    store.sync();
    static QSettings::Status reported = QSettings::NoError;
    if (store.status() != QSettings::NoError && store.status() != reported) {
        reported = store.status();
        qWarning().noquote() << "could not save settings to" << store.fileName()
                             << (reported == QSettings::AccessError ? "(access denied)" : "(format error)");
    }
}

} // namespace SettingsStore
