#pragma once

#include "TestSupport.h"

#include <QApplication>
#include <QtTest>

// Like QTEST_MAIN, but the program first moves HOME and the XDG folders into a temporary
// directory, so no test ever touches the real user's settings or logs.
#define LULLTIDE_TEST_MAIN(TestClass)                                                                         \
    int main(int argc, char* argv[])                                                                          \
    {                                                                                                         \
        TestSupport::isolateUserDirs();                                                                       \
        QApplication app(argc, argv);                                                                         \
        QApplication::setQuitOnLastWindowClosed(false);                                                       \
        TestClass test;                                                                                       \
        QTEST_SET_MAIN_SOURCE_PATH                                                                            \
        return QTest::qExec(&test, argc, argv);                                                               \
    }

// The same, and when started by TestSupport::runChild the program runs childMain(mode)
// instead of the tests: for behaviour that needs a fresh process (once-per-process set-up,
// fatal errors). The child keeps the environment its parent gave it.
#define LULLTIDE_TEST_MAIN_WITH_CHILD(TestClass, childMain)                                                   \
    int main(int argc, char* argv[])                                                                          \
    {                                                                                                         \
        const QByteArray mode = qgetenv("LULLTIDE_TEST_CHILD");                                               \
        if (!mode.isEmpty()) {                                                                                \
            QApplication app(argc, argv);                                                                     \
            return childMain(mode);                                                                           \
        }                                                                                                     \
        TestSupport::isolateUserDirs();                                                                       \
        QApplication app(argc, argv);                                                                         \
        QApplication::setQuitOnLastWindowClosed(false);                                                       \
        TestClass test;                                                                                       \
        QTEST_SET_MAIN_SOURCE_PATH                                                                            \
        return QTest::qExec(&test, argc, argv);                                                               \
    }
