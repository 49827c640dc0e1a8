// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/PromptState.h"
#include "cycle/SystemEventActions.h"
#include "cycle/SystemEventController.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "cycle/WorkItem.h"
#include "events/ChineseDate.h"
#include "events/PointerMonitor.h"
#include "preferences/PrefState.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWidget>

using namespace std::chrono_literals;

namespace {

const QString sessionPath = QStringLiteral("/org/freedesktop/login1/session/_3c1");
// The idle timeout of the tests that wait for it, and of the others, which must never meet it.
constexpr auto shortTimeout = 600ms;
constexpr auto longTimeout = std::chrono::milliseconds(std::chrono::hours(1));

// login1 as the tests need it: the manager answers which session a process is in, and the
// stand-in sends the session's and the manager's signals from the name's owner, as logind does.
class StandInLogin1 : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    explicit StandInLogin1(const QDBusConnection& bus) : m_bus(bus) {}

    bool start()
    {
        return m_bus.registerObject("/org/freedesktop/login1", this,
                                    QDBusConnection::ExportScriptableSlots) &&
               m_bus.registerService("org.freedesktop.login1");
    }

    void emitSignal(const QString& path, const QString& interface, const QString& name,
                    const QVariantList& arguments = {})
    {
        QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
        signal.setArguments(arguments);
        m_bus.send(signal);
    }

public slots:
    Q_SCRIPTABLE QDBusObjectPath GetSessionByPID(uint) { return QDBusObjectPath(sessionPath); }

private:
    QDBusConnection m_bus;
};

// GNOME's compositor as far as idleness goes: it hands out watches and says when they fire.
class StandInMutterIdleMonitor : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.Mutter.IdleMonitor")

public:
    QList<quint64> idleWatches; // the intervals asked for
    uint activeWatch = 0;

public slots:
    Q_SCRIPTABLE uint AddIdleWatch(quint64 interval)
    {
        idleWatches << interval;
        return 7;
    }
    Q_SCRIPTABLE uint AddUserActiveWatch() { return activeWatch = 8; }
    Q_SCRIPTABLE void RemoveWatch(uint) {}
    Q_SCRIPTABLE quint64 GetIdletime() { return 0; }

signals:
    Q_SCRIPTABLE void WatchFired(uint id);
};

// Reports the default idle timeout of a process whose start-up armed it; or runs the program's
// start-up on a platform without X11, where the compositor tells of idleness.
int childMain(const QByteArray& mode)
{
    if (mode == "compositor") {
        AppDelegate().applicationDidFinishLaunching();
        return QCoreApplication::exec();
    }
    if (mode != "default-timeout")
        return 2;
    TestSupport::isolateUserDirs();
    TicktackController::setTickSource(std::make_unique<ManualTickSource>());
    AppDelegate().applicationDidFinishLaunching();
    const auto item = AppState::mouseMoveEventItem();
    std::printf("%lld %lld\n", static_cast<long long>(SystemEventController::idleTimeout().count()),
                item ? static_cast<long long>(item->remaining().count()) : -1LL);
    return 0;
}

} // namespace

// Counts the lock signals as they reach this process, on the same connections the program
// listens on: once one is counted, the program has had it too.
class LockSignalCounter : public QObject {
    Q_OBJECT

public:
    int seen = 0;

    bool listen()
    {
        QDBusConnection session = QDBusConnection::sessionBus();
        QDBusConnection system = QDBusConnection::systemBus();
        bool ok = true;
        for (const char* screenSaver : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                        "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver"})
            ok &= session.connect(QString(), QString(), screenSaver, "ActiveChanged", this, SLOT(count()));
        ok &= system.connect(QString(), sessionPath, "org.freedesktop.login1.Session", "Lock", this,
                             SLOT(count()));
        ok &= system.connect(QString(), sessionPath, "org.freedesktop.login1.Session", "Unlock", this,
                             SLOT(count()));
        ok &= system.connect(QString(), sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                             this, SLOT(count()));
        ok &= system.connect(QString(), "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                             "PrepareForSleep", this, SLOT(count()));
        return ok;
    }

public slots:
    void count() { ++seen; }
};

