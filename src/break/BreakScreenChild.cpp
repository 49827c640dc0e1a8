// SPDX-License-Identifier: GPL-3.0-or-later
#include "BreakScreenChild.h"

#include "QmlEngine.h"
#include "WindowController.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTimer>
#include <cstdio>
#include <memory>

BreakScreenChild::~BreakScreenChild()
{
    QmlEngine::deleteWindows();
}

void BreakScreenChild::prepareProcess()
{
    // Qt's Wayland platform takes a window for hidden when the compositor's frame callback is
    // 100 ms late, and the break would then put back a window that never went: GNOME Shell is
    // that late now and then. A hidden window gets no callback at all, so it is still told,
    // 400 ms after its next frame (the countdown draws one each second).
    if (qEnvironmentVariableIsEmpty("QT_WAYLAND_FRAME_CALLBACK_TIMEOUT"))
        qputenv("QT_WAYLAND_FRAME_CALLBACK_TIMEOUT", "400");
    // Qt then makes no window role of its own for a window that bypasses the window manager:
    // the break windows that the compositor's overlay layer takes (and only they bypass it).
    qputenv("QT_WAYLAND_USE_BYPASSWINDOWMANAGERHINT", "1");
    // Frameless break windows need no decorations. Asked whether it could draw them, Qt's
    // Wayland platform loads EGL at the first window shown, which on sway took 100 ms of the
    // break's first frame, and the memory of a GL driver that the software renderer never uses.
    if (qEnvironmentVariableIsEmpty("QT_WAYLAND_DISABLE_WINDOWDECORATION"))
        qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
}

std::optional<int> BreakScreenChild::start()
{
    if (!m_channel.openToParent()) {
        std::fputs("--break-screen is for Lulltide's own use\n", stderr);
        return NotStartedByLulltide;
    }
    connect(&m_channel, &ViewChannel::received, this, &BreakScreenChild::apply);
    // Lulltide ended or is done with the break.
    connect(&m_channel, &ViewChannel::closed, this, &BreakScreenChild::leave);
    connect(&m_state, &RemoteBreakState::skipRequested, this, [this] {
        m_channel.send({{QStringLiteral("action"), QStringLiteral("skip")}});
    });
    connect(&m_state, &RemoteBreakState::postponeRequested, this, [this] {
        m_channel.send({{QStringLiteral("action"), QStringLiteral("postpone")}});
    });

    WindowController::setViewState(&m_state, &m_state);
    if (!WindowController::prepareBreak())
        return ViewCannotBeMade;
    m_channel.send({{QStringLiteral("ready"), true}});
    return std::nullopt;
}

void BreakScreenChild::apply(const QJsonObject& message)
{
    if (!message.value(QStringLiteral("shown")).toBool()) {
        // The break is over (or will not come): the windows go with the process, showing what
        // they showed to the end.
        leave();
        return;
    }
    m_state.setPrompt(message.value(QStringLiteral("prompt")).toString());
    m_state.setShowSkipButton(message.value(QStringLiteral("skip")).toBool());
    m_state.setShowPostponeButton(message.value(QStringLiteral("postpone")).toBool());
    m_state.setTimeString(message.value(QStringLiteral("time")).toString());
    m_state.setKindName(message.value(QStringLiteral("kind")).toString(QStringLiteral("short")));
    m_state.setCountdown(message.value(QStringLiteral("length")).toDouble(),
                         message.value(QStringLiteral("left")).toDouble());
    if (!WindowController::isBreakShown()) {
        // A process started again during a break (the last one ended after drawing it) shows a
        // break that has been on screen all along: at once, without the fade of its start.
        const bool again = message.value(QStringLiteral("again")).toBool();
        if (!WindowController::showBreak(again ? WindowController::Entrance::AtOnce
                                               : WindowController::Entrance::FadeIn)) {
            QCoreApplication::exit(ViewCannotBeMade);
            return;
        }
        tellWhenDrawn();
    }
}

// exit(), not quit(): quit() first asks every window to close, and a break window refuses while
// its break is on.
void BreakScreenChild::leave()
{
    if (m_leaving)
        return;
    m_leaving = true;
    // A screen reader hears that the break is over from the focused button itself, so it must
    // still be there when the words reach the reader: the windows stay a moment longer then.
    if (!WindowController::isBreakShown() || !QAccessible::isActive()) {
        QCoreApplication::exit(0);
        return;
    }
    m_state.setCountdown(m_state.length(), 0);
    QTimer::singleShot(screenReaderGrace, qApp, [] { QCoreApplication::exit(0); });
}

void BreakScreenChild::tellWhenDrawn()
{
    const QList<QQuickWindow*> windows = WindowController::breakWindows();
    auto waiting = std::make_shared<qsizetype>(windows.size());
    for (QQuickWindow* window : windows) {
        connect(
            window, &QQuickWindow::frameSwapped, this,
            [this, waiting] {
                if (--*waiting == 0)
                    m_channel.send({{QStringLiteral("drawn"), true}});
            },
            Qt::SingleShotConnection);
    }
}
