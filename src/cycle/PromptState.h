// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

// What the break screen shows, and the decisions that move the cycle between work and breaks:
// every N-th break (N = short_break_times) is a long one.
class PromptState : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString prompt READ prompt WRITE setPrompt NOTIFY promptChanged)
    Q_PROPERTY(bool showSkipButton READ showSkipButton WRITE setShowSkipButton NOTIFY showSkipButtonChanged)
    Q_PROPERTY(bool showPostponeButton READ showPostponeButton NOTIFY showPostponeButtonChanged)
    Q_PROPERTY(QString kindName READ kindName NOTIFY kindChanged)

public:
    enum class Kind { Short, Long, NewDay };
    Q_ENUM(Kind)

    // Starts with the user's short-break prompt.
    explicit PromptState(QObject* parent = nullptr);

    QString prompt() const { return m_prompt; }
    void setPrompt(const QString& prompt);

    bool showSkipButton() const { return m_showSkipButton; }
    void setShowSkipButton(bool show);

    // Postpone beside Skip: while postponing is allowed and left, never on a forced long break
    // (no way out but waiting) nor on the greeting of a new day.
    bool showPostponeButton() const { return m_showPostponeButton; }
    void updatePostponeButton();

    // The break on the screen, or the last one shown.
    Kind kind() const { return m_kind; }
    // The same for the views: "short", "long" or "newDay".
    QString kindName() const;
    // The kind of break the end of the running work period brings.
    Kind nextKind() const;
    // The break on the screen was postponed: the next one is of the same kind and does not move
    // the rotation again.
    void repeatBreak();

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
    // The break view's Postpone button.
    Q_INVOKABLE void postpone();

    static QString newDayPrompt();

signals:
    void promptChanged();
    void showSkipButtonChanged();
    void showPostponeButtonChanged();
    void kindChanged();

private:
    void skipUnshownBreak();
    void setKind(Kind kind);

    QString m_prompt;
    bool m_showSkipButton = false;
    bool m_showPostponeButton = false;
    Kind m_kind = Kind::Short;
    bool m_repeat = false;
    qint64 m_shortBreakTimes = 0;
};
