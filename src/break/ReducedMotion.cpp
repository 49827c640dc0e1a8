// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReducedMotion.h"

#include "appinfo/GSettingsKey.h"

#include <QSettings>
#include <QStandardPaths>

namespace ReducedMotion {
namespace {

bool kdeAnimationsOff()
{
    // The user's file first, then the system's: the first that sets the factor decides.
    const QStringList files =
        QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, QStringLiteral("kdeglobals"));
    for (const QString& file : files) {
        const QSettings globals(file, QSettings::IniFormat);
        const QVariant factor = globals.value(QStringLiteral("KDE/AnimationDurationFactor"));
        if (!factor.isValid())
            continue;
        bool number = false;
        const double value = factor.toDouble(&number);
        return number && value <= 0;
    }
    return false;
}

} // namespace

bool requested()
{
    return !GSettingsKey::readBool("org.gnome.desktop.interface", "enable-animations", true) || kdeAnimationsOff();
}

} // namespace ReducedMotion
