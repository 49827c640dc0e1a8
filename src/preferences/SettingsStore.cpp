#include "SettingsStore.h"

#include <QSettings>
#include <QtDebug>

namespace SettingsStore {

QSettings& settings()
{
    static QSettings* store = new QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("lulltide"),
                                            QStringLiteral("lulltide"));
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
