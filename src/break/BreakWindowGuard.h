// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDeadlineTimer>
#include <QHash>
#include <QObject>
#include <QTimer>
#include <functional>

class QQuickWindow;
class QWindow;

// Keeps the break windows where the break put them while it runs. A window that is closed is
// kept; one that is minimised, taken out of full screen, unmapped (sent to another desktop or
// workspace), or moved off its own screen is put back; a window of another program that takes
// the focus from the break is covered again. Everything is seen through the window's own events:
// nothing polls.
class BreakWindowGuard : public QObject {
    Q_OBJECT

public:
    struct Host {
        // Whether a break is on screen now.
        std::function<bool()> breakShown;
        // The window's name in the log: its screen's.
        std::function<QString(const QQuickWindow*)> nameOf;
        // Where the window belongs: the frame of its own screen.
        std::function<QRect(const QQuickWindow*)> frameOf;
        // Shows the window again on its own screen, full screen and on top.
        std::function<void(QQuickWindow*)> putBack;
        // Raises every break window and gives the focus back to the primary screen's one.
        std::function<void()> takeFocusBack;
    };

    explicit BreakWindowGuard(Host host, QObject* parent = nullptr);

    // A break begins: what the last one saw is forgotten.
    void breakStarts();
    // Watches the window from now on (once; a window watched already is left as it is).
    void watch(QQuickWindow* window);
    // Looks at the focus again: the compositor has answered its question (see the focus check),
    // and the focus may have stayed elsewhere.
    void checkFocus();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void schedule(QQuickWindow* window, const QString& why);
    // Visible, drawn, full screen and over its own screen.
    bool inPlace(const QQuickWindow* window) const;
    void focusChanged(QWindow* focus);
    static bool isBreakWindow(const QWindow* window);
    void putBackPending();

    Host m_host;
    // Windows to put back, with what happened to them: one put-back for a burst of events.
    // (Break windows live as long as the process.)
    QHash<QQuickWindow*, QString> m_pending;
    // Windows on their way back, until they are in place: what the way back itself sets off
    // (an unmap, a state change) is not another escape. Given a second at most, in case the
    // window manager does not comply.
    QHash<QQuickWindow*, QDeadlineTimer> m_returning;
    QTimer m_settle;
    QTimer m_focusSettle;
    // Whether a break window has had the focus since it was last taken back.
    bool m_hadFocus = false;
    // Focus changes until then are the break's own doing.
    QDeadlineTimer m_quietUntil;
};
