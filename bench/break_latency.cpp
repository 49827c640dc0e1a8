// SPDX-License-Identifier: GPL-3.0-or-later
// Measures how long the break screen takes to appear: from the tick that ends the work
// countdown to the first frame of the break window on every screen, drawn on the X server.
// Run it through bench/break-latency, which gives it a virtual X server and a scratch HOME.
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/PromptState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "statusbar/StatusBarController.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQuickWindow>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <memory>

static QList<QQuickWindow*> breakWindows()
{
    QList<QQuickWindow*> windows;
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() == QLatin1String("breakWindow") && window->isVisible())
            windows << qobject_cast<QQuickWindow*>(window);
    }
    return windows;
}

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 20;

    QElapsedTimer clock;
    QList<double> latencies;
    QEventLoop frameShown;

    // Connected before the status item's subscription, so it runs first: the moment time is up.
    QObject::connect(&AppState::workState(), &TicktackState::timesUpChanged, [&](bool up) {
        if (up)
            clock.start();
    });
    StatusBarController::item();
    // Connected after it: the break windows exist now; wait for the first frame.
    QObject::connect(&AppState::workState(), &TicktackState::timesUpChanged, [&](bool up) {
        if (!up)
            return;
        const QList<QQuickWindow*> windows = breakWindows();
        auto waiting = std::make_shared<qsizetype>(windows.size());
        for (QQuickWindow* window : windows) {
            QObject::connect(
                window, &QQuickWindow::frameSwapped, &frameShown,
                [&, waiting] {
                    if (--*waiting > 0)
                        return;
                    latencies << clock.nsecsElapsed() / 1e6;
                    frameShown.quit();
                },
                Qt::SingleShotConnection);
        }
    });

    for (int round = 0; round <= rounds; ++round) {
        TicktackController::work(0); // up on the first tick, one second from now
        frameShown.exec();
        AppState::promptState().closePrompt();
        QTimer::singleShot(200, &frameShown, &QEventLoop::quit);
        frameShown.exec();
    }

    const double first = latencies.takeFirst();
    std::sort(latencies.begin(), latencies.end());
    std::printf("screens: %lld\n", static_cast<long long>(QGuiApplication::screens().size()));
    std::printf("first break (QML engine made): %.1f ms\n", first);
    std::printf("later breaks (%lld): median %.1f ms, max %.1f ms\n",
                static_cast<long long>(latencies.size()), latencies.at(latencies.size() / 2),
                latencies.last());
    return 0;
}
