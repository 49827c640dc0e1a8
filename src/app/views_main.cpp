// SPDX-License-Identifier: GPL-3.0-or-later
// lulltide-views: the windows Lulltide shows with Qt Quick, each in a process of its own that
// Lulltide starts (`--break-screen` ahead of each break, `--settings-window`), so that the
// process that counts all day never loads Qt Quick.
#include "ApplicationLook.h"
#include "break/BreakScreenChild.h"
#include "control/BusExitOrder.h"
#include "settings/SettingsChild.h"

#include <QApplication>
#include <QGuiApplication>
#include <cstdio>
#include <cstring>

namespace {

template <typename Child, typename Application> int run(int argc, char* argv[])
{
    Application app(argc, argv);
    ApplicationLook::nameTheApplication();
    ApplicationLook::useTheDesktopsIcons();
    Child child;
    if (const std::optional<int> failed = child.start())
        return *failed;
    return app.exec();
}

} // namespace

int main(int argc, char* argv[])
{
    BusExitOrder::keepTypesPastTheBusThread();
    if (argc == 2 && std::strcmp(argv[1], "--break-screen") == 0) {
        BreakScreenChild::prepareProcess();
        return run<BreakScreenChild, QGuiApplication>(argc, argv);
    }
    // The History tab's chart is drawn by Qt Charts, which rests on Qt Widgets.
    if (argc == 2 && std::strcmp(argv[1], "--settings-window") == 0)
        return run<SettingsChild, QApplication>(argc, argv);
    std::fputs("lulltide-views shows Lulltide's windows for Lulltide; start lulltide instead\n", stderr);
    return 2;
}
