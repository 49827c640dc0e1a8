// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class PrefStyleState;
Q_MOC_INCLUDE("preferences/PrefStyleState.h")

// The user's settings. Every property reads and writes one key of the settings file at once,
// so a change survives a restart. Numbers are kept as the text the user typed and parsed on
// every read with a fixed fallback. Setters notify on every assignment, also of an unchanged
// value, and the two with side effects (launch at login, show time) run them every time.
class PrefState : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(bool showTime READ showTime WRITE setShowTime NOTIFY showTimeChanged)
    Q_PROPERTY(
        bool autoCheckUpdate READ autoCheckUpdate WRITE setAutoCheckUpdate NOTIFY autoCheckUpdateChanged)
    // False in a build without update checks, where the setting has nothing to turn on.
    Q_PROPERTY(bool updateChecksBuiltIn READ updateChecksBuiltIn CONSTANT)
    Q_PROPERTY(
        QString workTimeString READ workTimeString WRITE setWorkTimeString NOTIFY workTimeStringChanged)
    Q_PROPERTY(
        QString breakTimeString READ breakTimeString WRITE setBreakTimeString NOTIFY breakTimeStringChanged)
    Q_PROPERTY(bool customBreakPrompt READ customBreakPrompt WRITE setCustomBreakPrompt NOTIFY
                   customBreakPromptChanged)
    Q_PROPERTY(QString breakPrompt READ breakPrompt WRITE setBreakPrompt NOTIFY breakPromptChanged)
    Q_PROPERTY(QString shortBreakTimesString READ shortBreakTimesString WRITE setShortBreakTimesString NOTIFY
                   shortBreakTimesStringChanged)
    Q_PROPERTY(QString longBreakTimeString READ longBreakTimeString WRITE setLongBreakTimeString NOTIFY
                   longBreakTimeStringChanged)
    Q_PROPERTY(bool customLongBreakPrompt READ customLongBreakPrompt WRITE setCustomLongBreakPrompt NOTIFY
                   customLongBreakPromptChanged)
    Q_PROPERTY(
        QString longBreakPrompt READ longBreakPrompt WRITE setLongBreakPrompt NOTIFY longBreakPromptChanged)
    Q_PROPERTY(bool forceLongBreak READ forceLongBreak WRITE setForceLongBreak NOTIFY forceLongBreakChanged)
    Q_PROPERTY(bool restartTimerAfterAwake READ restartTimerAfterAwake WRITE setRestartTimerAfterAwake NOTIFY
                   restartTimerAfterAwakeChanged)
    Q_PROPERTY(bool stopTimerAfterMouseStop READ stopTimerAfterMouseStop WRITE setStopTimerAfterMouseStop
                   NOTIFY stopTimerAfterMouseStopChanged)
    Q_PROPERTY(bool showNewDayTip READ showNewDayTip WRITE setShowNewDayTip NOTIFY showNewDayTipChanged)
    Q_PROPERTY(double lastWeakupTimestamp READ lastWeakupTimestamp WRITE setLastWeakupTimestamp NOTIFY
                   lastWeakupTimestampChanged)
    Q_PROPERTY(bool headsUp READ headsUp WRITE setHeadsUp NOTIFY headsUpChanged)
    Q_PROPERTY(QString headsUpSecondsString READ headsUpSecondsString WRITE setHeadsUpSecondsString NOTIFY
                   headsUpSecondsStringChanged)
    Q_PROPERTY(bool allowPostpone READ allowPostpone WRITE setAllowPostpone NOTIFY allowPostponeChanged)
    Q_PROPERTY(QString postponeMinutesString READ postponeMinutesString WRITE setPostponeMinutesString NOTIFY
                   postponeMinutesStringChanged)
    Q_PROPERTY(QString postponeLimitString READ postponeLimitString WRITE setPostponeLimitString NOTIFY
                   postponeLimitStringChanged)
    Q_PROPERTY(bool holdBreaks READ holdBreaks WRITE setHoldBreaks NOTIFY holdBreaksChanged)
    Q_PROPERTY(QString holdLimitMinutesString READ holdLimitMinutesString WRITE setHoldLimitMinutesString
                   NOTIFY holdLimitMinutesStringChanged)
    Q_PROPERTY(bool keepHistory READ keepHistory WRITE setKeepHistory NOTIFY keepHistoryChanged)
    Q_PROPERTY(bool toldNoPanel READ toldNoPanel WRITE setToldNoPanel NOTIFY toldNoPanelChanged)
    Q_PROPERTY(PrefStyleState* styleState READ styleState WRITE setStyleState NOTIFY styleStateChanged)
    Q_PROPERTY(double workTime READ workTime NOTIFY workTimeStringChanged)
    Q_PROPERTY(double breakTime READ breakTime NOTIFY breakTimeStringChanged)
    Q_PROPERTY(double longBreakTime READ longBreakTime NOTIFY longBreakTimeStringChanged)
    Q_PROPERTY(qint64 shortBreakTimes READ shortBreakTimes NOTIFY shortBreakTimesStringChanged)

