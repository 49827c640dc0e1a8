// SPDX-License-Identifier: GPL-3.0-or-later
// Measures how long the break screen takes to appear: from the tick that ends the work
// countdown to the first frame of the break window on every screen, drawn on the X server.
// "process" (what Lulltide does): the break windows of a break-screen process started ahead of
// the break; "on demand": that process started only when the break comes (a break asked for
// with no countdown before it); "in process": the windows made in the counting process itself,
// as Lulltide did before.
// Run it through bench/break-latency, which gives it a virtual X server and a scratch HOME.
#include "Latencies.h"
#include "break/BreakScreenProcess.h"
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
#include <cstring>
#include <memory>

namespace {

QList<QQuickWindow*> breakWindows()
{
    QList<QQuickWindow*> windows;
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() == QLatin1String("breakWindow") && window->isVisible())
            windows << qobject_cast<QQuickWindow*>(window);
    }
    return windows;
}


} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 20;
    const bool inProcess = argc > 2 && std::strcmp(argv[2], "in-process") == 0;

    QElapsedTimer clock;
    QList<double> latencies;
    QEventLoop frameShown;
    const auto shown = [&] {
        latencies << clock.nsecsElapsed() / 1e6;
        frameShown.quit();
    };
    std::printf("screens: %lld\n", static_cast<long long>(QGuiApplication::screens().size()));

    // Connected first, so it runs first: the moment time is up.
    QObject::connect(&AppState::workState(), &TicktackState::timesUpChanged, [&](bool up) {
        if (up)
            clock.start();
    });
    // The status item's subscription opens the break when time is up.
    StatusBarController::item();

    if (inProcess) {
        WindowController::install();
        // Connected after the cycle's own reaction: the break windows exist now.
        QObject::connect(&AppState::workState(), &TicktackState::timesUpChanged, [&](bool up) {
            if (!up)
                return;
            const QList<QQuickWindow*> windows = breakWindows();
            auto waiting = std::make_shared<qsizetype>(windows.size());
            for (QQuickWindow* window : windows) {
                QObject::connect(
                    window, &QQuickWindow::frameSwapped, &frameShown,
                    [&, waiting] {
                        if (--*waiting == 0)
                            shown();
                    },
                    Qt::SingleShotConnection);
            }
        });
        for (int round = 0; round <= rounds; ++round) {
            TicktackController::work(0); // up on the first tick, one second from now
            frameShown.exec();
            AppState::promptState().closePrompt();
            Latencies::wait(200);
        }
        const double first = latencies.takeFirst();
        std::printf("in process, first break (QML engine made): %.1f ms\n", first);
        Latencies::report("in process, later breaks", "breaks", latencies);
        return 0;
    }

    BreakScreenProcess screen(QStringLiteral(LULLTIDE_VIEWS_BINARY));
    screen.install();
    QObject::connect(&screen, &BreakScreenProcess::drawn, &frameShown, shown);
    for (int round = 0; round < rounds; ++round) {
        // Its process starts at once, well ahead of the end.
        TicktackController::work(BreakScreenProcess::startAheadSeconds - 5);
        frameShown.exec();
        AppState::promptState().closePrompt();
        Latencies::wait(200);
    }
    Latencies::report("break-screen process started ahead", "breaks", latencies);

    latencies.clear();
    for (int round = 0; round < std::max(3, rounds / 4); ++round) {
        TicktackController::work(3600); // no break near: no process
        Latencies::wait(200);
        clock.start();
        AppState::promptState().showBreak();
        frameShown.exec();
        AppState::promptState().closePrompt();
        Latencies::wait(200);
    }
    Latencies::report("break-screen process started on demand", "breaks", latencies);
    return 0;
}
