// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/CycleControl.h"
#include "cycle/SystemEventActions.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "preferences/PrefState.h"

#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QWindow>

#include <cstdio>
#include <malloc.h>
#include <unistd.h>

// Many work/break cycles in a row on two screens, time stepped by hand, with the screen lock,
// pauses and pointer moves thrown in at random: afterwards nothing is left behind. The number of
// cycles comes from LULLTIDE_SOAK_CYCLES (bench/soak runs 10,000); the seed is printed, and
// LULLTIDE_SOAK_SEED repeats a run.
class SoakTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    static qint64 residentKiB()
    {
        QFile statm("/proc/self/statm");
        if (!statm.open(QIODevice::ReadOnly))
            return -1;
        const QList<QByteArray> fields = statm.readAll().split(' ');
        return fields.size() > 1 ? fields.at(1).toLongLong() * (sysconf(_SC_PAGESIZE) / 1024) : -1;
    }

    // Bytes the program holds from the allocator, in every arena. Unlike the resident size it
    // does not move when a loaded machine makes the allocator open another arena for a thread.
    static qint64 heapInUseKiB()
    {
        const struct mallinfo2 info = mallinfo2();
        return qint64(info.uordblks + info.hblkhd) / 1024;
    }

    static QList<QWindow*> breakWindows()
    {
        QList<QWindow*> windows;
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == QLatin1String("breakWindow"))
                windows << window;
        }
        return windows;
    }

    // Lets the fades run a little and what was let go be deleted, as the event loop does
    // between ticks.
    static void settle()
    {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        PrefState& prefs = AppState::prefState();
        prefs.setWorkTimeString("0.05"); // 3 ticks
        prefs.setBreakTimeString("2");   // 2 ticks
        prefs.setLongBreakTimeString("0.05");
        prefs.setShortBreakTimesString("3");
        prefs.setShowNewDayTip(false);
        // What is measured is the cycle; the update check has its own test of what it leaves.
        prefs.setAutoCheckUpdate(false);
        AppDelegate().applicationDidFinishLaunching();
    }

    void cyclesWithLocksPausesAndPointerMovesLeaveNothingBehind()
    {
        const int cycles = qEnvironmentVariableIsSet("LULLTIDE_SOAK_CYCLES")
                               ? qEnvironmentVariableIntValue("LULLTIDE_SOAK_CYCLES")
                               : 1000;
        const quint32 seed = qEnvironmentVariableIsSet("LULLTIDE_SOAK_SEED")
                                 ? quint32(qEnvironmentVariableIntValue("LULLTIDE_SOAK_SEED"))
                                 : 20261122u;
        std::printf("soak: %d cycles, seed %u\n", cycles, seed);
        QRandomGenerator random(seed);

        int breaks = 0;
        bool inBreak = false;
        qint64 settledMemory = -1;
        qint64 settledHeap = -1;
        int locks = 0, pauses = 0, moves = 0;
        while (breaks < cycles) {
            const int roll = int(random.bounded(100));
            if (roll < 80) {
                ticks->tick();
            } else if (roll < 87) {
                ++moves;
                SystemEventActions::onTrigger();
            } else if (roll < 94) {
                ++locks;
                SystemEventActions::didLockScreenShow();
                settle();
                SystemEventActions::didLockScreenDismiss();
            } else {
                ++pauses;
                CycleControl::pause();
                settle();
                CycleControl::resume();
            }
            settle();
            const bool nowInBreak = WindowController::isBreakShown();
            if (nowInBreak && !inBreak) {
                ++breaks;
                // Memory once everything a break makes exists, and the QML engine is warm.
                if (breaks == qMin(100, cycles / 2)) {
                    settledMemory = residentKiB();
                    settledHeap = heapInUseKiB();
                }
            }
            inBreak = nowInBreak;
        }
        // End in a work period, with every fade done.
        CycleControl::pause();
        QTest::qWait(1200);
        const qint64 finalMemory = residentKiB();
        const qint64 finalHeap = heapInUseKiB();
        std::printf(
            "soak: %d breaks, %d locks, %d pauses, %d pointer moves; after %d breaks resident %lld KiB, "
            "heap in use %lld KiB; at the end resident %lld KiB, heap in use %lld KiB\n",
            breaks, locks, pauses, moves, qMin(100, cycles / 2), static_cast<long long>(settledMemory),
            static_cast<long long>(settledHeap), static_cast<long long>(finalMemory),
            static_cast<long long>(finalHeap));

        // One break window per screen, made once and reused, none visible.
        const QList<QWindow*> windows = breakWindows();
        QCOMPARE(windows.size(), QGuiApplication::screens().size());
        QStringList screens;
        for (QWindow* window : windows) {
            screens << window->property("screenKey").toString();
            QVERIFY2(!window->isVisible(), qPrintable(screens.constLast()));
        }
        screens.sort();
        QCOMPARE(screens, QStringList({"DP-1", "HDMI-1"}));

        // The log: every countdown that started was stopped before the next one started.
        bool running = false;
        int starts = 0;
        for (const QString& line : TestSupport::logLines()) {
            if (line.contains(" : ticktack timer start ")) {
                QVERIFY2(!running, qPrintable("started twice without a stop: " + line));
                running = true;
                ++starts;
            } else if (line.contains(" : ticktack timer stoped ")) {
                running = false;
            }
        }
        QVERIFY(!running); // the pause at the end stopped the last one
        QVERIFY(starts >= 2 * cycles);

        // Memory did not grow: the last cycles hold nothing from the allocator that the first
        // ones did not, and the resident size moved no more than a new allocator arena can
        // (each thread that meets a busy arena on a loaded machine may get its own).
        // AddressSanitizer keeps freed memory in quarantine, so there memory says nothing.
#ifndef __SANITIZE_ADDRESS__
        QVERIFY(settledMemory > 0);
        QVERIFY2(finalHeap - settledHeap < 256,
                 qPrintable(QStringLiteral("the heap grew by %1 KiB").arg(finalHeap - settledHeap)));
        QVERIFY2(finalMemory - settledMemory < 8192,
                 qPrintable(QStringLiteral("grew by %1 KiB").arg(finalMemory - settledMemory)));
#endif
    }
};

static void useTwoOffscreenScreens()
{
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TESTS_SOURCE_DIR "/support/screens.json");
    qputenv("QT_QUICK_BACKEND", "software");
}

int main(int argc, char* argv[])
{
    return TestSupport::runTests<SoakTest>(argc, argv, nullptr, useTwoOffscreenScreens);
}

#include "tst_soak.moc"
