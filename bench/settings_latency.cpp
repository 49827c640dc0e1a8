// SPDX-License-Identifier: GPL-3.0-or-later
// Measures how long the settings window takes to appear: from the request (the menu's
// "Settings...", the command line, the bus all make the same call) to its first frame on the
// X server. "process" (what Lulltide does): the window of a process of its own, started by the
// request; "in process": the window made in the counting process itself, as Lulltide did before
// (the first time with the QML engine, then the kept window shown again).
// Run it through bench/settings-latency, which gives it a virtual X server and a scratch HOME.
#include "Latencies.h"
#include "settings/SettingsProcess.h"
#include "settings/SettingsView.h"
#include "settings/SettingsWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QQuickWindow>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace {

QQuickWindow* settingsWindow()
{
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->objectName() == QLatin1String("settingsWindow"))
            return qobject_cast<QQuickWindow*>(window);
    }
    return nullptr;
}

} // namespace

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int rounds = argc > 1 ? std::max(1, atoi(argv[1])) : 10;
    const bool inProcess = argc > 2 && std::strcmp(argv[2], "in-process") == 0;

    QElapsedTimer clock;
    QList<double> latencies;
    QEventLoop drawn;

    if (inProcess) {
        SettingsView::install();
        for (int round = 0; round <= rounds; ++round) {
            clock.start();
            SettingsWindow::show();
            QQuickWindow* window = settingsWindow();
            if (!window)
                return 1;
            QObject::connect(
                window, &QQuickWindow::frameSwapped, &drawn,
                [&] {
                    latencies << clock.nsecsElapsed() / 1e6;
                    drawn.quit();
                },
                Qt::SingleShotConnection);
            drawn.exec();
            window->close();
            Latencies::wait(300);
        }
        std::printf("in process, first opening (QML engine made): %.1f ms\n", latencies.takeFirst());
        Latencies::report("in process, later openings", "openings", latencies);
        return 0;
    }

    SettingsProcess settings(QStringLiteral(LULLTIDE_VIEWS_BINARY));
    QObject::connect(&settings, &SettingsProcess::drawn, &drawn, [&] {
        latencies << clock.nsecsElapsed() / 1e6;
        drawn.quit();
    });
    for (int round = 0; round < rounds; ++round) {
        clock.start();
        settings.show();
        drawn.exec();
        settings.close();
        Latencies::wait(500);
    }
    Latencies::report("settings window's own process", "openings", latencies);
    return 0;
}