public:
    // The settings file's key of each property.
    static constexpr const char launchAtLoginKey[] = "launch_at_login";
    static constexpr const char showTimeKey[] = "show_time_in_status_bar";
    static constexpr const char autoCheckUpdateKey[] = "auto_check_update";
    static constexpr const char workTimeStringKey[] = "work_time";
    static constexpr const char breakTimeStringKey[] = "break_time";
    static constexpr const char customBreakPromptKey[] = "custom_break_prompt";
    static constexpr const char breakPromptKey[] = "break_prompt_text";
    static constexpr const char shortBreakTimesStringKey[] = "short_break_times";
    static constexpr const char longBreakTimeStringKey[] = "long_break_time";
    static constexpr const char customLongBreakPromptKey[] = "custom_long_break_prompt";
    static constexpr const char longBreakPromptKey[] = "long_break_prompt_text";
    static constexpr const char forceLongBreakKey[] = "force_long_break";
    static constexpr const char restartTimerAfterAwakeKey[] = "restart_timer_after_awake";
    static constexpr const char stopTimerAfterMouseStopKey[] = "stop_timer_after_mouse_stop";
    static constexpr const char showNewDayTipKey[] = "show_new_day_tip";
    static constexpr const char lastWeakupTimestampKey[] = "last_weakup_timestamp";
    static constexpr const char toldNoPanelKey[] = "told_no_panel";
    static constexpr const char headsUpKey[] = "heads_up";
    static constexpr const char headsUpSecondsStringKey[] = "heads_up_seconds";
    static constexpr const char allowPostponeKey[] = "allow_postpone";
    static constexpr const char postponeMinutesStringKey[] = "postpone_minutes";
    static constexpr const char postponeLimitStringKey[] = "postpone_limit";
    static constexpr const char holdBreaksKey[] = "hold_breaks";
    static constexpr const char holdLimitMinutesStringKey[] = "hold_limit_minutes";
    static constexpr const char keepHistoryKey[] = "keep_history";

    // Reads nothing and writes nothing: values are read when they are asked for.
    explicit PrefState(QObject* parent = nullptr);

    bool launchAtLogin() const;
    void setLaunchAtLogin(bool value);

    bool showTime() const;
    void setShowTime(bool value);

    bool autoCheckUpdate() const;
    bool updateChecksBuiltIn() const;
    void setAutoCheckUpdate(bool value);

    QString workTimeString() const;
    void setWorkTimeString(const QString& value);

    QString breakTimeString() const;
    void setBreakTimeString(const QString& value);

    bool customBreakPrompt() const;
    void setCustomBreakPrompt(bool value);

    QString breakPrompt() const;
    void setBreakPrompt(const QString& value);

    QString shortBreakTimesString() const;
    void setShortBreakTimesString(const QString& value);

    QString longBreakTimeString() const;
    void setLongBreakTimeString(const QString& value);

    bool customLongBreakPrompt() const;
    void setCustomLongBreakPrompt(bool value);

    QString longBreakPrompt() const;
    void setLongBreakPrompt(const QString& value);

    bool forceLongBreak() const;
    void setForceLongBreak(bool value);

    bool restartTimerAfterAwake() const;
    void setRestartTimerAfterAwake(bool value);

    bool stopTimerAfterMouseStop() const;
    void setStopTimerAfterMouseStop(bool value);

    bool showNewDayTip() const;
    void setShowNewDayTip(bool value);

    double lastWeakupTimestamp() const;
    void setLastWeakupTimestamp(double value);

    // Whether the user was told, while no panel could show the item, where Lulltide is. Not a
    // setting: the program keeps it so the notice comes once, not at every login.
    bool toldNoPanel() const;
    void setToldNoPanel(bool value);

    // A notification shortly before each break.
    bool headsUp() const;
    void setHeadsUp(bool value);
    QString headsUpSecondsString() const;
    void setHeadsUpSecondsString(const QString& value);

    // Postponing a break that is due or up, a limited number of times in a row.
    bool allowPostpone() const;
    void setAllowPostpone(bool value);
    QString postponeMinutesString() const;
    void setPostponeMinutesString(const QString& value);
    QString postponeLimitString() const;
    void setPostponeLimitString(const QString& value);

    // Holding a due break while another program is full screen, keeps the session awake, or the
    // desktop's Do Not Disturb is on.
    bool holdBreaks() const;
    void setHoldBreaks(bool value);
    // How long a break waits at most, in minutes; 0 for as long as something holds it.
    QString holdLimitMinutesString() const;
    void setHoldLimitMinutesString(const QString& value);

    // Every event of the cycle written to a local database, for the History tab.
    bool keepHistory() const;
    void setKeepHistory(bool value);

    PrefStyleState* styleState() const { return m_styleState; }
    void setStyleState(PrefStyleState* styleState);

    // Work period in seconds: work_time minutes × 60, 25 minutes when the text is not a number.
    double workTime() const;
    // Short break in seconds: break_time as typed, 300 when the text is not a number.
    double breakTime() const;
    // Long break in seconds: long_break_time minutes × 60, 15 minutes when not a number.
    double longBreakTime() const;
    // Every N-th break is long: short_break_times as a whole number, 4 when it is not one.
    qint64 shortBreakTimes() const;
    // The heads-up's lead in seconds: heads_up_seconds within 10-600, 60 when not a number.
    double headsUpSeconds() const;
    // Postpone length in seconds: postpone_minutes within 1-1440, × 60; 5 minutes when not a
    // number.
    double postponeTime() const;
    // Postpones allowed in a row: postpone_limit within 1-5, 2 when not a whole number.
    qint64 postponeLimit() const;
    // The longest wait of a held break in seconds: hold_limit_minutes within 0-1440, × 60; an hour
    // when not a number; 0 means no limit.
    double holdLimit() const;

    // The ranges the settings window enforces and the reads clamp to.
    static constexpr double headsUpSecondsMin = 10, headsUpSecondsMax = 600;
    static constexpr double postponeMinutesMin = 1, postponeMinutesMax = 1440;
    static constexpr qint64 postponeLimitMin = 1, postponeLimitMax = 5;
    static constexpr double holdLimitMinutesMax = 1440;

signals:
    void launchAtLoginChanged();
    void showTimeChanged();
    void autoCheckUpdateChanged();
    void workTimeStringChanged();
    void breakTimeStringChanged();
    void customBreakPromptChanged();
    void breakPromptChanged();
    void shortBreakTimesStringChanged();
    void longBreakTimeStringChanged();
    void customLongBreakPromptChanged();
    void longBreakPromptChanged();
    void forceLongBreakChanged();
    void restartTimerAfterAwakeChanged();
    void stopTimerAfterMouseStopChanged();
    void showNewDayTipChanged();
    void lastWeakupTimestampChanged();
    void toldNoPanelChanged();
    void headsUpChanged();
    void headsUpSecondsStringChanged();
    void allowPostponeChanged();
    void postponeMinutesStringChanged();
    void postponeLimitStringChanged();
    void holdBreaksChanged();
    void holdLimitMinutesStringChanged();
    void keepHistoryChanged();
    void styleStateChanged();

private:
    PrefStyleState* m_styleState = nullptr;
};