// A window of ours that counts the keys released in it: it sees a typed key once the X server
// has handed it on, to everybody who listens.
class KeyWitness : public QWidget {
public:
    int releases = 0;

protected:
    void keyReleaseEvent(QKeyEvent*) override { ++releases; }
};

class EventsTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;
    StandInLogin1* login1 = nullptr;
    LockSignalCounter* lockSignals = nullptr;
    PointerMonitor* pointer = nullptr;

    static PrefState& prefs() { return AppState::prefState(); }

    static QString pauseTitle()
    {
        return StatusBarController::menu().itemWithTag(AppState::pauseItemTag)->title();
    }

    static void run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        QVERIFY(process.waitForFinished(10000));
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());
    }

    static void xdotool(const QStringList& arguments) { run("xdotool", arguments); }

    // Sends a lock signal and returns once the program has had it.
    void delivered(const std::function<void()>& send)
    {
        const int before = lockSignals->seen;
        send();
        QTRY_VERIFY_WITH_TIMEOUT(lockSignals->seen > before, 10000);
        QCoreApplication::processEvents();
    }

    void screenSaver(const QString& interface, bool active)
    {
        delivered([&] {
            run("gdbus", {"emit", "--session", "--object-path", "/" + QString(interface).replace('.', '/'),
                          "--signal", interface + ".ActiveChanged", active ? "true" : "false"});
        });
    }

    void session(const QString& signal)
    {
        delivered([&] { login1->emitSignal(sessionPath, "org.freedesktop.login1.Session", signal); });
    }

    void lockedHint(bool locked)
    {
        delivered([&] {
            login1->emitSignal(
                sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                {"org.freedesktop.login1.Session", QVariantMap{{"LockedHint", locked}}, QStringList()});
        });
    }

    void prepareForSleep(bool sleeping)
    {
        delivered([&] {
            login1->emitSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
                               {sleeping});
        });
    }

    // Does something at the desk and returns once the program has seen it as activity.
    void seen(const std::function<void()>& act)
    {
        QSignalSpy activity(pointer, &PointerMonitor::activity);
        act();
        QTRY_VERIFY_WITH_TIMEOUT(!activity.isEmpty(), 10000);
    }

    static int stops() { return int(TestSupport::logText().count("ticktack timer stoped")); }
    static int starts() { return int(TestSupport::logText().count("ticktack timer start 1500.0")); }

    // A running cycle with a fresh work period, the long idle timeout armed and the screen unlocked.
    void freshStart()
    {
        prefs().setStopTimerAfterMouseStop(true);
        prefs().setRestartTimerAfterAwake(true);
        prefs().setShowNewDayTip(false);
        if (WindowController::isBreakShown())
            AppState::promptState().closePrompt();
        AppState::setManualPause(false);
        SystemEventController::setIdleTimeout(longTimeout);
        if (const auto pending = AppState::mouseMoveEventItem())
            pending->cancel();
        SystemEventActions::onTrigger();
    }

    // Nobody at the desk: a short idle timeout runs out and stops the cycle. What follows has the
    // long one again, so it cannot strike in the middle of a test on a busy machine.
    static void beIdle()
    {
        SystemEventController::setIdleTimeout(shortTimeout);
        if (const auto pending = AppState::mouseMoveEventItem())
            pending->cancel();
        SystemEventActions::onTrigger();
        QTRY_COMPARE_WITH_TIMEOUT(AppState::working(), false, 10000);
        SystemEventController::setIdleTimeout(longTimeout);
    }

    static void movePointer()
    {
        static int x = 100;
        x = x == 100 ? 300 : 100;
        xdotool({"mousemove", QString::number(x), "200"});
    }

    // Waits until the pending idle item has visibly counted down, moves the pointer, and checks
    // that the move armed it afresh.
    void moveAndSeeTheTimeoutReArmed()
    {
        const auto item = AppState::mouseMoveEventItem();
        QVERIFY(item);
        QTRY_VERIFY(item->remaining() < longTimeout - 300ms);
        const auto before = item->remaining();
        movePointer();
        QTRY_VERIFY_WITH_TIMEOUT(AppState::mouseMoveEventItem()->remaining() > before, 10000);
    }

