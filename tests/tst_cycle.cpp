// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestHoldSource.h"
#include "support/TestMain.h"

#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/BreakScreen.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "cycle/PromptState.h"
#include "cycle/SystemEventActions.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "preferences/PrefState.h"
#include "preferences/SettingsStore.h"

#include <QSignalSpy>

namespace {

// The break windows as the cycle sees them: shown or not, nothing on any screen.
class RecordingBreakScreen final : public BreakScreen {
public:
    bool isShown() const override { return m_shown; }

protected:
    bool showWindows() override
    {
        m_shown = true;
        return true;
    }
    void closeWindows() override { m_shown = false; }

private:
    bool m_shown = false;
};

} // namespace

// The cycle alone: no panel, no break window, no history, no bus. What it does is read from the
// events it tells.
class CycleTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;
    RecordingBreakScreen screen;

    static PrefState& prefs() { return AppState::prefState(); }
    static PromptState& prompt() { return AppState::promptState(); }
    static CycleEvents& events() { return AppState::events(); }

    void tickUntilTimesUp()
    {
        while (!AppState::workState().timesUp())
            ticks->tick();
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        BreakGate::setHoldSourceFactory([] { return std::make_unique<TestHoldSource>(); });
        AppState::setBreakScreen(&screen);
        AppState::breakGate();
    }

    void init()
    {
        SettingsStore::settings().clear();
        prompt().resetShortBreakTimes();
        AppState::breakScreen().close();
        AppState::setManualPause(false);
    }

    void aWholeCycleTellsTheWorkTheBreakAndHowItEnded()
    {
        QSignalSpy work(&events(), &CycleEvents::workStarted);
        QSignalSpy breaks(&events(), &CycleEvents::breakStarted);
        QSignalSpy ended(&events(), &CycleEvents::breakEnded);
        TicktackController::work(prefs().workTime());
        QCOMPARE(work.size(), 1);
        QCOMPARE(work.at(0).at(0).toDouble(), 1500.0);
        tickUntilTimesUp();
        QVERIFY(screen.isShown());
        QCOMPARE(breaks.size(), 1);
        QCOMPARE(breaks.at(0).at(0).value<PromptState::Kind>(), PromptState::Kind::Short);
        QCOMPARE(breaks.at(0).at(1).toDouble(), 300.0);
        ticks->tick(300);
        // The view ends the break when its countdown has run out.
        prompt().skip();
        QCOMPARE(ended.size(), 1);
        QCOMPARE(ended.at(0).at(0).toBool(), true);
        QVERIFY(!screen.isShown());
        QCOMPARE(work.size(), 2);
    }

    void everyFourthBreakIsToldAsLong()
    {
        QSignalSpy breaks(&events(), &CycleEvents::breakStarted);
        TicktackController::work(prefs().workTime());
        for (int i = 0; i < 4; ++i) {
            tickUntilTimesUp();
            prompt().skip();
        }
        QCOMPARE(breaks.size(), 4);
        QCOMPARE(breaks.at(3).at(0).value<PromptState::Kind>(), PromptState::Kind::Long);
        QCOMPARE(breaks.at(3).at(1).toDouble(), 900.0);
    }

    void pauseAndResumeTellWhereTheyCameFrom()
    {
        QSignalSpy paused(&events(), &CycleEvents::paused);
        QSignalSpy resumed(&events(), &CycleEvents::resumed);
        CycleControl::togglePause(CycleControl::Origin::MiddleClick);
        CycleControl::pause(CycleControl::Origin::Bus); // already paused: nothing more
        CycleControl::resume(CycleControl::Origin::Menu);
        QCOMPARE(paused.size(), 1);
        QCOMPARE(paused.at(0).at(0).value<CycleEvents::Origin>(), CycleEvents::Origin::MiddleClick);
        QCOMPARE(resumed.size(), 1);
        QCOMPARE(resumed.at(0).at(0).value<CycleEvents::Origin>(), CycleEvents::Origin::Menu);
    }

    void aPostponeTellsItsLengthAndARefusalTellsNothing()
    {
        prefs().setAllowPostpone(true);
        QSignalSpy postponed(&events(), &CycleEvents::postponed);
        TicktackController::work(prefs().workTime());
        QVERIFY(!CycleControl::postpone(0).isEmpty());
        tickUntilTimesUp();
        QCOMPARE(CycleControl::postpone(0), QString());
        QCOMPARE(postponed.size(), 1);
        QCOMPARE(postponed.at(0).at(0).toDouble(), 300.0);
    }

    void aHoldAndItsReleaseAreTold()
    {
        prefs().setHoldBreaks(true);
        QSignalSpy held(&events(), &CycleEvents::held);
        QSignalSpy released(&events(), &CycleEvents::holdReleased);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QCOMPARE(held.size(), 1);
        QCOMPARE(held.at(0).at(0).toString(), "A video call is on");
        QVERIFY(!screen.isShown());
        ticks->tick(7);
        TestHoldSource::current->set(false);
        QCOMPARE(released.size(), 1);
        QCOMPARE(released.at(0).at(0).toString(), "cleared");
        QCOMPARE(released.at(0).at(1).toDouble(), 7.0);
        prefs().setHoldBreaks(false);
    }

    void theLockAndTheUnlockAreTold()
    {
        QSignalSpy locked(&events(), &CycleEvents::locked);
        QSignalSpy unlocked(&events(), &CycleEvents::unlocked);
        SystemEventActions::didLockScreenShow();
        QCOMPARE(AppState::working(), false);
        SystemEventActions::didLockScreenDismiss();
        QCOMPARE(locked.size(), 1);
        QCOMPARE(locked.at(0).at(0).toBool(), true);
        QCOMPARE(unlocked.size(), 1);
    }

    void theHeadsUpIsDueAtItsLeadAndWithdrawnWhenTheBreakStarts()
    {
        prefs().setHeadsUp(true);
        QSignalSpy due(&events(), &CycleEvents::headsUpDue);
        QSignalSpy withdrawn(&events(), &CycleEvents::headsUpWithdrawn);
        TicktackController::work(prefs().workTime());
        while (AppState::workState().secondsLeft() > 60)
            ticks->tick();
        QCOMPARE(due.size(), 1);
        QCOMPARE(due.at(0).at(0).toDouble(), 60.0);
        QCOMPARE(withdrawn.size(), 0);
        tickUntilTimesUp();
        QCOMPARE(withdrawn.size(), 1);
        prefs().setHeadsUp(false);
    }
};

LULLTIDE_TEST_MAIN(CycleTest)
#include "tst_cycle.moc"
