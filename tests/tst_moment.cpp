// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/StandInNotificationServer.h"
#include "support/TestHoldSource.h"
#include "support/TestMain.h"

#include "break/WindowController.h"
#include "control/ControlService.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/PromptState.h"
#include "cycle/SystemEventActions.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "notifications/HeadsUpNotice.h"
#include "notifications/HoldNotice.h"
#include "preferences/PrefState.h"
#include "preferences/SettingsStore.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusItem.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>

namespace {

const int postponeTag = 9002;

} // namespace

// Runs on Qt's offscreen platform with two screens side by side, on a session bus of its own
// where a stand-in notification server shows the heads-ups.
class MomentTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;
    QDBusConnection desktop =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));
    StandInNotificationServer* server = nullptr;
    ControlService* service = nullptr;

    static PrefState& prefs() { return AppState::prefState(); }
    static PromptState& prompt() { return AppState::promptState(); }
    static BreakGate& gate() { return AppState::breakGate(); }
    static StatusItem& item() { return StatusBarController::item(); }
    static StatusMenuItem* postponeEntry() { return StatusBarController::menu().itemWithTag(postponeTag); }

    static QQuickWindow* primaryBreakWindow()
    {
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == "breakWindow" && window->property("screenKey") == "DP-1")
                return qobject_cast<QQuickWindow*>(window);
        }
        return nullptr;
    }
    static QQuickItem* breakChild(const char* name)
    {
        QQuickWindow* window = primaryBreakWindow();
        return window ? window->findChild<QQuickItem*>(name) : nullptr;
    }
    static int visibleBreakWindows()
    {
        int count = 0;
        for (QWindow* window : QGuiApplication::allWindows())
            count += window->objectName() == "breakWindow" && window->isVisible();
        return count;
    }

    void tickUntilTimesUp()
    {
        QVERIFY(ticks->running());
        while (!AppState::workState().timesUp())
            ticks->tick();
    }
    void tickUntilSecondsLeft(double seconds)
    {
        while (AppState::workState().secondsLeft() > seconds && !AppState::workState().timesUp())
            ticks->tick();
    }

    // A call over the bus from another program, without blocking the service in this thread.
    QDBusMessage callService(const QString& method, const QVariantList& arguments = {},
                             const QString& interface = ControlService::interfaceName)
    {
        QDBusMessage message = QDBusMessage::createMethodCall(ControlService::serviceName,
                                                              ControlService::objectPath, interface, method);
        message.setArguments(arguments);
        QDBusPendingCall pending = desktop.asyncCall(message, 5000);
        QDBusPendingCallWatcher done(pending);
        QEventLoop loop;
        connect(&done, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (!pending.isFinished())
            loop.exec();
        return pending.reply();
    }
    QString busStatus()
    {
        const QDBusMessage reply =
            callService("Get", {ControlService::interfaceName, QStringLiteral("Status")},
                        QStringLiteral("org.freedesktop.DBus.Properties"));
        return reply.arguments().value(0).value<QDBusVariant>().variant().toString();
    }

    // The command line, run as a person runs it, against the service in this process.
    TestSupport::ChildResult runCommandLine(const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        environment.remove("QT_QPA_PLATFORM");
        process.setProcessEnvironment(environment);
        process.start(LULLTIDE_BINARY, arguments);
        TestSupport::ChildResult result;
        if (!process.waitForStarted())
            return result;
        // The service answers from this thread's event loop.
        if (!QTest::qWaitFor([&process] { return process.state() == QProcess::NotRunning; }, 20000))
            return result;
        result.exitCode = process.exitCode();
        result.standardOutput = QString::fromUtf8(process.readAllStandardOutput());
        result.standardError = QString::fromUtf8(process.readAllStandardError());
        return result;
    }

    // What the server received, heads-ups and notices of a held break apart.
    QList<StandInNotificationServer::Received> received(bool heldNotices) const
    {
        QList<StandInNotificationServer::Received> found;
        for (const auto& notification : server->received()) {
            if ((notification.summary == "Break held") == heldNotices)
                found << notification;
        }
        return found;
    }
    QList<StandInNotificationServer::Received> headsUps() const { return received(false); }
    HeadsUpNotice* headsUpNotice = nullptr;
    QList<StandInNotificationServer::Received> heldNotices() const { return received(true); }

private slots:
    void initTestCase()
    {
        QVERIFY(desktop.isConnected());
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        BreakGate::setHoldSourceFactory([] { return std::make_unique<TestHoldSource>(); });
        service = new ControlService(QDBusConnection::sessionBus(), this);
        QCOMPARE(service->claim(), ControlService::Claim::Owned);
        StatusBarController::item();
        // The heads-up follows the cycle here as in the program.
        headsUpNotice = new HeadsUpNotice(AppState::events(), this);
        new HoldNotice(AppState::events(), this);
    }

    void init()
    {
        WindowController::closeBreak();
        SettingsStore::settings().clear();
        // No panel takes the item here: without this, the notice that says so arrives at the
        // notification server some seconds after start, in whichever test runs then.
        AppState::prefState().setToldNoPanel(true);
        prompt().resetShortBreakTimes();
        gate().breakFinished();
        AppState::setManualPause(false);
        // A fresh server each time: what it received is this test's alone.
        delete server;
        server = new StandInNotificationServer(desktop, {"actions", "body"}, this);
        QVERIFY(server->start());
    }

    void cleanup()
    {
        WindowController::closeBreak();
        prefs().setHoldBreaks(false);
    }

    // With every option off the cycle is the usual one.

    void withTheOptionsOffTheBreakComesAtOnceWithoutHeadsUpOrPostpone()
    {
        QCOMPARE(TestHoldSource::made, 0); // nothing that could hold is even made
        QVERIFY(!postponeEntry());
        tickUntilTimesUp();
        QCOMPARE(visibleBreakWindows(), 2);
        QVERIFY(breakChild("skipButton")->isVisible());
        QVERIFY(!breakChild("postponeButton")->isVisible());
        QVERIFY(!CycleControl::postpone(0).isEmpty());
        QCOMPARE(visibleBreakWindows(), 2);
        // The break's own end proves the cycle ran through without a heads-up on the way.
        prompt().skip();
        QCOMPARE(server->calls(), QStringList());
    }

    // The heads-up.

    void headsUpTextSaysTheTimeAsAPersonWould()
    {
        QCOMPARE(HeadsUpNotice::summary(60), "Break in 1 minute");
        QCOMPARE(HeadsUpNotice::summary(45), "Break in 45 seconds");
        QCOMPARE(HeadsUpNotice::summary(1), "Break in 1 second");
        QCOMPARE(HeadsUpNotice::summary(150), "Break in 2 minutes 30 seconds");
        QCOMPARE(HeadsUpNotice::summary(600), "Break in 10 minutes");
        QCOMPARE(HeadsUpNotice::body(false, 300), "A short break of 5 minutes.");
        QCOMPARE(HeadsUpNotice::body(true, 900), "A long break of 15 minutes.");
    }

    void headsUpComesTheLeadTimeBeforeTheBreakAndGoesWhenItStarts()
    {
        prefs().setHeadsUp(true);
        prefs().setWorkTimeString("3");
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(61);
        QCOMPARE(AppState::workState().timeString(), "01:01");
        ticks->tick();
        QTRY_COMPARE(headsUps().size(), 1);
        // Sent at 60 seconds, not a tick earlier or later: the text is written at that moment.
        const auto notice = headsUps().constFirst();
        QCOMPARE(notice.summary, "Break in 1 minute");
        QCOMPARE(notice.body, "A short break of 5 minutes.");
        QCOMPARE(notice.actions, QStringList({"start-now", "Start now"}));
        QCOMPARE(notice.appName, "Lulltide");

        tickUntilTimesUp();
        QCOMPARE(visibleBreakWindows(), 2);
        QTRY_COMPARE(server->closedIds(), QList<quint32>{notice.id});
        QCOMPARE(headsUps().size(), 1);
    }

    void headsUpOfALongBreakSaysSoAndOffersPostponeWhenAllowed()
    {
        prefs().setHeadsUp(true);
        prefs().setAllowPostpone(true);
        prefs().setShortBreakTimesString("1");
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(60);
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(headsUps().constFirst().body, "A long break of 15 minutes.");
        QCOMPARE(headsUps().constFirst().actions,
                 QStringList({"start-now", "Start now", "postpone", "Postpone"}));
    }

    void headsUpIsWithdrawnWhenTheCycleIsPaused()
    {
        prefs().setHeadsUp(true);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(30);
        QTRY_COMPARE(headsUps().size(), 1);
        CycleControl::pause();
        QTRY_COMPARE(server->closedIds(), QList<quint32>{headsUps().constFirst().id});
    }

    void headsUpIsWithdrawnWhenTheScreenLocks()
    {
        prefs().setHeadsUp(true);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(30);
        QTRY_COMPARE(headsUps().size(), 1);
        SystemEventActions::didLockScreenShow();
        QTRY_COMPARE(server->closedIds(), QList<quint32>{headsUps().constFirst().id});
        SystemEventActions::didLockScreenDismiss();
    }

    void headsUpIsWithdrawnWhenTheBreakIsPostponedFromIt()
    {
        prefs().setHeadsUp(true);
        prefs().setAllowPostpone(true);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(60);
        QTRY_COMPARE(headsUps().size(), 1);
        const quint32 id = headsUps().constFirst().id;
        server->invokeAction(id, "postpone");
        QTRY_COMPARE(AppState::workState().timeString(), "05:00");
        QTRY_COMPARE(server->closedIds(), QList<quint32>{id});
        QCOMPARE(gate().postponesInARow(), 1);
        QCOMPARE(visibleBreakWindows(), 0);
    }

    void headsUpStartNowStartsTheBreakAtOnce()
    {
        prefs().setHeadsUp(true);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(60);
        QTRY_COMPARE(headsUps().size(), 1);
        server->invokeAction(headsUps().constFirst().id, "start-now");
        QTRY_COMPARE(visibleBreakWindows(), 2);
        QCOMPARE(AppState::breakState().timeString(), "05:00");
    }

    void aWorkPeriodShorterThanTheLeadGetsNoHeadsUp()
    {
        prefs().setHeadsUp(true);
        prefs().setWorkTimeString("0.5"); // 30 seconds, the lead is 60
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QCOMPARE(visibleBreakWindows(), 2);
        // The next, longer period gets one: the first heads-up the server ever sees is its own.
        prefs().setWorkTimeString("2");
        prompt().skip();
        tickUntilSecondsLeft(60);
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(server->calls().count("Notify"), 1);
        QCOMPARE(headsUps().constFirst().summary, "Break in 1 minute");
    }

    void headsUpLeadFollowsTheSetting()
    {
        prefs().setHeadsUp(true);
        prefs().setHeadsUpSecondsString("120");
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(120);
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(headsUps().constFirst().summary, "Break in 2 minutes");
    }

    void withoutANotificationServerTheHeadsUpIsLoggedOnceAndTheCycleGoesOn()
    {
        server->stop();
        // A fresh heads-up: what an earlier one logged does not count here.
        delete headsUpNotice;
        headsUpNotice = new HeadsUpNotice(AppState::events(), this);
        prefs().setHeadsUp(true);
        prefs().setWorkTimeString("2");
        const QString warning = "no heads-up before breaks: the desktop shows no notifications";
        const int before = TestSupport::logText().count(warning);
        for (int round = 0; round < 2; ++round) {
            TicktackController::work(prefs().workTime());
            tickUntilTimesUp();
            QCOMPARE(visibleBreakWindows(), 2);
            prompt().skip();
        }
        // A server again: its first heads-up comes after the bus's answers to both rounds.
        QVERIFY(server->start());
        while (AppState::workState().secondsLeft() > 60)
            ticks->tick();
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(TestSupport::logText().count(warning), before + 1);
    }

    // Postponing.

    void postponeButtonClosesTheBreakAndStartsAPostponePeriod()
    {
        prefs().setAllowPostpone(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QQuickItem* button = breakChild("postponeButton");
        QVERIFY(button && button->isVisible());
        QCOMPARE(button->property("text").toString(), "Postpone");
        QQuickWindow* primary = primaryBreakWindow();
        QVERIFY(QTest::qWaitForWindowExposed(primary));
        const QPoint centre =
            button->mapToScene(QPointF(button->width() / 2, button->height() / 2)).toPoint();
        QTest::mouseClick(primary, Qt::LeftButton, {}, centre);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "05:00");
        QVERIFY(ticks->running());
    }

    void postponeLengthFollowsTheSettingWithFractions()
    {
        prefs().setAllowPostpone(true);
        prefs().setPostponeMinutesString("2.5");
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QCOMPARE(CycleControl::postpone(0), QString());
        QCOMPARE(AppState::workState().timeString(), "02:30");
    }

    void aPostponedLongBreakComesBackLongAndTheRotationMovesOnce()
    {
        prefs().setAllowPostpone(true);
        prefs().setShortBreakTimesString("2");
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp(); // first break: short
        QCOMPARE(prompt().kind(), PromptState::Kind::Short);
        prompt().skip();
        tickUntilTimesUp(); // second: long
        QCOMPARE(prompt().kind(), PromptState::Kind::Long);
        QCOMPARE(AppState::breakState().timeString(), "15:00");
        QCOMPARE(CycleControl::postpone(0), QString());
        tickUntilTimesUp();
        QCOMPARE(prompt().kind(), PromptState::Kind::Long);
        QCOMPARE(AppState::breakState().timeString(), "15:00");
        prompt().skip();
        // The rotation went on from the long break once: short, then long again.
        tickUntilTimesUp();
        QCOMPARE(prompt().kind(), PromptState::Kind::Short);
        prompt().skip();
        tickUntilTimesUp();
        QCOMPARE(prompt().kind(), PromptState::Kind::Long);
    }

    void aBreakPostponedBeforeItShowedKeepsItsKind()
    {
        prefs().setAllowPostpone(true);
        prefs().setShortBreakTimesString("1"); // every break is long
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(10);
        QCOMPARE(CycleControl::postpone(1), QString());
        QCOMPARE(AppState::workState().timeString(), "01:00");
        tickUntilTimesUp();
        QCOMPARE(prompt().kind(), PromptState::Kind::Long);
    }

    void afterTheLimitEveryPostponeControlIsAbsentOrRefuses()
    {
        prefs().setAllowPostpone(true);
        prefs().setPostponeLimitString("2");
        TicktackController::work(prefs().workTime());
        for (int i = 0; i < 2; ++i) {
            tickUntilTimesUp();
            QVERIFY(breakChild("postponeButton")->isVisible());
            QVERIFY(postponeEntry()->isEnabled());
            QCOMPARE(CycleControl::postpone(0), QString());
        }
        tickUntilTimesUp();
        QVERIFY(!breakChild("postponeButton")->isVisible());
        QVERIFY(postponeEntry());
        QVERIFY(!postponeEntry()->isEnabled());
        QCOMPARE(CycleControl::postpone(0),
                 "This break was postponed 2 times in a row already: take it or skip it.");
        QCOMPARE(visibleBreakWindows(), 2);

        // A break taken (here skipped) lets postponing start afresh; the entry comes back once a
        // postpone would move the coming break.
        prompt().skip();
        QCOMPARE(gate().postponesInARow(), 0);
        tickUntilTimesUp();
        QVERIFY(breakChild("postponeButton")->isVisible());
        QVERIFY(postponeEntry()->isEnabled());
    }

    void postponeNeverBringsTheBreakCloserFromAnyEntryPoint()
    {
        prefs().setAllowPostpone(true);
        TicktackController::work(24 * 60);
        QCOMPARE(CycleControl::postpone(0), "The break is already more than 5 minutes away.");
        QCOMPARE(AppState::workState().timeString(), "24:00");
        QCOMPARE(gate().postponesInARow(), 0);
        // The menu does not offer what would do nothing.
        QVERIFY(postponeEntry());
        QVERIFY(!postponeEntry()->isEnabled());
        const QDBusMessage reply = callService("Postpone", {QVariant::fromValue(0u)});
        QCOMPARE(reply.errorName(), ControlService::cannotPostponeError);
        QCOMPARE(AppState::workState().timeString(), "24:00");
        // Later than the break would come: it moves, and counts.
        QCOMPARE(CycleControl::postpone(30), QString());
        QCOMPARE(AppState::workState().timeString(), "30:00");
        QCOMPARE(gate().postponesInARow(), 1);
        // Once the break is nearer than the postpone, the entry is offered again.
        tickUntilSecondsLeft(5 * 60 - 1);
        QVERIFY(postponeEntry()->isEnabled());
    }

    void aHeadsUpFurtherAwayThanThePostponeOffersNoPostpone()
    {
        prefs().setHeadsUp(true);
        prefs().setHeadsUpSecondsString("600");
        prefs().setAllowPostpone(true);
        prefs().setWorkTimeString("20");
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(600);
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(headsUps().constFirst().summary, "Break in 10 minutes");
        QCOMPARE(headsUps().constFirst().actions, QStringList({"start-now", "Start now"}));
        QVERIFY(!CycleControl::postpone(0).isEmpty());
        QCOMPARE(AppState::workState().timeString(), "10:00");
    }

    void aFreshWorkPeriodStartsThePostponesInARowAfresh()
    {
        prefs().setAllowPostpone(true);
        prefs().setPostponeLimitString("1");
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QCOMPARE(CycleControl::postpone(0), QString());
        QCOMPARE(gate().postponesInARow(), 1);
        // Lunch: a pause, then back. The first break after it may be postponed again.
        CycleControl::pause();
        CycleControl::resume();
        QCOMPARE(gate().postponesInARow(), 0);
        tickUntilTimesUp();
        QVERIFY(breakChild("postponeButton")->isVisible());
        QCOMPARE(CycleControl::postpone(0), QString());
        // So after the screen was locked.
        SystemEventActions::didLockScreenShow();
        SystemEventActions::didLockScreenDismiss();
        QCOMPARE(gate().postponesInARow(), 0);
    }

    void aWithdrawnHeadsUpsStartNowDoesNothingWhenTheServerNeverSaidItClosed()
    {
        prefs().setHeadsUp(true);
        server->setAnnouncesClosing(false);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(30);
        QTRY_COMPARE(headsUps().size(), 1);
        const quint32 id = headsUps().constFirst().id;
        // The break came and went; a new period runs.
        tickUntilTimesUp();
        QTRY_COMPARE(server->closedIds(), QList<quint32>{id});
        prompt().skip();
        QCOMPARE(visibleBreakWindows(), 0);
        server->invokeAction(id, "start-now");
        // A later action that the program does follow proves the first one was seen.
        CycleControl::pause();
        QTRY_COMPARE(AppState::manualPause(), true);
        QCOMPARE(visibleBreakWindows(), 0);
        CycleControl::resume();
    }

    void aHeadsUpWhoseMomentPassedWhileTheServerWasSlowIsNeverSent()
    {
        prefs().setHeadsUp(true);
        server->holdCapabilities();
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(30);
        QTRY_COMPARE(server->capabilitiesWaiting(), 1);
        tickUntilTimesUp();
        QCOMPARE(visibleBreakWindows(), 2);
        server->answerCapabilities();
        // A notification sent now would arrive after the break began: a later heads-up (of the
        // next period) must be the first the server sees.
        prompt().skip();
        tickUntilSecondsLeft(30);
        QTRY_COMPARE(server->calls().count("Notify"), 1);
        QCOMPARE(headsUps().size(), 1);
        QCOMPARE(headsUps().constFirst().summary, "Break in 1 minute");
    }

    void aForcedLongBreakHasNoPostponeAndRefusesIt()
    {
        prefs().setAllowPostpone(true);
        prefs().setForceLongBreak(true);
        prefs().setShortBreakTimesString("1");
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(!breakChild("skipButton")->isVisible());
        QVERIFY(!breakChild("postponeButton")->isVisible());
        QCOMPARE(CycleControl::postpone(0), "This long break is forced: it cannot be postponed.");
        QCOMPARE(visibleBreakWindows(), 2);
    }

    void postponeOffHidesTheMenuEntryAndRefuses()
    {
        prefs().setAllowPostpone(false);
        QVERIFY(!postponeEntry());
        QCOMPARE(CycleControl::postpone(0),
                 "Postponing breaks is off: turn it on in the settings, under Timing.");
        prefs().setAllowPostpone(true);
        QVERIFY(postponeEntry());
        QCOMPARE(postponeEntry()->title(), "Postpone Break");
        // Right after the pause entry.
        const auto& entries = StatusBarController::menu().items();
        QCOMPARE(entries.indexOf(postponeEntry()),
                 entries.indexOf(StatusBarController::menu().itemWithTag(9001)) + 1);
        prefs().setAllowPostpone(false);
        QVERIFY(!postponeEntry());
    }

    void postponeFromTheMenuEntryMovesTheBreak()
    {
        prefs().setAllowPostpone(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        postponeEntry()->trigger();
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "05:00");
    }

    void postponeWhilePausedSaysNoBreakIsComing()
    {
        prefs().setAllowPostpone(true);
        CycleControl::pause();
        QCOMPARE(CycleControl::postpone(0), "No break is coming: the countdown is paused or stopped.");
        CycleControl::resume();
    }

    void keyPressedAsTheBreakAppearsPressesNeitherButtonAndTabGoesFromSkipToPostpone()
    {
        prefs().setAllowPostpone(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QQuickWindow* primary = primaryBreakWindow();
        QQuickItem* view = breakChild("breakView");
        // "As the break appears" lasts as long as this test needs, however slow the machine.
        view->setProperty("keysArmAfter", 3600 * 1000);
        QVERIFY(QTest::qWaitForWindowExposed(primary));
        QTRY_VERIFY(breakChild("skipButton")->hasActiveFocus());
        QMetaObject::invokeMethod(view, "takeFocus"); // the long wait from now, had it begun before
        QVERIFY(!view->property("keysArmed").toBool());
        QTest::keyClick(primary, Qt::Key_Space);
        QTest::keyClick(primary, Qt::Key_Return);
        QCOMPARE(visibleBreakWindows(), 2);
        view->setProperty("keysArmAfter", 500);
        QMetaObject::invokeMethod(view, "takeFocus");
        QTest::keyClick(primary, Qt::Key_Tab);
        QVERIFY(breakChild("postponeButton")->hasActiveFocus());
        QTRY_VERIFY(view->property("keysArmed").toBool());
        QTest::keyClick(primary, Qt::Key_Return);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "05:00");
    }

    void postponeOverTheBusWithMinutesAndItsRefusal()
    {
        TicktackController::work(prefs().workTime());
        QDBusMessage reply = callService("Postpone", {QVariant::fromValue(0u)});
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(reply.errorName(), ControlService::cannotPostponeError);
        QCOMPARE(reply.errorMessage(), "Postponing breaks is off: turn it on in the settings, under Timing.");

        prefs().setAllowPostpone(true);
        tickUntilTimesUp();
        reply = callService("Postpone", {QVariant::fromValue(3u)});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "03:00");

        reply = callService("Postpone", {QVariant::fromValue(100000u)});
        QCOMPARE(reply.errorName(), ControlService::cannotPostponeError);
        QCOMPARE(AppState::workState().timeString(), "03:00");
    }

    void postponeFromTheCommandLineWithAndWithoutMinutes()
    {
        TicktackController::work(60);
        TestSupport::ChildResult result = runCommandLine({"--postpone"});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.standardError.trimmed(),
                 "Postponing breaks is off: turn it on in the settings, under Timing.");

        prefs().setAllowPostpone(true);
        prefs().setPostponeLimitString("5");
        result = runCommandLine({"--postpone"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(AppState::workState().timeString(), "05:00");
        result = runCommandLine({"--postpone", "7"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(AppState::workState().timeString(), "07:00");
        result = runCommandLine({"--postpone=9"});
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(AppState::workState().timeString(), "09:00");
        // Five minutes from now is sooner than the break comes anyway.
        result = runCommandLine({"--postpone"});
        QCOMPARE(result.exitCode, 1);
        QCOMPARE(result.standardError.trimmed(), "The break is already more than 5 minutes away.");
        QCOMPARE(AppState::workState().timeString(), "09:00");
        QCOMPARE(gate().postponesInARow(), 3);

        result = runCommandLine({"--postpone", "soon"});
        QCOMPARE(result.exitCode, 2);
        QVERIFY2(
            result.standardError.contains("MINUTES of --postpone must be a whole number from 1 to 1440."),
            qPrintable(result.standardError));
        QCOMPARE(AppState::workState().timeString(), "09:00");
        result = runCommandLine({"--postpone", "3", "4"});
        QCOMPARE(result.exitCode, 2);
        QVERIFY(result.standardError.contains("Unexpected argument '4'."));
    }

    // Holding.

    void aHeldBreakWaitsAndThePanelCountsTheWait()
    {
        prefs().setHoldBreaks(true);
        QVERIFY(TestHoldSource::current);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(item().title(), "+00:00");
        ticks->tick(3);
        QCOMPARE(item().title(), "+00:03");
        // An hour after the break was due (the default limit) it comes all the same.
        QCOMPARE(item().toolTip(), "Break waiting +00:03: A video call is on\nIt comes at " +
                                       TicktackController::clockTimeIn(gate().holdSecondsLeft()) +
                                       " at the latest.");
        QCOMPARE(CycleControl::statusLine(CycleControl::status()), "held +00:03");
        QTRY_COMPARE(busStatus(), "held +00:03");
        ticks->tick(200);
        QCOMPARE(item().title(), "+03:23");
        QCOMPARE(visibleBreakWindows(), 0);
    }

    void whenTheHoldClearsTheBreakComesTenSecondsLater()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        ticks->tick(5);
        TestHoldSource::current->set(false);
        QVERIFY(!gate().held());
        QCOMPARE(item().title(), "00:10");
        ticks->tick(9);
        QCOMPARE(visibleBreakWindows(), 0);
        ticks->tick();
        QCOMPARE(visibleBreakWindows(), 2);
        QCOMPARE(prompt().kind(), PromptState::Kind::Short);
    }

    void afterAHoldTheHeadsUpIsShortenedToTheTenSeconds()
    {
        prefs().setHoldBreaks(true);
        prefs().setHeadsUp(true);
        TicktackController::work(prefs().workTime());
        tickUntilSecondsLeft(60);
        QTRY_COMPARE(headsUps().size(), 1);
        const quint32 first = headsUps().constFirst().id;
        TestHoldSource::current->set(true);
        tickUntilTimesUp();
        QVERIFY(gate().held());
        QTRY_COMPARE(server->closedIds(), QList<quint32>{first}); // the break did not come
        TestHoldSource::current->set(false);
        QTRY_COMPARE(headsUps().size(), 2);
        QCOMPARE(headsUps().at(1).summary, "Break in 10 seconds");
    }

    void whileSomethingHoldsNoHeadsUpIsShownOverIt()
    {
        prefs().setHoldBreaks(true);
        prefs().setHeadsUp(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        TestHoldSource::current->set(false);
        // The heads-up of the release is the first one the server sees.
        QTRY_COMPARE(headsUps().size(), 1);
        QCOMPARE(headsUps().constFirst().summary, "Break in 10 seconds");
    }

    void aHeldBreakComesAtTheHoldLimitWhileTheHolderGoesOn()
    {
        prefs().setHoldBreaks(true);
        prefs().setHoldLimitMinutesString("2");
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        ticks->tick(119);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(item().title(), "+01:59");
        ticks->tick();
        QVERIFY(!gate().held());
        QCOMPARE(visibleBreakWindows(), 2);
        QVERIFY(TestHoldSource::current->holding());
        QVERIFY(TestSupport::logText().contains("the break waited 120.0 seconds, its limit: it comes now"));
    }

    void aHoldLimitOfZeroWaitsAsLongAsSomethingHolds()
    {
        prefs().setHoldBreaks(true);
        prefs().setHoldLimitMinutesString("0");
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        ticks->tick(5 * 3600);
        QVERIFY(gate().held());
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(item().toolTip(), "Break waiting +0500:00: A video call is on");
    }

    void aHoldIsToldInANotificationThatSaysWhenTheBreakComesAtTheLatest()
    {
        prefs().setHoldBreaks(true);
        prefs().setHoldLimitMinutesString("30");
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QTRY_COMPARE(heldNotices().size(), 1);
        QCOMPARE(heldNotices().constFirst().body, "The break waits while A video call is on. It comes at " +
                                                      TicktackController::clockTimeIn(30 * 60) +
                                                      " at the latest.");
        TestHoldSource::current->set(false);
        QTRY_COMPARE(server->closedIds(), QList<quint32>{heldNotices().constFirst().id});
    }

    void aFlappingHolderIsToldOnceAMinuteAndKeepsItsWait()
    {
        prefs().setHoldBreaks(true);
        prefs().setHoldLimitMinutesString("1");
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QTRY_COMPARE(heldNotices().size(), 1);
        // Full screen on for 3 seconds, off long enough for the break to be due again, and so on.
        for (int round = 0; round < 4; ++round) {
            QVERIFY(gate().held());
            ticks->tick(3);
            TestHoldSource::current->set(false);
            ticks->tick(9);
            TestHoldSource::current->set(true);
            ticks->tick();
        }
        // The waits add up: 4 × 3 seconds held, then the minute's limit ends them.
        QVERIFY(gate().held());
        ticks->tick(60 - 4 * 3);
        QCOMPARE(visibleBreakWindows(), 2);
        // The next break's hold is told again; it is only the second notice the server sees, so
        // none of the flapping holds was told in between.
        prompt().skip();
        tickUntilTimesUp();
        QTRY_COMPARE(heldNotices().size(), 2);
        QCOMPARE(server->calls().count("Notify"), 2);
    }

    void aHoldThatReturnsBeforeTheTenSecondsHoldsAgain()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        TestHoldSource::current->set(false);
        ticks->tick(4);
        TestHoldSource::current->set(true);
        ticks->tick(6);
        QVERIFY(gate().held());
        QCOMPARE(visibleBreakWindows(), 0);
    }

    void pauseEndsAHold()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        CycleControl::pause();
        QVERIFY(!gate().held());
        QVERIFY(!ticks->running()); // nothing ticks while paused
        QCOMPARE(CycleControl::statusLine(CycleControl::status()), "paused");
        CycleControl::resume();
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QVERIFY(!gate().held());
    }

    void lockEndsAHold()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        SystemEventActions::didLockScreenShow();
        QVERIFY(!gate().held());
        QCOMPARE(item().toolTip(), "Stopped while the screen is locked");
        SystemEventActions::didLockScreenDismiss();
        QCOMPARE(AppState::workState().timeString(), "25:00");
    }

    void withHoldingOffNothingHolds()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        prefs().setHoldBreaks(false);
        QVERIFY(!TestHoldSource::current); // switched off, the sources go
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(!gate().held());
        QCOMPARE(visibleBreakWindows(), 2);
    }

    void switchingHoldingOffDuringAHoldLetsTheBreakCome()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        prefs().setHoldBreaks(false);
        ticks->tick(10);
        QCOMPARE(visibleBreakWindows(), 2);
    }

    void aConditionDuringABreakDoesNotEndIt()
    {
        prefs().setHoldBreaks(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QCOMPARE(visibleBreakWindows(), 2);
        TestHoldSource::current->set(true);
        ticks->tick(3);
        QCOMPARE(visibleBreakWindows(), 2);
        QCOMPARE(AppState::breakState().timeString(), "04:57");
    }

    void aHeldBreakCanBePostponedOrStartedNow()
    {
        prefs().setHoldBreaks(true);
        prefs().setAllowPostpone(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        QVERIFY(gate().held());
        QCOMPARE(CycleControl::postpone(0), QString());
        QVERIFY(!gate().held());
        QCOMPARE(item().title(), "05:00");
        tickUntilTimesUp();
        QVERIFY(gate().held());
        CycleControl::startBreakNow();
        QCOMPARE(visibleBreakWindows(), 2);
    }

    // The panel shows the state.

    void pausedTheItemSaysPausedInsteadOfAFrozenCountdown()
    {
        QCOMPARE(item().pausedText(), QString());
        CycleControl::pause();
        QCOMPARE(item().pausedText(), "Paused");
        QCOMPARE(item().toolTip(), "Paused");
        CycleControl::resume();
        QCOMPARE(item().pausedText(), QString());
        QCOMPARE(item().toolTip(), "25:00");
    }

    void stoppedByIdlenessTheTooltipSaysSo()
    {
        AppState::setStopCause(AppState::StopCause::Idle);
        AppState::setWorking(false);
        QCOMPARE(item().toolTip(), "Stopped: no activity");
        QCOMPARE(item().pausedText(), "Stopped");
        QCOMPARE(CycleControl::statusLine(CycleControl::status()), "stopped");
        AppState::setWorking(true);
        QCOMPARE(item().toolTip(), "25:00");
        QCOMPARE(item().pausedText(), QString());
    }
};

static void beforeApplication()
{
    if (qEnvironmentVariableIsEmpty("LULLTIDE_TEST_KEEP_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TESTS_SOURCE_DIR "/support/screens.json");
    qputenv("QT_QUICK_BACKEND", "software");
    TestSupport::startPrivateSessionBus();
}

int main(int argc, char* argv[])
{
    return TestSupport::runTests<MomentTest>(argc, argv, nullptr, beforeApplication);
}
#include "tst_moment.moc"
