// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

// What the break screen shows, and the decisions that move the cycle between work and breaks:
// every N-th break (N = short_break_times) is a long one.
class PromptState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The break screen's state belongs to the application")
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY promptChanged)
    Q_PROPERTY(bool showSkipButton READ showSkipButton WRITE setShowSkipButton NOTIFY showSkipButtonChanged)

public:
    // Starts with the user's short-break prompt.
    explicit PromptState(QObject* parent = nullptr);

    QString prompt() const { return m_prompt; }
    void setPrompt(const QString& prompt);

    bool showSkipButton() const { return m_showSkipButton; }
    void setShowSkipButton(bool show);

    // Where the rotation stands: 0 right after a long break (and at start).
    qint64 shortBreakTimes() const { return m_shortBreakTimes; }

    // Advances the rotation, opens the break windows, chooses prompt and skip button, and
    // starts the break countdown (long when the rotation comes round to 0).
    void showBreak();
    // The first unlock of a new day: a ten-second break with a greeting.
    void showNewDay();
    // Closes the break windows and starts a work period.
    void closePrompt();
    // The next break counts as the first of a new rotation.
    void resetShortBreakTimes();

    // The break view's skip action: the Skip button, or the end of the break countdown.
    Q_INVOKABLE void skip();

    static QString newDayPrompt();

signals:
    void promptChanged();
    void showSkipButtonChanged();

private:
    void skipUnshownBreak();

    QString m_prompt;
    bool m_showSkipButton = false;
    qint64 m_shortBreakTimes = 0;
};
