// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "TestSupport.h"
#include "break/WindowController.h"
#include "control/BusExitOrder.h"
#include "settings/SettingsView.h"

#include <QApplication>
#include <QtTest>

namespace TestSupport {

using ChildMain = int (*)(const QByteArray& mode);
using BeforeApplication = void (*)();

// Runs the test object's slots in a world of its own: HOME and the XDG folders point into a
// temporary directory before the application object exists. When started by runChild() the
// program runs childMain(mode) instead, keeping the environment its parent gave it: for what
// needs a fresh process (once-per-process set-up, fatal errors).
template <typename TestClass>
int runTests(int argc, char* argv[], ChildMain childMain = nullptr,
             BeforeApplication beforeApplication = nullptr)
{
    BusExitOrder::keepTypesPastTheBusThread();
    if (beforeApplication)
        beforeApplication();
    const QByteArray mode = qgetenv("LULLTIDE_TEST_CHILD");
    if (childMain && !mode.isEmpty()) {
        QApplication app(argc, argv);
        WindowController::install();
        SettingsView::install();
        return childMain(mode);
    }
    isolateUserDirs();
    QApplication app(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    // The break windows and the settings window, in this process.
    WindowController::install();
    SettingsView::install();
    TestClass test;
    return QTest::qExec(&test, argc, argv);
}

} // namespace TestSupport

#define LULLTIDE_TEST_MAIN(TestClass)                                                                        \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return TestSupport::runTests<TestClass>(argc, argv);                                                 \
    }

// Runs the tests on a session bus of their own (see startPrivateSessionBus()).
#define LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(TestClass, childMain)                                            \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return TestSupport::runTests<TestClass>(argc, argv, childMain, TestSupport::startPrivateSessionBus); \
    }

// Runs the tests on a session bus and a system bus of their own (see startPrivateBuses()).
#define LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUSES(TestClass, childMain)                                          \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return TestSupport::runTests<TestClass>(argc, argv, childMain, TestSupport::startPrivateBuses);      \
    }

// Runs the tests on an X server of their own with a window manager.
#define LULLTIDE_TEST_MAIN_WITH_WINDOW_MANAGER(TestClass, childMain)                                         \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return TestSupport::runTests<TestClass>(argc, argv, childMain,                                       \
                                                TestSupport::startPrivateDisplayWithWindowManager);          \
    }

#define LULLTIDE_TEST_MAIN_WITH_CHILD(TestClass, childMain)                                                  \
    int main(int argc, char* argv[])                                                                         \
    {                                                                                                        \
        return TestSupport::runTests<TestClass>(argc, argv, childMain);                                      \
    }
