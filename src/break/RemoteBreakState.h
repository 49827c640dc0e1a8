// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

// The break as the break-screen process knows it: what Lulltide last sent, read by the break
// view in place of the cycle's own objects. Skip and Postpone go back as requests; the end of
// the countdown is Lulltide's to act on, so timesUp stays false here.
class RemoteBreakState : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString prompt READ prompt NOTIFY promptChanged)
    Q_PROPERTY(bool showSkipButton READ showSkipButton NOTIFY showSkipButtonChanged)
    Q_PROPERTY(bool showPostponeButton READ showPostponeButton NOTIFY showPostponeButtonChanged)
    Q_PROPERTY(QString timeString READ timeString NOTIFY timeStringChanged)
    Q_PROPERTY(bool timesUp READ timesUp NOTIFY timesUpChanged)
    Q_PROPERTY(QString kindName READ kindName NOTIFY kindChanged)
    Q_PROPERTY(double length READ length NOTIFY countdownChanged)
    Q_PROPERTY(double secondsLeft READ secondsLeft NOTIFY countdownChanged)

public:
    using QObject::QObject;

    QString prompt() const { return m_prompt; }
    bool showSkipButton() const { return m_showSkipButton; }
    bool showPostponeButton() const { return m_showPostponeButton; }
    QString timeString() const { return m_timeString; }
    bool timesUp() const { return false; }
    QString kindName() const { return m_kindName; }
    double length() const { return m_length; }
    double secondsLeft() const { return m_secondsLeft; }

    void setPrompt(const QString& prompt);
    void setShowSkipButton(bool show);
    void setShowPostponeButton(bool show);
    void setTimeString(const QString& timeString);
    void setKindName(const QString& kindName);
    void setCountdown(double length, double secondsLeft);

    Q_INVOKABLE void skip() { emit skipRequested(); }
    Q_INVOKABLE void postpone() { emit postponeRequested(); }

signals:
    void promptChanged();
    void showSkipButtonChanged();
    void showPostponeButtonChanged();
    void timeStringChanged();
    // Never raised: the view's reaction to the end of a break is Lulltide's own here.
    void timesUpChanged();
    void kindChanged();
    void countdownChanged();
    void skipRequested();
    void postponeRequested();

private:
    QString m_prompt;
    bool m_showSkipButton = false;
    bool m_showPostponeButton = false;
    QString m_timeString;
    QString m_kindName = QStringLiteral("short");
    double m_length = 0;
    double m_secondsLeft = 0;
};
