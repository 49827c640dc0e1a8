// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "cycle/AppState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "cycle/WorkItem.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

using namespace std::chrono_literals;

class AppStateTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    StatusMenuItem* pauseItem() { return StatusBarController::menu().itemWithTag(AppState::pauseItemTag); }

private slots:
    void init()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
    }

    void newTicktackStateShowsNothingAndIsNotUp()
    {
        TicktackState state;
        QCOMPARE(state.timeString(), QString());
        QCOMPARE(state.timesUp(), false);
    }

    void sharedObjectsAreMadeOnceAndKept()
    {
        QCOMPARE(&AppState::workState(), &AppState::workState());
        QVERIFY(&AppState::workState() != &AppState::breakState());
        QCOMPARE(&AppState::prefState(), &AppState::prefState());
        QCOMPARE(&AppState::promptState(), &AppState::promptState());
        QCOMPARE(AppState::pauseItemTag, 9001);
    }

    void flagsStartWorkingAndNotPaused()
    {
        QCOMPARE(AppState::working(), true);
        QCOMPARE(AppState::manualPause(), false);
    }

    void settingWorkingTrueWhileWorkingRestartsFromFullLengthAndLeavesTheMenuItem()
    {
        AppState::setWorking(true);
        QCOMPARE(pauseItem()->title(), "- Stop -");
        ticks->tick(5);
        QCOMPARE(AppState::workState().timeString(), "24:55");

        QSignalSpy itemChanged(pauseItem(), &StatusMenuItem::changed);
        AppState::setWorking(true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QVERIFY(ticks->running());
        QCOMPARE(pauseItem()->title(), "- Stop -");
        QCOMPARE(pauseItem()->image(), "stop.circle");
    }

    void manualPauseStopsTheCountdownAndOffersWrok()
    {
        AppState::setWorking(true);
        ticks->tick(3);
        AppState::setManualPause(true);
        QCOMPARE(AppState::working(), false);
        QVERIFY(!ticks->running());
        QCOMPARE(AppState::workState().timeString(), "24:57");
        QCOMPARE(pauseItem()->title(), "- Wrok -");
        QCOMPARE(pauseItem()->image(), "play.circle");
        QCOMPARE(pauseItem()->accessibleDescription(), "Start the breaks again");
        QCOMPARE(pauseItem()->iconName(), "media-playback-start");

        AppState::setManualPause(false);
        QCOMPARE(AppState::working(), true);
        QVERIFY(ticks->running());
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(pauseItem()->title(), "- Stop -");
        QCOMPARE(pauseItem()->image(), "stop.circle");
        QCOMPARE(pauseItem()->iconName(), "media-playback-stop");
    }

    void workingFalseStopsABreakToo()
    {
        TicktackController::break_(300);
        ticks->tick();
        AppState::setWorking(false);
        QVERIFY(!ticks->running());
        QCOMPARE(AppState::breakState().timeString(), "04:59");
        AppState::setWorking(true);
    }

    void pauseEntryOfTheMenuTogglesManualPause()
    {
        QVERIFY(!AppState::manualPause());
        QCOMPARE(pauseItem()->keyEquivalent(), "p");
        pauseItem()->trigger();
        QVERIFY(AppState::manualPause());
        QCOMPARE(pauseItem()->title(), "- Wrok -");
        pauseItem()->trigger();
        QVERIFY(!AppState::manualPause());
        QCOMPARE(pauseItem()->title(), "- Stop -");
    }

    void replacingTheIdleItemDoesNotCancelThePreviousOne()
    {
        int firstRan = 0;
        int secondRan = 0;
        AppState::setMouseMoveEventItem(WorkItem::schedule(50ms, [&] { ++firstRan; }));
        const std::weak_ptr<WorkItem> first = AppState::mouseMoveEventItem();
        AppState::setMouseMoveEventItem(WorkItem::schedule(50ms, [&] { ++secondRan; }));
        QTRY_COMPARE(firstRan, 1);
        QTRY_COMPARE(secondRan, 1);
        QVERIFY(first.expired()); // released once it ran
        AppState::setMouseMoveEventItem(nullptr);
    }

    void cancelledIdleItemNeverRuns()
    {
        int ran = 0;
        AppState::setMouseMoveEventItem(WorkItem::schedule(30ms, [&] { ++ran; }));
        AppState::mouseMoveEventItem()->cancel();
        QTest::qWait(150);
        QCOMPARE(ran, 0);
        QVERIFY(AppState::mouseMoveEventItem()->isCancelled());
    }

    // Last: it takes the pause entry away for good.
    void withoutAPauseEntryWorkingStillStartsAndStopsTheCountdown()
    {
        StatusMenu& menu = StatusBarController::menu();
        const int entries = menu.items().size();
        QStringList titles;
        for (StatusMenuItem* item : menu.items())
            titles << item->title();
        titles.removeAt(menu.items().indexOf(pauseItem()));
        menu.removeItem(pauseItem());
        QVERIFY(!pauseItem());

        AppState::setWorking(false);
        QVERIFY(!ticks->running());
        AppState::setWorking(true);
        QVERIFY(ticks->running());
        QCOMPARE(AppState::workState().timeString(), "25:00");

        QCOMPARE(menu.items().size(), entries - 1);
        QStringList after;
        for (StatusMenuItem* item : menu.items())
            after << item->title();
        QCOMPARE(after, titles);
    }
};

LULLTIDE_TEST_MAIN(AppStateTest)
#include "tst_appstate.moc"