private slots:
    void initTestCase()
    {
        QCOMPARE(SystemEventController::idleTimeout(), 300s);
        SystemEventController::setIdleTimeout(longTimeout);
        login1 = new StandInLogin1(QDBusConnection::systemBus());
        QVERIFY(login1->start());
        lockSignals = new LockSignalCounter;
        QVERIFY(lockSignals->listen());
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        AppDelegate().applicationDidFinishLaunching();
        pointer = QCoreApplication::instance()->findChild<PointerMonitor*>();
        QVERIFY(pointer);
    }

    // A test that failed half way may leave a source saying locked or a break up: all clear, so
    // the next test starts unlocked.
    void cleanup()
    {
        if (!QTest::currentTestFailed())
            return;
        for (const char* screenSaverInterface : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                                 "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver"})
            screenSaver(screenSaverInterface, false);
        session("Unlock");
        prepareForSleep(false);
        if (WindowController::isBreakShown())
            AppState::promptState().closePrompt();
    }

    void theIdleTimeoutIsThreeHundredSecondsByDefaultAndArmedAtStart()
    {
        const auto child = TestSupport::runChild("default-timeout", QProcessEnvironment::systemEnvironment());
        QCOMPARE(child.exitCode, 0);
        const QStringList numbers = child.standardOutput.trimmed().split('\n').last().split(' ');
        QCOMPARE(numbers.value(0), "300000");
        QVERIFY2(numbers.value(1).toLongLong() > 295000 && numbers.value(1).toLongLong() <= 300000,
                 qPrintable(child.standardOutput));
    }

    void withoutPointerActivityTheCountdownStopsAndTheNextMoveStartsAFullWorkPeriod()
    {
        freshStart();
        ticks->tick(5);
        QCOMPARE(AppState::workState().timeString(), "24:55");
        beIdle();
        QVERIFY(!ticks->running());
        QCOMPARE(pauseTitle(), "- Wrok -");

        movePointer();
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(pauseTitle(), "- Stop -");
    }

    void pointerMovesKeepTheCycleRunning()
    {
        freshStart();
        for (int i = 0; i < 4; ++i)
            moveAndSeeTheTimeoutReArmed();
        QCOMPARE(AppState::working(), true);
        QVERIFY(!AppState::mouseMoveEventItem()->hasRun());
    }

    void motionOverAnotherWindowCountsAsAMouseMakesIt()
    {
        freshStart();
        QWidget cover;
        cover.setGeometry(QGuiApplication::primaryScreen()->geometry());
        cover.setMouseTracking(true);
        cover.show();
        QVERIFY(QTest::qWaitForWindowExposed(&cover));
        xdotool({"mousemove", "640", "400"});
        beIdle();
        // Relative motion comes from an input device, as a mouse's does; the root window does not
        // see it under the cover.
        xdotool({"mousemove_relative", "--", "15", "5"});
        QTRY_COMPARE(AppState::working(), true);
    }

    void buttonsAndModifierKeysCountButOtherKeysDoNot()
    {
        freshStart();
        KeyWitness witness;
        witness.setGeometry(0, 0, 200, 100);
        witness.show();
        witness.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&witness));
        beIdle();

        // The witness proves the key went by. Another test's window on the same display may take
        // the focus meanwhile: then the witness takes it back and the key goes again.
        for (int attempt = 0; attempt < 8 && witness.releases == 0; ++attempt) {
            witness.activateWindow();
            if (!QTest::qWaitForWindowActive(&witness))
                continue;
            xdotool({"key", "a"});
            if (QTest::qWaitFor([&] { return witness.releases > 0; }, 4000))
                break;
        }
        QVERIFY(witness.releases > 0);
        QCoreApplication::processEvents();
        QCOMPARE(AppState::working(), false);

        xdotool({"keydown", "shift"});
        QTRY_COMPARE(AppState::working(), true);
        xdotool({"keyup", "shift"});

        beIdle();
        xdotool({"click", "1"});
        QTRY_COMPARE(AppState::working(), true);
    }

    void whilePausedByHandPointerActivityKeepsReArmingButNeverRestarts()
    {
        freshStart();
        AppState::setManualPause(true);
        for (int i = 0; i < 4; ++i) {
            moveAndSeeTheTimeoutReArmed();
            QCOMPARE(AppState::working(), false);
        }
        QVERIFY(!AppState::mouseMoveEventItem()->hasRun());
        AppState::setManualPause(false);
    }

    void switchingIdleStopOffLetsTheArmedTimeoutStopOnceAndNothingRestarts()
    {
        freshStart();
        SystemEventController::setIdleTimeout(shortTimeout);
        AppState::mouseMoveEventItem()->cancel();
        SystemEventActions::onTrigger(); // a short timeout armed while the switch was on
        SystemEventController::setIdleTimeout(longTimeout);
        prefs().setStopTimerAfterMouseStop(false);
        QVERIFY(!AppState::mouseMoveEventItem()->isCancelled());
        seen(movePointer); // does not count any more
        QTRY_COMPARE_WITH_TIMEOUT(AppState::working(), false, 10000);
        seen(movePointer);
        QCOMPARE(AppState::working(), false);
        prefs().setStopTimerAfterMouseStop(true);
    }

    void aBreakCancelsThePendingTimeoutAndTheCycleRunsOnWithoutIdleStop()
    {
        freshStart();
        SystemEventController::setIdleTimeout(shortTimeout);
        AppState::mouseMoveEventItem()->cancel();
        SystemEventActions::onTrigger();
        const auto armed = AppState::mouseMoveEventItem();
        SystemEventController::setIdleTimeout(longTimeout);
        AppState::promptState().showBreak();
        QVERIFY(armed->isCancelled());
        // Scheduled after the cancelled item with the same delay, so it runs after that would have.
        const auto later = WorkItem::schedule(shortTimeout, [] {});
        QTRY_VERIFY_WITH_TIMEOUT(later->hasRun(), 10000);
        QCOMPARE(AppState::working(), true);
        QVERIFY(ticks->running()); // the break counts down
        AppState::promptState().skip();
        const auto afterTheBreak = WorkItem::schedule(shortTimeout, [] {});
        QTRY_VERIFY_WITH_TIMEOUT(afterTheBreak->hasRun(), 10000);
        QCOMPARE(AppState::working(), true);
        QVERIFY(ticks->running()); // and the next work period
    }

    void pointerMotionOverAnOpenBreakScreenNeitherRestartsNorReArms()
    {
        freshStart();
        AppState::setWorking(false);
        AppState::promptState().showNewDay(); // a break while the cycle is stopped, as after an unlock
        const auto item = AppState::mouseMoveEventItem();
        seen([] { xdotool({"mousemove_relative", "--", "15", "5"}); });
        seen([] { xdotool({"click", "3"}); });
        QCOMPARE(AppState::working(), false);
        QCOMPARE(AppState::mouseMoveEventItem(), item);
        QCOMPARE(AppState::breakState().timeString(), "00:10");
        AppState::promptState().closePrompt();
    }

    void pointerAndModifierActivityWhileLockedNeitherRestartsNorReArms()
    {
        freshStart();
        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        const int startsBefore = starts();
        const auto item = AppState::mouseMoveEventItem();
        QTRY_VERIFY(item->remaining() < longTimeout - 300ms);
        const auto remaining = item->remaining();

        // A pointer nudged on the way to the keyboard, a click, and Shift typed into the lock
        // screen's password field.
        seen(movePointer);
        seen([] { xdotool({"click", "1"}); });
        seen([] { xdotool({"key", "shift+a"}); });
        QCOMPARE(AppState::working(), false);
        QVERIFY(!ticks->running());
        QCOMPARE(starts(), startsBefore);
        QCOMPARE(AppState::mouseMoveEventItem(), item);
        QVERIFY(item->remaining() <= remaining);

        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(starts(), startsBefore + 1);
        // Unlocked, the desk counts again.
        moveAndSeeTheTimeoutReArmed();
    }

    void lockDuringABreakStopsItAndClosesItsWindowsAndUnlockStartsAFullWorkPeriod()
    {
        freshStart();
        AppState::promptState().showBreak();
        QVERIFY(WindowController::isBreakShown());
        ticks->tick(3);
        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        QVERIFY(!ticks->running());
        QVERIFY(!WindowController::isBreakShown());
        for (QWindow* window : QGuiApplication::allWindows())
            QVERIFY(!(window->objectName() == "breakWindow" && window->isVisible()));

        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QVERIFY(!WindowController::isBreakShown()); // no new-day greeting
    }

    void withRestartAfterAwakeOffTheCountdownRunsThroughTheLockAndUnlockChangesNothing()
    {
        freshStart();
        prefs().setRestartTimerAfterAwake(false);
        ticks->tick(2);
        screenSaver("org.gnome.ScreenSaver", true);
        QCOMPARE(AppState::working(), true);
        ticks->tick(2);
        screenSaver("org.gnome.ScreenSaver", false);
        QCOMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "24:56");
        prefs().setRestartTimerAfterAwake(true);
    }

    void theSameLockReportedByTwoSourcesRunsTheHandlerOnce()
    {
        freshStart();
        const int before = stops();
        screenSaver("org.gnome.ScreenSaver", true);
        screenSaver("org.mate.ScreenSaver", true);
        session("Lock");
        QTRY_COMPARE(AppState::working(), false);
        QCOMPARE(stops(), before + 1);
        // Each source clears in turn; the unlock comes once, with the last of them.
        screenSaver("org.gnome.ScreenSaver", false);
        screenSaver("org.mate.ScreenSaver", false);
        const int startsBefore = starts();
        session("Unlock");
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(starts(), startsBefore + 1);
        screenSaver("org.mate.ScreenSaver", false); // told twice
        QCOMPARE(starts(), startsBefore + 1);
    }

    void theScreenStaysLockedUntilTheLastSourceClears()
    {
        freshStart();
        screenSaver("org.gnome.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        lockedHint(true);
        screenSaver("org.gnome.ScreenSaver", false);
        QCOMPARE(AppState::working(), false); // the session still says locked
        QVERIFY(!ticks->running());
        lockedHint(false);
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
    }

    void loginSessionLockAndUnlockDriveTheCycle()
    {
        freshStart();
        session("Lock");
        QTRY_COMPARE(AppState::working(), false);
        session("Unlock");
        QTRY_COMPARE(AppState::working(), true);
    }

    void lockedHintOfTheSessionDrivesTheCycle()
    {
        freshStart();
        lockedHint(true);
        QTRY_COMPARE(AppState::working(), false);
        lockedHint(false);
        QTRY_COMPARE(AppState::working(), true);
    }

    void aSuspendCountsAsALockAndTheResumeAsAnUnlock()
    {
        freshStart();
        ticks->tick(10);
        prepareForSleep(true);
        QTRY_COMPARE(AppState::working(), false);
        prepareForSleep(false);
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
    }

    void aResumeWithTheLockScreenStillUpIsNoUnlock()
    {
        freshStart();
        ticks->tick(10);
        // The desktop locks the screen on the way to sleep.
        prepareForSleep(true);
        screenSaver("org.gnome.ScreenSaver", true);
        lockedHint(true);
        QTRY_COMPARE(AppState::working(), false);
        const int startsBefore = starts();

        prepareForSleep(false);
        QCOMPARE(AppState::working(), false);
        QVERIFY(!ticks->running());
        QCOMPARE(starts(), startsBefore);

        // The person types the password: the unlock starts a fresh period, once.
        screenSaver("org.gnome.ScreenSaver", false);
        QCOMPARE(AppState::working(), false);
        lockedHint(false);
        QTRY_COMPARE(AppState::working(), true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(starts(), startsBefore + 1);
    }

    void theNewDayGreetingWaitsForTheRealUnlockAfterAResume()
    {
        freshStart();
        prefs().setShowNewDayTip(true);
        prepareForSleep(true);
        lockedHint(true);
        QTRY_COMPARE(AppState::working(), false);
        prefs().setLastWeakupTimestamp(prefs().lastWeakupTimestamp() - 86400); // slept overnight

        prepareForSleep(false);
        QVERIFY(!WindowController::isBreakShown()); // nobody would see it behind the lock screen
        QVERIFY(!ticks->running());

        lockedHint(false);
        QTRY_VERIFY(WindowController::isBreakShown());
        QCOMPARE(AppState::promptState().prompt(), PromptState::newDayPrompt());
        QCOMPARE(AppState::breakState().timeString(), "00:10");
        AppState::promptState().closePrompt();
    }

    void lockNotesTheTimeOnlyWhileTheGreetingIsOn()
    {
        freshStart();
        prefs().setLastWeakupTimestamp(0);
        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        QCOMPARE(prefs().lastWeakupTimestamp(), 0.0);
        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_COMPARE(AppState::working(), true);

        prefs().setShowNewDayTip(true);
        const double before = double(QDateTime::currentSecsSinceEpoch());
        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        QVERIFY(prefs().lastWeakupTimestamp() >= before && prefs().lastWeakupTimestamp() < before + 5);
        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_COMPARE(AppState::working(), true); // the same day: no greeting
    }

    void unlockOnANewDayGreetsWithATenSecondBreakAndStartsTheRotationAfresh()
    {
        freshStart();
        prefs().setShowNewDayTip(true);
        AppState::promptState().showBreak(); // the rotation moves on
        AppState::promptState().skip();
        QVERIFY(AppState::promptState().shortBreakTimes() != 0);

        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        prefs().setLastWeakupTimestamp(prefs().lastWeakupTimestamp() - 86400); // locked yesterday
        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_VERIFY(WindowController::isBreakShown());
        QCOMPARE(AppState::breakState().timeString(), "00:10");
        QCOMPARE(AppState::promptState().prompt(), PromptState::newDayPrompt());
        QCOMPARE(AppState::promptState().prompt().toUtf8().size(), 70);
        QCOMPARE(AppState::promptState().shortBreakTimes(), 0);
        QCOMPARE(AppState::working(), false); // no restart on top of the greeting

        ticks->tick(10); // the greeting ends and a work period follows, working as the lock left it
        QTRY_VERIFY(!WindowController::isBreakShown());
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QVERIFY(ticks->running());
        QCOMPARE(AppState::working(), false);
    }

    void unlockOnTheSameDayStillStartsTheRotationAfresh()
    {
        freshStart();
        prefs().setShowNewDayTip(true);
        AppState::promptState().showBreak();
        AppState::promptState().skip();
        QVERIFY(AppState::promptState().shortBreakTimes() != 0);
        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_COMPARE(AppState::working(), true);
        QVERIFY(!WindowController::isBreakShown());
        QCOMPARE(AppState::promptState().shortBreakTimes(), 0);
    }

    void theNewDayBreakKeepsTheSkipButtonOfThePreviousBreak_data()
    {
        QTest::addColumn<bool>("forced");
        QTest::newRow("after a forced long break: none") << true;
        QTest::newRow("after a short break: shown") << false;
    }
    void theNewDayBreakKeepsTheSkipButtonOfThePreviousBreak()
    {
        QFETCH(bool, forced);
        freshStart();
        prefs().setShowNewDayTip(true);
        prefs().setForceLongBreak(forced);
        prefs().setShortBreakTimesString(forced ? "1" : "4"); // every break long, or a short one next
        AppState::promptState().resetShortBreakTimes();
        AppState::promptState().showBreak();
        QCOMPARE(AppState::promptState().showSkipButton(), !forced);
        AppState::promptState().closePrompt();

        screenSaver("org.freedesktop.ScreenSaver", true);
        QTRY_COMPARE(AppState::working(), false);
        prefs().setLastWeakupTimestamp(prefs().lastWeakupTimestamp() - 86400);
        screenSaver("org.freedesktop.ScreenSaver", false);
        QTRY_VERIFY(WindowController::isBreakShown());
        QCOMPARE(AppState::promptState().prompt(), PromptState::newDayPrompt());
        QCOMPARE(AppState::promptState().showSkipButton(), !forced);

        AppState::promptState().closePrompt();
        prefs().setForceLongBreak(false);
        prefs().setShortBreakTimesString("4");
    }

    void aNewDayIsAnotherDayOfTheChineseCalendar()
    {
        qputenv("TZ", "Asia/Shanghai");
        // 2024-02-09 23:30 and 2024-02-10 00:30 in Shanghai: the last day of a year and the first
        // of the next in the Chinese calendar.
        const double newYearsEve =
            double(QDateTime(QDate(2024, 2, 9), QTime(15, 30), Qt::UTC).toSecsSinceEpoch());
        QVERIFY(SystemEventActions::isNewDay(newYearsEve, newYearsEve + 3600));
        QVERIFY(!SystemEventActions::isNewDay(newYearsEve, newYearsEve + 1200));
        const ChineseDate eve = ChineseDate::of(newYearsEve);
        const ChineseDate first = ChineseDate::of(newYearsEve + 3600);
        QVERIFY(eve.year != first.year);
        QCOMPARE(first.month, 0); // the first month
        QCOMPARE(first.day, 1);

        // The same moment is a new day in one time zone and not in another.
        qputenv("TZ", "UTC");
        QVERIFY(!SystemEventActions::isNewDay(newYearsEve, newYearsEve + 3600));
        qunsetenv("TZ");
    }

    void aMissingCalendarComponentEqualsOnlyAnotherMissingOne()
    {
        const ChineseDate full{4, 0, 1};
        QVERIFY(!(full == ChineseDate{std::nullopt, 0, 1}));
        QVERIFY((ChineseDate{std::nullopt, 0, 1} == ChineseDate{std::nullopt, 0, 1}));
        QVERIFY(!(ChineseDate{4, std::nullopt, 1} == ChineseDate{4, 0, 1}));
    }

    void withoutX11TheCompositorsIdleMonitorStopsAndRestartsTheCycle()
    {
        StandInMutterIdleMonitor mutter;
        QDBusConnection bus = QDBusConnection::sessionBus();
        QVERIFY(bus.registerObject("/org/gnome/Mutter/IdleMonitor/Core", &mutter,
                                   QDBusConnection::ExportScriptableContents));
        QVERIFY(bus.registerService("org.gnome.Mutter.IdleMonitor"));

        QTemporaryDir home;
        QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
        environment.insert("LULLTIDE_TEST_CHILD", "compositor");
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("WAYLAND_DISPLAY", "no-such-compositor"); // GNOME tells only over D-Bus
        QProcess child;
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForStarted());
        const auto log = [&] { return TestSupport::logTextIn(home.path()); };
        QTRY_COMPARE_WITH_TIMEOUT(mutter.idleWatches, QList<quint64>{300000}, 10000);
        QTRY_VERIFY(log().contains("sandbox home path"));
        // Active all along, no events: nothing stops the cycle until the compositor says idle.
        QCOMPARE(log().count("ticktack timer stoped"), 1); // the one before the first period
        emit mutter.WatchFired(7);
        QTRY_COMPARE(log().count("ticktack timer stoped"), 2);
        QTRY_COMPARE(mutter.activeWatch, 8u);

        emit mutter.WatchFired(8); // back at the desk
        QTRY_COMPARE(log().count("ticktack timer start 1500.0"), 2);
        QCOMPARE(log().count("pointer idleness from GNOME's idle monitor"), 1);
        child.kill();
        child.waitForFinished();
        bus.unregisterService("org.gnome.Mutter.IdleMonitor");
        bus.unregisterObject("/org/gnome/Mutter/IdleMonitor/Core");
    }

    void withoutAnyBusLulltideStillStartsAndCountsDown()
    {
        QTemporaryDir home;
        QVERIFY(QDir().mkpath(home.path() + "/.config/lulltide"));
        QFile conf(home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nwork_time=0.05\nauto_check_update=false\n"); // three seconds of work
        conf.close();
        QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus");
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus");
        QProcess app;
        app.setProcessEnvironment(environment);
        app.start(LULLTIDE_BINARY, {});
        QVERIFY(app.waitForStarted());
        // The work period counts down to its end and the break begins.
        QTRY_VERIFY_WITH_TIMEOUT(TestSupport::logTextIn(home.path()).contains("ticktack timer start 300.0"),
                                 20000);
        QCOMPARE(app.state(), QProcess::Running);
        const QString log = TestSupport::logTextIn(home.path());
        QCOMPARE(log.count("no D-Bus: Lulltide does not notice when the screen locks"), 1);
        // Xvfb has no tray either: nothing in the panel can show the item, and the log says so.
        QCOMPARE(log.count("no D-Bus session bus and no system tray: nothing in the panel shows Lulltide"),
                 1);
        QVERIFY(log.contains("ticktack timer start 3.0"));
        app.terminate();
        QVERIFY(app.waitForFinished(5000));
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUSES(EventsTest, childMain)

#include "tst_events.moc"
