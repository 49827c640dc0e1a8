// SPDX-License-Identifier: GPL-3.0-or-later
#include "ReducedMotion.h"

#include "appinfo/GSettingsKey.h"

#include <QSettings>
#include <QStandardPaths>
#include <algorithm>

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

// GNOME and the desktops built on it keep the wish in GSettings. Elsewhere the key is not read:
// reading it starts dconf's own connection to the session bus, and dconf ends the process
// when that bus goes away.
bool gnomeAnimationsOff()
{
    static const QStringList gnomeFamily{QStringLiteral("GNOME"), QStringLiteral("Unity"),
                                         QStringLiteral("Budgie"), QStringLiteral("Cinnamon"),
                                         QStringLiteral("Pantheon")};
    const QStringList desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    const bool gnome = std::any_of(desktops.cbegin(), desktops.cend(), [](const QString& desktop) {
        return gnomeFamily.contains(desktop, Qt::CaseInsensitive);
    });
    return gnome && !GSettingsKey::readBool("org.gnome.desktop.interface", "enable-animations", true);
}

} // namespace

bool requested()
{
    return gnomeAnimationsOff() || kdeAnimationsOff();
}

} // namespace ReducedMotion
