// SPDX-License-Identifier: GPL-3.0-or-later
#include "PrefState.h"

#include "Config.h"
#include "LoginItem.h"
#include "NumberParsing.h"
#include "PrefStyleState.h"
#include "SettingsStore.h"

#include <QSettings>
#include <QStringList>
#include <QtDebug>
#include <algorithm>

namespace {

bool readBool(const char* key, bool fallback)
{
    const QVariant value = SettingsStore::settings().value(QLatin1String(key));
    if (!value.isValid())
        return fallback;
    const QString text = value.toString().trimmed().toLower();
    if (text == QLatin1String("true") || text == QLatin1String("1"))
        return true;
    if (text == QLatin1String("false") || text == QLatin1String("0"))
        return false;
    return fallback;
}

QString readText(const char* key, const QString& fallback)
{
    const QVariant value = SettingsStore::settings().value(QLatin1String(key));
    if (!value.isValid())
        return fallback;
    // A hand-edited file may hold an unquoted comma, which the INI reader turns into a list.
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

double readDouble(const char* key, double fallback)
{
    const QVariant value = SettingsStore::settings().value(QLatin1String(key));
    if (!value.isValid())
        return fallback;
    return NumberParsing::parseDouble(value.toString()).value_or(fallback);
}

void write(const char* key, const QVariant& value)
{
    SettingsStore::settings().setValue(QLatin1String(key), value);
    SettingsStore::save();
}

} // namespace

PrefState::PrefState(QObject* parent) : QObject(parent), m_styleState(new PrefStyleState(this)) {}

bool PrefState::launchAtLogin() const
{
    return readBool(launchAtLoginKey, false);
}

void PrefState::setLaunchAtLogin(bool value)
{
    write(launchAtLoginKey, value);
    emit launchAtLoginChanged();
    LoginItem::apply(value);
}

bool PrefState::showTime() const
{
    return readBool(showTimeKey, true);
}

void PrefState::setShowTime(bool value)
{
    write(showTimeKey, value);
    emit showTimeChanged();
}

bool PrefState::autoCheckUpdate() const
{
    return readBool(autoCheckUpdateKey, true);
}

void PrefState::setAutoCheckUpdate(bool value)
{
    write(autoCheckUpdateKey, value);
    emit autoCheckUpdateChanged();
}

bool PrefState::updateChecksBuiltIn() const
{
    return LULLTIDE_UPDATE_CHECKS;
}

QString PrefState::workTimeString() const
{
    return readText(workTimeStringKey, QStringLiteral("25"));
}

void PrefState::setWorkTimeString(const QString& value)
{
    write(workTimeStringKey, value);
    emit workTimeStringChanged();
}

QString PrefState::breakTimeString() const
{
    return readText(breakTimeStringKey, QStringLiteral("300"));
}

void PrefState::setBreakTimeString(const QString& value)
{
    write(breakTimeStringKey, value);
    emit breakTimeStringChanged();
}

bool PrefState::customBreakPrompt() const
{
    return readBool(customBreakPromptKey, false);
}

void PrefState::setCustomBreakPrompt(bool value)
{
    write(customBreakPromptKey, value);
    emit customBreakPromptChanged();
}

QString PrefState::breakPrompt() const
{
    return readText(breakPromptKey, QStringLiteral("堂堂七尺少年郎, 躺上一躺又何妨"));
}

void PrefState::setBreakPrompt(const QString& value)
{
    write(breakPromptKey, value);
    emit breakPromptChanged();
}

QString PrefState::shortBreakTimesString() const
{
    return readText(shortBreakTimesStringKey, QStringLiteral("4"));
}

void PrefState::setShortBreakTimesString(const QString& value)
{
    write(shortBreakTimesStringKey, value);
    emit shortBreakTimesStringChanged();
}

QString PrefState::longBreakTimeString() const
{
    return readText(longBreakTimeStringKey, QStringLiteral("15"));
}

void PrefState::setLongBreakTimeString(const QString& value)
{
    write(longBreakTimeStringKey, value);
    emit longBreakTimeStringChanged();
}

bool PrefState::customLongBreakPrompt() const
{
    return readBool(customLongBreakPromptKey, false);
}

void PrefState::setCustomLongBreakPrompt(bool value)
{
    write(customLongBreakPromptKey, value);
    emit customLongBreakPromptChanged();
}

QString PrefState::longBreakPrompt() const
{
    return readText(
        longBreakPromptKey,
        QStringLiteral("地球不会因你停下来而停止转动\\n老板不会因你摸鱼而不挣钱\\n所以\\n不要犹豫"));
}

void PrefState::setLongBreakPrompt(const QString& value)
{
    write(longBreakPromptKey, value);
    emit longBreakPromptChanged();
}

bool PrefState::forceLongBreak() const
{
    return readBool(forceLongBreakKey, false);
}

void PrefState::setForceLongBreak(bool value)
{
    write(forceLongBreakKey, value);
    emit forceLongBreakChanged();
}

bool PrefState::restartTimerAfterAwake() const
{
    return readBool(restartTimerAfterAwakeKey, true);
}

void PrefState::setRestartTimerAfterAwake(bool value)
{
    write(restartTimerAfterAwakeKey, value);
    emit restartTimerAfterAwakeChanged();
}

bool PrefState::stopTimerAfterMouseStop() const
{
    return readBool(stopTimerAfterMouseStopKey, true);
}

void PrefState::setStopTimerAfterMouseStop(bool value)
{
    write(stopTimerAfterMouseStopKey, value);
    emit stopTimerAfterMouseStopChanged();
}

bool PrefState::showNewDayTip() const
{
    return readBool(showNewDayTipKey, false);
}

void PrefState::setShowNewDayTip(bool value)
{
    write(showNewDayTipKey, value);
    emit showNewDayTipChanged();
}

double PrefState::lastWeakupTimestamp() const
{
    return readDouble(lastWeakupTimestampKey, 0.0);
}

void PrefState::setLastWeakupTimestamp(double value)
{
    write(lastWeakupTimestampKey, value);
    emit lastWeakupTimestampChanged();
}

bool PrefState::toldNoPanel() const
{
    return readBool(toldNoPanelKey, false);
}

void PrefState::setToldNoPanel(bool value)
{
    write(toldNoPanelKey, value);
    emit toldNoPanelChanged();
}

bool PrefState::headsUp() const
{
    return readBool(headsUpKey, false);
}

void PrefState::setHeadsUp(bool value)
{
    write(headsUpKey, value);
    emit headsUpChanged();
}

QString PrefState::headsUpSecondsString() const
{
    return readText(headsUpSecondsStringKey, QStringLiteral("60"));
}

void PrefState::setHeadsUpSecondsString(const QString& value)
{
    write(headsUpSecondsStringKey, value);
    emit headsUpSecondsStringChanged();
}

bool PrefState::allowPostpone() const
{
    return readBool(allowPostponeKey, false);
}

void PrefState::setAllowPostpone(bool value)
{
    write(allowPostponeKey, value);
    emit allowPostponeChanged();
}

QString PrefState::postponeMinutesString() const
{
    return readText(postponeMinutesStringKey, QStringLiteral("5"));
}

void PrefState::setPostponeMinutesString(const QString& value)
{
    write(postponeMinutesStringKey, value);
    emit postponeMinutesStringChanged();
}

QString PrefState::postponeLimitString() const
{
    return readText(postponeLimitStringKey, QStringLiteral("2"));
}

void PrefState::setPostponeLimitString(const QString& value)
{
    write(postponeLimitStringKey, value);
    emit postponeLimitStringChanged();
}

bool PrefState::holdBreaks() const
{
    return readBool(holdBreaksKey, false);
}

void PrefState::setHoldBreaks(bool value)
{
    write(holdBreaksKey, value);
    emit holdBreaksChanged();
}

QString PrefState::holdLimitMinutesString() const
{
    return readText(holdLimitMinutesStringKey, QStringLiteral("60"));
}

void PrefState::setHoldLimitMinutesString(const QString& value)
{
    write(holdLimitMinutesStringKey, value);
    emit holdLimitMinutesStringChanged();
}

bool PrefState::keepHistory() const
{
    return readBool(keepHistoryKey, true);
}

void PrefState::setKeepHistory(bool value)
{
    write(keepHistoryKey, value);
    emit keepHistoryChanged();
}

void PrefState::setStyleState(PrefStyleState* styleState)
{
    m_styleState = styleState;
    emit styleStateChanged();
}

double PrefState::workTime() const
{
    return NumberParsing::parseDouble(workTimeString()).value_or(25.0) * 60.0;
}

double PrefState::breakTime() const
{
    return NumberParsing::parseDouble(breakTimeString()).value_or(300.0);
}

double PrefState::longBreakTime() const
{
    return NumberParsing::parseDouble(longBreakTimeString()).value_or(15.0) * 60.0;
}

qint64 PrefState::shortBreakTimes() const
{
    return NumberParsing::parseInteger(shortBreakTimesString()).value_or(4);
}

double PrefState::headsUpSeconds() const
{
    const double seconds = NumberParsing::parseDouble(headsUpSecondsString()).value_or(60.0);
    return std::clamp(seconds, headsUpSecondsMin, headsUpSecondsMax);
}

double PrefState::postponeTime() const
{
    const double minutes = NumberParsing::parseDouble(postponeMinutesString()).value_or(5.0);
    return std::clamp(minutes, postponeMinutesMin, postponeMinutesMax) * 60.0;
}

qint64 PrefState::postponeLimit() const
{
    const qint64 limit = NumberParsing::parseInteger(postponeLimitString()).value_or(2);
    return std::clamp<qint64>(limit, postponeLimitMin, postponeLimitMax);
}

double PrefState::holdLimit() const
{
    const double minutes = NumberParsing::parseDouble(holdLimitMinutesString()).value_or(60.0);
    return std::clamp(minutes, 0.0, holdLimitMinutesMax) * 60.0;
}
