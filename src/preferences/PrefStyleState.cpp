// SPDX-License-Identifier: GPL-3.0-or-later
#include "PrefStyleState.h"

#include "NumberParsing.h"
#include "SettingsStore.h"

#include <QSettings>

PrefStyleState::PrefStyleState(QObject* parent) : QObject(parent) {}

BreakStyle PrefStyleState::breakStyle() const
{
    const QVariant stored = SettingsStore::settings().value(QLatin1String(breakStyleKey));
    const auto rawValue = NumberParsing::parseInteger(stored.toString());
    if (!rawValue)
        return BreakStyle::relaxation;
    return BreakStyle::fromRawValue(*rawValue).value_or(BreakStyle::relaxation);
}

void PrefStyleState::setBreakStyle(BreakStyle style)
{
    SettingsStore::settings().setValue(QLatin1String(breakStyleKey), style.rawValue());
    SettingsStore::save();
    emit breakStyleChanged();
}

void PrefStyleState::setBreakStyleRawValue(int rawValue)
{
    if (const auto style = BreakStyle::fromRawValue(rawValue))
        setBreakStyle(*style);
}

QStringList PrefStyleState::styleDescriptions()
{
    QStringList descriptions;
    for (const BreakStyle& style : BreakStyle::allCases())
        descriptions << style.desc();
    return descriptions;
}
