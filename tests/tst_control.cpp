// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/StandInPowerManagement.h"
#include "support/TestMain.h"

#include "control/ControlService.h"
#include "cycle/AppState.h"
#include "cycle/CycleControl.h"
#include "cycle/TicktackController.h"
#include "history/HistoryStore.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <algorithm>
#include <csignal>

// Control from scripts: the real program on this test's own session bus, driven by the command
// line (`lulltide --pause` and the rest) and read through its bus object, as a script or a
// keyboard shortcut would.
class ControlTest : public QObject {
    Q_OBJECT

    const QString service = "org.lulltide.Lulltide";
    const QString path = "/org/lulltide/Lulltide";

    using Instance = TestSupport::ProgramRun;

    struct Ran {
        int exitCode = -1;
        QString out;
        QString err;
    };

    static QProcessEnvironment environment(const QString& home)
    {
        QProcessEnvironment environment = TestSupport::environmentWithHome(home);
        environment.insert("LC_ALL", "C.UTF-8");
        environment.remove("LANGUAGE");
        return environment;
    }

    // Runs `lulltide arguments` to its end, as a script does.
    static Ran lulltide(const QStringList& arguments, const QProcessEnvironment& env = {})
    {
        static QTemporaryDir clientHome;
        QProcess process;
        process.setProcessEnvironment(env.isEmpty() ? environment(clientHome.path()) : env);
        QSignalSpy finished(&process, &QProcess::finished);
        process.start(LULLTIDE_BINARY, arguments);
        // The event loop runs meanwhile, so a name this test holds can answer the client.
        if (process.state() != QProcess::NotRunning)
            finished.wait(15000);
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    static QString status() { return lulltide({"--status"}).out.trimmed(); }

    // The environment of a shell over ssh or of a cron job: a session bus, no display.
    static QProcessEnvironment withoutDisplay(QProcessEnvironment environment)
    {
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM", "XDG_SESSION_TYPE"})
            environment.remove(name);
        return environment;
    }

    static QProcessEnvironment clientWithoutDisplay()
    {
        static QTemporaryDir clientHome;
        return withoutDisplay(environment(clientHome.path()));
    }

    // The settings window of the program, once it shows.
    static bool showsTheSettingsWindow(const Instance& instance)
    {
        const QStringList windows = visibleWindows(instance);
        return windows.size() == 1 && windowName(windows.first()) == "Settings";
    }

    static bool serviceOwned()
    {
        return QDBusConnection::sessionBus().interface()->isServiceRegistered("org.lulltide.Lulltide");
    }

    // Each event of the instance's history, as "kind detail".
    static QStringList historyKinds(const Instance& instance)
    {
        const HistoryStore history(instance.home.path() + "/.local/share/lulltide/history.sqlite");
        QStringList kinds;
        for (const HistoryStore::Event& event : history.read(QDate(2000, 1, 1), QDate(2100, 1, 1)))
            kinds << (event.kind + u' ' + event.detail).trimmed();
        return kinds;
    }

    static void writeSettings(const Instance& instance, const QByteArray& settings)
    {
        QDir().mkpath(instance.home.path() + "/.config/lulltide");
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n" + settings);
    }

    void start(Instance& instance, const QByteArray& settings = {})
    {
        writeSettings(instance, settings);
        instance.process.setProcessEnvironment(environment(instance.home.path()));
        instance.process.start(LULLTIDE_BINARY, {});
        QVERIFY(instance.process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(serviceOwned(), 10000);
    }

    // The visible windows of the program, as the X server lists them.
    static QStringList visibleWindows(const Instance& instance)
    {
        return TestSupport::visibleWindowsOf(instance.process.processId());
    }

    static QString windowName(const QString& window)
    {
        QProcess name;
        name.start("xdotool", {"getwindowname", window});
        name.waitForFinished(10000);
        return QString::fromUtf8(name.readAllStandardOutput()).trimmed();
    }

    // xprop's line for the window's opacity: "not found" for a window drawn whole.
    static QString windowOpacity(const QString& window)
    {
        QProcess xprop;
        xprop.start("xprop", {"-id", window, "_NET_WM_WINDOW_OPACITY"});
        xprop.waitForFinished(10000);
        return QString::fromUtf8(xprop.readAllStandardOutput()).trimmed();
    }

    QVariant property(const QString& name)
    {
        QDBusMessage call =
            QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
        call << "org.lulltide.Lulltide" << name;
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
        return reply.arguments().isEmpty() ? QVariant()
                                           : reply.arguments().first().value<QDBusVariant>().variant();
    }

    // What PropertiesChanged announced, with when it came.
    struct Announcement {
        qint64 at;
        QVariantMap changed;
    };
    QList<Announcement> announcements;
    QElapsedTimer clock;

    // The processes Lulltide started: its break screen's, its settings window's.
    static QList<qint64> viewProcesses(const Instance& instance)
    {
        return TestSupport::processTree(instance.process.processId()).mid(1);
    }

    static QByteArray mappedFiles(qint64 pid)
    {
        QFile maps(QStringLiteral("/proc/%1/maps").arg(pid));
        return maps.open(QIODevice::ReadOnly) ? maps.readAll() : QByteArray();
    }

    // Whether the process has mapped Qt Quick, QML or one of their modules.
    static bool loadsQtQuick(qint64 pid)
    {
        const QByteArray maps = mappedFiles(pid);
        return maps.contains("libQt6Quick") || maps.contains("libQt6Qml") || maps.contains("/qml/");
    }

    void startWithTheSettingsWindowForAScreenReader(Instance& instance, const QByteArray& settings)
    {
        writeSettings(instance, settings);
        QProcessEnvironment env = environment(instance.home.path());
        env.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        instance.process.setProcessEnvironment(env);
        instance.process.start(LULLTIDE_BINARY, {"--settings"});
        QVERIFY(instance.process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 20000);
    }

private slots:
    void onPropertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList&)
    {
        if (interface == "org.lulltide.Lulltide")
            announcements.append({clock.elapsed(), changed});
    }

private slots:
    void initTestCase()
    {
        clock.start();
        QVERIFY(QDBusConnection::sessionBus().connect(
            QString(), path, "org.freedesktop.DBus.Properties", "PropertiesChanged", this,
            SLOT(onPropertiesChanged(QString, QVariantMap, QStringList))));
    }

    void withNoInstanceEveryControlCommandSaysNotRunningAndExits1_data()
    {
        QTest::addColumn<QString>("option");
        for (const char* option : {"--pause", "--resume", "--toggle-pause", "--skip", "--status", "--quit"})
            QTest::newRow(option) << QString(option);
    }

    void withNoInstanceEveryControlCommandSaysNotRunningAndExits1()
    {
        QFETCH(QString, option);
        QTemporaryDir home;
        const Ran ran = lulltide({option}, withoutDisplay(environment(home.path())));
        QCOMPARE(ran.exitCode, 1);
        QCOMPARE(ran.err, "Lulltide is not running.\n");
        QCOMPARE(ran.out, "");
        // Nothing was started: no instance on the bus, no log, no settings.
        QVERIFY(!serviceOwned());
        QVERIFY(!QFile::exists(home.path() + "/.cache/Logs"));
        QVERIFY(!QFile::exists(home.path() + "/.config/lulltide"));
    }

    void withNoSessionBusControlCommandsSayWhyAndExit1()
    {
        QTemporaryDir home;
        QProcessEnvironment env = environment(home.path());
        env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + home.path() + "/no-bus");
        const Ran ran = lulltide({"--status"}, env);
        QCOMPARE(ran.exitCode, 1);
        QCOMPARE(ran.err, "Lulltide is not running: there is no D-Bus session bus to reach it.\n");
    }

    void helpListsEveryControlOptionAndTheExitStatusWithoutADisplay()
    {
        const Ran ran = lulltide({"--help"}, clientWithoutDisplay());
        QCOMPARE(ran.exitCode, 0);
        QCOMPARE(ran.err, "");
        for (const char* option : {"--pause", "--resume", "--toggle-pause", "--skip", "--settings",
                                   "--status", "--quit", "--version", "--help"})
            QVERIFY2(ran.out.contains(option), option);
        QVERIFY2(ran.out.contains("Exit status:\n"), qPrintable(ran.out));
        QVERIFY2(QRegularExpression("\n +2 +").match(ran.out).hasMatch(), qPrintable(ran.out));
    }

    void versionPrintsNameAndVersionWithoutADisplay()
    {
        const Ran ran = lulltide({"--version"}, clientWithoutDisplay());
        QCOMPARE(ran.exitCode, 0);
        QCOMPARE(ran.out, "Lulltide 1.0.0\n");
    }

    void twoCommandsAtOnceAreAUsageError()
    {
        const Ran ran = lulltide({"--pause", "--quit"}, clientWithoutDisplay());
        QCOMPARE(ran.exitCode, 2);
        QCOMPARE(ran.err, "Give one option at a time: --pause and --quit were both given.\n"
                          "Try 'lulltide --help'.\n");
    }

    void usageErrorsSayWhatIsWrongInOneLineAndExit2WithoutADisplay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("firstLine");
        QTest::newRow("--bogus") << QStringList{"--bogus"} << "Unknown option 'bogus'.";
        QTest::newRow("--Pause") << QStringList{"--Pause"} << "Unknown option 'Pause'.";
        QTest::newRow("-x") << QStringList{"-x"} << "Unknown option 'x'.";
        QTest::newRow("foo") << QStringList{"foo"} << "Unexpected argument 'foo'.";
        QTest::newRow("--status=1") << QStringList{"--status=1"} << "Unexpected value after '--status'.";
        QTest::newRow("--pause extra") << QStringList{"--pause", "extra"} << "Unexpected argument 'extra'.";
    }

    void usageErrorsSayWhatIsWrongInOneLineAndExit2WithoutADisplay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, firstLine);
        QTemporaryDir home;
        const Ran ran = lulltide(arguments, withoutDisplay(environment(home.path())));
        QCOMPARE(ran.err, firstLine + "\nTry 'lulltide --help'.\n");
        QCOMPARE(ran.exitCode, 2);
        QCOMPARE(ran.out, "");
        // Nothing was started.
        QVERIFY(!serviceOwned());
        QVERIFY(!QFile::exists(home.path() + "/.cache/Logs"));
    }

    void usageErrorsNeverReachTheRunningInstance()
    {
        Instance instance;
        start(instance);
        const Ran ran = lulltide({"--pause", "extra"}, clientWithoutDisplay());
        QCOMPARE(ran.exitCode, 2);
        QVERIFY(status().startsWith("working "));
    }

    void clientCommandsWithoutADisplayReachTheRunningInstance()
    {
        Instance instance;
        start(instance);
        const QProcessEnvironment noDisplay = clientWithoutDisplay();
        QCOMPARE(lulltide({"--status"}, noDisplay).out.left(8), "working ");
        QCOMPARE(lulltide({"--pause"}, noDisplay).exitCode, 0);
        QCOMPARE(lulltide({"--status"}, noDisplay).out, "paused\n");
        QCOMPARE(lulltide({"--toggle-pause"}, noDisplay).exitCode, 0);
        QCOMPARE(property("ManualPause").toBool(), false);
        QCOMPARE(lulltide({"--toggle-pause"}, noDisplay).exitCode, 0);
        QCOMPARE(property("ManualPause").toBool(), true);
        QCOMPARE(lulltide({"--resume"}, noDisplay).exitCode, 0);
        QCOMPARE(property("ManualPause").toBool(), false);
        QCOMPARE(lulltide({"--skip"}, noDisplay).exitCode, 0); // no break up: nothing to do
        QCOMPARE(lulltide({"--settings"}, noDisplay).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 10000);
        QCOMPARE(lulltide({"--quit"}, noDisplay).exitCode, 0);
        QVERIFY(instance.process.waitForFinished(5000));
        QCOMPARE(instance.process.exitCode(), 0);
    }

    void statusPrintsWorkingAndTheCountdown()
    {
        Instance instance;
        start(instance);
        const Ran ran = lulltide({"--status"});
        QCOMPARE(ran.exitCode, 0);
        QVERIFY2(QRegularExpression("^working (25:00|24:5\\d)\n$").match(ran.out).hasMatch(),
                 qPrintable(ran.out));
    }

    void secondBareLaunchOpensTheRunningInstancesSettingsWindow()
    {
        Instance instance;
        start(instance);
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);
        QVERIFY(visibleWindows(instance).isEmpty());
        QElapsedTimer took;
        took.start();
        const Ran ran = lulltide({}, environment(instance.home.path()));
        QCOMPARE(ran.exitCode, 0);
        QCOMPARE(ran.out, "Lulltide is already running.\n");
        QVERIFY2(took.elapsed() < 5000, qPrintable(QString::number(took.elapsed())));
        // The first one shows its settings window and runs on, alone: one start in the shared
        // log, no second work period.
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 10000);
        QCOMPARE(instance.process.state(), QProcess::Running);
        QCOMPARE(instance.log().count("hello Lulltide"), 1);
        QCOMPARE(instance.log().count("ticktack timer start 1500.0"), 1);
    }

    void secondBareLaunchWithoutADisplaySaysAlreadyRunning()
    {
        Instance instance;
        start(instance);
        const Ran ran = lulltide({}, withoutDisplay(environment(instance.home.path())));
        QCOMPARE(ran.err, "");
        QCOMPARE(ran.exitCode, 0);
        QCOMPARE(ran.out, "Lulltide is already running.\n");
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 10000);
    }

    void settingsWithNoInstanceStartsLulltideWithItsSettingsWindow()
    {
        Instance instance;
        QDir().mkpath(instance.home.path() + "/.config/lulltide");
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n");
        conf.close();
        instance.process.setProcessEnvironment(environment(instance.home.path()));
        instance.process.start(LULLTIDE_BINARY, {"--settings"});
        QVERIFY(instance.process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(serviceOwned(), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 10000);
        // It is Lulltide itself, counting, not a client that gave up.
        QCOMPARE(instance.process.state(), QProcess::Running);
        QVERIFY(status().startsWith("working "));
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("ticktack timer start 1500.0"), 10000);
    }

    void settingsWithNoInstanceAndNoDisplaySaysWhyAndExits1()
    {
        QTemporaryDir home;
        const Ran ran = lulltide({"--settings"}, withoutDisplay(environment(home.path())));
        QCOMPARE(ran.exitCode, 1);
        QCOMPARE(ran.err, "Lulltide is not running, and there is no display to start it on.\n");
        QVERIFY(!serviceOwned());
    }

    void anotherProgramHoldingTheNameMakesStartAndCommandsFail()
    {
        // A program of another maker that took our name: it has no Lulltide object.
        QDBusConnection other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "impostor");
        QVERIFY(other.registerService(service));
        const QString message = "another program holds the name org.lulltide.Lulltide";
        {
            Instance instance;
            instance.process.setProcessEnvironment(environment(instance.home.path()));
            QSignalSpy finished(&instance.process, &QProcess::finished);
            instance.process.start(LULLTIDE_BINARY, {});
            QVERIFY(finished.wait(15000));
            const QString err = QString::fromUtf8(instance.process.readAllStandardError());
            QVERIFY2(err.contains(message), qPrintable(err));
            QCOMPARE(QString::fromUtf8(instance.process.readAllStandardOutput()), "");
            QCOMPARE(instance.process.exitCode(), 1);
        }
        for (const char* option : {"--status", "--pause", "--settings"}) {
            const Ran ran = lulltide({option}, clientWithoutDisplay());
            QVERIFY2(ran.err.contains(message), qPrintable(option + (": " + ran.err)));
            QCOMPARE(ran.exitCode, 1);
            QCOMPARE(ran.out, "");
        }
        QVERIFY(other.unregisterService(service));
        QDBusConnection::disconnectFromBus("impostor");
        QTRY_VERIFY(!serviceOwned());
    }

    void twoLaunchesAtOnceLeaveExactlyOneInstance()
    {
        Instance first;
        Instance second;
        for (Instance* instance : {&first, &second}) {
            instance->process.setProcessEnvironment(environment(instance->home.path()));
            instance->process.start(LULLTIDE_BINARY, {});
        }
        QTRY_VERIFY_WITH_TIMEOUT(first.process.state() == QProcess::NotRunning ||
                                     second.process.state() == QProcess::NotRunning,
                                 10000);
        QTest::qWait(500);
        Instance& gone = first.process.state() == QProcess::NotRunning ? first : second;
        Instance& running = &gone == &first ? second : first;
        QCOMPARE(running.process.state(), QProcess::Running);
        QCOMPARE(gone.process.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(gone.process.readAllStandardOutput()), "Lulltide is already running.\n");
    }

    void pauseShowsPausedAndResumeStartsAFullWorkPeriod()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--pause"}).exitCode, 0);
        QCOMPARE(status(), "paused");
        QCOMPARE(property("ManualPause").toBool(), true);
        QCOMPARE(property("Working").toBool(), false);
        // A second pause changes nothing.
        QCOMPARE(lulltide({"--pause"}).exitCode, 0);
        QCOMPARE(status(), "paused");
        QCOMPARE(lulltide({"--resume"}).exitCode, 0);
        QVERIFY2(QRegularExpression("^working (25:00|24:59)$").match(status()).hasMatch(),
                 qPrintable(status()));
        QCOMPARE(property("ManualPause").toBool(), false);
        QCOMPARE(instance.log().count("ticktack timer start 1500.0"), 2);
    }

    void resumeWhileWorkingLeavesTheCountdownAlone()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--resume"}).exitCode, 0);
        QTest::qWait(300);
        QCOMPARE(instance.log().count("ticktack timer start 1500.0"), 1);
    }

    void togglePauseSwitchesBetweenPausedAndWorking()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--toggle-pause"}).exitCode, 0);
        QCOMPARE(status(), "paused");
        QCOMPARE(lulltide({"--toggle-pause"}).exitCode, 0);
        QVERIFY(status().startsWith("working "));
    }

    void skipWithNoBreakUpLeavesTheCountdownAlone()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTest::qWait(300);
        QVERIFY(!instance.log().contains("skip break view"));
        QCOMPARE(instance.log().count("ticktack timer start 1500.0"), 1);
    }

    void statusDuringABreakPrintsBreakAndItsCountdown()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 10000);
        QVERIFY2(QRegularExpression("^break 03:(20|1\\d)$").match(status()).hasMatch(), qPrintable(status()));
        QCOMPARE(property("InBreak").toBool(), true);
    }

    void pauseDuringABreakClosesTheBreakWindows()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        QCOMPARE(lulltide({"--pause"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(visibleWindows(instance).isEmpty(), 15000);
        QCOMPARE(status(), "paused");
        QCOMPARE(property("InBreak").toBool(), false);
        // Nothing counts any more: no break countdown runs behind the closed windows.
        const QString log = instance.log();
        const QStringList lines = log.trimmed().split('\n');
        QVERIFY(lines.at(lines.size() - 2).endsWith(" : ticktack timer stoped 1.0"));
        QVERIFY(lines.last().endsWith(" : paused during a break: closing the break windows"));
        QTest::qWait(1500);
        QCOMPARE(instance.log(), log);
    }

    void everyScriptedPauseDuringAForcedBreakClosesItAndResumeStartsWorkWithNoBreakWindow_data()
    {
        QTest::addColumn<QString>("pause");
        QTest::addColumn<QString>("resume");
        QTest::newRow("--pause, --resume") << "--pause"
                                           << "--resume";
        QTest::newRow("--toggle-pause twice") << "--toggle-pause"
                                              << "--toggle-pause";
        QTest::newRow("Pause(), Resume() on the bus") << "Pause"
                                                      << "Resume";
        QTest::newRow("TogglePause() twice on the bus") << "TogglePause"
                                                        << "TogglePause";
    }

    void everyScriptedPauseDuringAForcedBreakClosesItAndResumeStartsWorkWithNoBreakWindow()
    {
        QFETCH(QString, pause);
        QFETCH(QString, resume);
        const auto ask = [&](const QString& request) {
            if (request.startsWith("--")) {
                QCOMPARE(lulltide({request}).exitCode, 0);
                return;
            }
            const QDBusMessage reply = QDBusConnection::sessionBus().call(
                QDBusMessage::createMethodCall(service, path, "org.lulltide.Lulltide", request));
            QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        };
        Instance instance;
        // Every break is long and forced: the break screen has no Skip button to leave it by.
        // Six seconds of work: long enough to look at the screen after the resume.
        start(instance, "work_time=0.1\nshort_break_times=1\nlong_break_time=3\nforce_long_break=true\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);

        ask(pause);
        QTRY_VERIFY_WITH_TIMEOUT(visibleWindows(instance).isEmpty(), 15000);
        QCOMPARE(status(), "paused");
        QCOMPARE(property("InBreak").toBool(), false);

        ask(resume);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("working 00:0"), 5000);
        QCOMPARE(property("InBreak").toBool(), false);
        QVERIFY(visibleWindows(instance).isEmpty());
    }

    void skipDuringABreakEndsItAndStartsWork()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(visibleWindows(instance).isEmpty(), 15000);
        QVERIFY(status().startsWith("working 00:0"));
        QCOMPARE(instance.log().count("skip break view"), 1);
    }

    void skipDuringAForcedLongBreakSaysItCannotBeSkippedAndExits1()
    {
        Instance instance;
        // Every break is long (one in a rotation of one), and long breaks are forced.
        start(instance, "work_time=0.05\nshort_break_times=1\nlong_break_time=3\nforce_long_break=true\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 10000);
        const Ran ran = lulltide({"--skip"}, clientWithoutDisplay());
        QCOMPARE(ran.err, "This break cannot be skipped: long breaks are forced.\n");
        QCOMPARE(ran.exitCode, 1);
        QVERIFY(status().startsWith("break "));
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        QVERIFY(!instance.log().contains("skip break view"));
        // Over the bus the refusal has a name of its own, for scripts in any language.
        QDBusMessage call = QDBusMessage::createMethodCall(service, path, "org.lulltide.Lulltide", "Skip");
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call);
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(reply.errorName(), "org.lulltide.Lulltide.Error.CannotSkip");
    }

    void settingsOpensTheSettingsWindow()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--settings"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(visibleWindows(instance).size() == 1, 10000);
        QCOMPARE(windowName(visibleWindows(instance).first()), "Settings");
        // Asked again, the same window comes to the front.
        QCOMPARE(lulltide({"--settings"}).exitCode, 0);
        QTest::qWait(500);
        QCOMPARE(visibleWindows(instance).size(), 1);
    }

    void quitEndsTheRunningInstance()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--quit"}).exitCode, 0);
        QVERIFY(TestSupport::waitForEnd(instance.process, 30000));
        QCOMPARE(instance.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(instance.process.exitCode(), 0);
        QTRY_VERIFY(!serviceOwned());
        QCOMPARE(lulltide({"--status"}).exitCode, 1);
    }

    void aLogoutClosesTheOpenBreakAndTheRunInTheHistory_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM (logout)") << int(SIGTERM);
        QTest::newRow("SIGHUP (terminal closed)") << int(SIGHUP);
        QTest::newRow("SIGINT (Control+C)") << int(SIGINT);
    }
    void aLogoutClosesTheOpenBreakAndTheRunInTheHistory()
    {
        QFETCH(int, signal);
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=300\n");
        QTRY_VERIFY_WITH_TIMEOUT(lulltide({"--status"}).out.startsWith("break "), 20000);
        QCOMPARE(::kill(pid_t(instance.process.processId()), signal), 0);
        QVERIFY(TestSupport::waitForEnd(instance.process, 30000));
        QCOMPARE(instance.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(instance.process.exitCode(), 0);
        const QStringList kinds = historyKinds(instance);
        QVERIFY2(kinds.size() >= 3, qPrintable(kinds.join(", ")));
        QCOMPARE(kinds.mid(kinds.size() - 2), QStringList({"break_ended quit", "stopped"}));
        QVERIFY(instance.log().contains("Lulltide ends"));
    }

    void losingTheXServerClosesTheOpenBreakAndTheRunInTheHistory()
    {
        // An X server of this test's own, which goes away during a break.
        QProcess server;
        server.setProcessChannelMode(QProcess::SeparateChannels);
        server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x800x24", "-nolisten", "tcp"});
        QVERIFY(server.waitForStarted());
        QByteArray display;
        const auto displayTold = [&] {
            display += server.readAllStandardOutput();
            return display.contains('\n');
        };
        QTRY_VERIFY_WITH_TIMEOUT(displayTold(), 20000);
        const auto serverGone = qScopeGuard([&server] {
            server.kill();
            server.waitForFinished(5000);
        });

        Instance instance;
        writeSettings(instance, "work_time=0.05\nbreak_time=300\n");
        QProcessEnvironment env = environment(instance.home.path());
        env.insert("DISPLAY", ":" + QString::fromLatin1(display.trimmed()));
        instance.process.setProcessEnvironment(env);
        instance.process.start(LULLTIDE_BINARY, {});
        QVERIFY(instance.process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(lulltide({"--status"}).out.startsWith("break "), 20000);

        server.terminate();
        QVERIFY(TestSupport::waitForEnd(instance.process, 30000));
        const QStringList kinds = historyKinds(instance);
        QVERIFY2(kinds.size() >= 3, qPrintable(kinds.join(", ")));
        QCOMPARE(kinds.mid(kinds.size() - 2), QStringList({"break_ended quit", "stopped"}));
        QVERIFY(instance.log().contains("the display connection is gone: Lulltide ends"));
    }

    void theBreakScreenProcessStartsAheadOfTheBreakAndEndsWithIt()
    {
        Instance instance;
        // Fifteen seconds of work: the break screen's process waits until ten are left.
        start(instance, "work_time=0.25\nbreak_time=200\n");
        const QString early = status();
        QVERIFY2(early >= "working 00:11", qPrintable(early));
        QVERIFY(viewProcesses(instance).isEmpty());
        QTRY_VERIFY_WITH_TIMEOUT(!viewProcesses(instance).isEmpty(), 20000);
        QVERIFY(status().startsWith("working 00:"));
        QVERIFY(visibleWindows(instance).isEmpty());

        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(viewProcesses(instance).isEmpty(), 10000);
        QVERIFY(visibleWindows(instance).isEmpty());
        QVERIFY(status().startsWith("working "));
    }

    void aHeldBreakKeepsNoBreakScreenProcessWhileItWaits()
    {
        // A player that keeps the session awake holds the break.
        QDBusConnection bus = QDBusConnection::sessionBus();
        StandInPowerManagement power(bus);
        QVERIFY(power.start());
        const auto gone = qScopeGuard([&bus] {
            bus.unregisterService(QStringLiteral("org.freedesktop.PowerManagement"));
            bus.unregisterObject(QStringLiteral("/org/freedesktop/PowerManagement/Inhibit"));
        });
        power.setInhibit(true);
        Instance instance;
        start(instance, "work_time=0.25\nbreak_time=200\nhold_breaks=true\n");
        QTRY_VERIFY_WITH_TIMEOUT(!viewProcesses(instance).isEmpty(), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("held "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(viewProcesses(instance).isEmpty(), 10000);
        QVERIFY(visibleWindows(instance).isEmpty());

        // The hold ends: the break opens on demand.
        power.setInhibit(false);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(viewProcesses(instance).isEmpty(), 10000);
    }

    void aBreakScreenKilledDuringABreakComesBackAndTheBreakGoesOn()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        const QList<qint64> first = viewProcesses(instance);
        QCOMPARE(first.size(), 1);
        // Killed once the break has faded in whole: it has been seen.
        QTRY_VERIFY_WITH_TIMEOUT(
            std::ranges::all_of(
                visibleWindows(instance),
                [](const QString& window) { return windowOpacity(window).endsWith(" = 4294967295"); }),
            10000);
        QCOMPARE(::kill(pid_t(first.first()), SIGKILL), 0);

        const auto anotherCovers = [&] {
            const QList<qint64> now = viewProcesses(instance);
            return now.size() == 1 && now != first && !visibleWindows(instance).isEmpty();
        };
        QTRY_VERIFY_WITH_TIMEOUT(anotherCovers(), 10000);
        // Back whole at once, not faded in from nothing: the break has been on screen all along.
        // (A window that never faded has no opacity of its own; one whose fade ended has it whole.)
        for (const QString& window : visibleWindows(instance)) {
            const QString opacity = windowOpacity(window);
            QVERIFY2(!opacity.contains(" = "), qPrintable(opacity));
        }
        QVERIFY(status().startsWith("break "));
        QVERIFY(instance.log().contains("the break screen ended during the break: starting it again"));
        // Skip on the new one still ends the break.
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(visibleWindows(instance).isEmpty(), 10000);
    }

    void afterABreakTheCountingProcessHasLoadedNothingOfQtQuick()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 20000);
        QTRY_VERIFY_WITH_TIMEOUT(!visibleWindows(instance).isEmpty(), 30000);
        // The break's views are Qt Quick's: their QML modules are loaded where they are shown.
        const QList<qint64> screen = viewProcesses(instance);
        QCOMPARE(screen.size(), 1);
        QVERIFY(mappedFiles(screen.first()).contains("/qml/QtQuick/"));
        QVERIFY(mappedFiles(screen.first()).contains("libQt6Quick.so"));
        QVERIFY(!loadsQtQuick(instance.process.processId()));
        QCOMPARE(lulltide({"--skip"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("working "), 10000);
        QVERIFY(!mappedFiles(instance.process.processId()).isEmpty());
        QVERIFY(!loadsQtQuick(instance.process.processId()));
    }

    void theViewsProgramRunByHandSaysItIsLulltidesOwn()
    {
        // As from a terminal: nothing open beyond the three standard streams.
        QProcess process;
        process.start("sh", {"-c", "exec \"$0\" --break-screen 3<&-", LULLTIDE_VIEWS_BINARY});
        QVERIFY(TestSupport::waitForEnd(process, 15000));
        QCOMPARE(process.exitCode(), 2);
        const QString err = QString::fromUtf8(process.readAllStandardError());
        QVERIFY2(err.endsWith("--break-screen is for Lulltide's own use\n"), qPrintable(err));
    }

    void aSettingChangedInTheSettingsWindowTakesEffectInTheRunningCycle()
    {
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        Instance instance;
        // A break a minute away, which a postpone would move.
        startWithTheSettingsWindowForAScreenReader(instance, "allow_postpone=false\nwork_time=1\n");
        const Ran refused = lulltide({"--postpone"});
        QCOMPARE(refused.exitCode, 1);
        QVERIFY2(refused.err.startsWith("Postponing breaks is off"), qPrintable(refused.err));

        // As a screen reader's user (or a click) ticks the box in the settings window's process.
        QTRY_VERIFY_WITH_TIMEOUT(TestSupport::atspi({}).contains("check box 'Allow postponing breaks'"),
                                 20000);
        const QString done = TestSupport::atspi({"--do", "check box", "Allow postponing breaks", "Toggle"});
        QVERIFY2(done.startsWith("Toggle True"), qPrintable(done));
        // Asked until the change arrives, and not again once it has (QTRY checks once more at the end).
        Ran postponed;
        const auto postponedNow = [&] {
            if (postponed.exitCode != 0)
                postponed = lulltide({"--postpone"});
            return postponed.exitCode == 0;
        };
        QTRY_VERIFY2_WITH_TIMEOUT(postponedNow(), qPrintable(postponed.err), 10000);
    }

    void theSettingsWindowsProcessEndsWithTheWindow()
    {
        Instance instance;
        start(instance);
        QCOMPARE(lulltide({"--settings"}).exitCode, 0);
        QTRY_VERIFY_WITH_TIMEOUT(showsTheSettingsWindow(instance), 20000);
        // A second request brings the same window forward: still one window, one process.
        QCOMPARE(lulltide({"--settings"}).exitCode, 0);
        QCOMPARE(viewProcesses(instance).size(), 1);
        const QStringList windows = visibleWindows(instance);
        QCOMPARE(windows.size(), 1);
        QVERIFY(TestSupport::askWindowToClose(windows.first()));
        QTRY_VERIFY_WITH_TIMEOUT(viewProcesses(instance).isEmpty(), 10000);
        QVERIFY(status().startsWith("working "));
        QVERIFY(!loadsQtQuick(instance.process.processId()));
    }

    void aScreenReaderFindsTheSettingsWindowAndItsControls()
    {
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        Instance instance;
        startWithTheSettingsWindowForAScreenReader(instance, {});

        QString found;
        const auto controlsFound = [&] {
            found = TestSupport::atspi({});
            return found.contains("check box 'Launch at login'");
        };
        QTRY_VERIFY2_WITH_TIMEOUT(controlsFound(), qPrintable(found), 20000);
        QVERIFY2(found.contains("\n  frame 'Settings'"), qPrintable(found));
        for (const char* tab : {"General", "Workflow", "Style", "Timing", "History", "About"})
            QVERIFY2(found.contains(QStringLiteral("page tab '%1'").arg(QLatin1String(tab))), tab);
        // One application per process (the settings window's and the counting one), not one per
        // application object a process made.
        const QRegularExpression application("^application '[^']*' pid (\\d+)$",
                                             QRegularExpression::MultilineOption);
        QStringList pids;
        for (const QRegularExpressionMatch& match : application.globalMatch(found))
            pids << match.captured(1);
        QVERIFY2(!pids.isEmpty(), qPrintable(found));
        QCOMPARE(QSet<QString>(pids.cbegin(), pids.cend()).size(), pids.size());
    }

    void theBusObjectOffersItsPropertiesAndMethods()
    {
        Instance instance;
        start(instance);
        QProcess introspect;
        introspect.start("gdbus", {"introspect", "--session", "--dest", service, "--object-path", path});
        QVERIFY(introspect.waitForFinished(10000));
        const QString text = QString::fromUtf8(introspect.readAllStandardOutput());
        QVERIFY2(text.contains("interface org.lulltide.Lulltide {"), qPrintable(text));
        for (const char* member :
             {"readonly b Working", "readonly b ManualPause", "readonly b InBreak",
              "readonly s WorkTimeString", "readonly s BreakTimeString", "TogglePause();", "Pause();",
              "Resume();", "Skip();", "ShowSettings();", "Quit();"})
            QVERIFY2(text.contains(member), member);
        // A method call changes the state as the command line does.
        QProcess call;
        call.start("gdbus", {"call", "--session", "--dest", service, "--object-path", path, "--method",
                             "org.lulltide.Lulltide.Pause"});
        QVERIFY(call.waitForFinished(10000));
        QCOMPARE(call.exitCode(), 0);
        QCOMPARE(status(), "paused");
    }

    void pauseIsAnnouncedAtOnceWithPropertiesChanged()
    {
        Instance instance;
        start(instance);
        QTest::qWait(300);
        announcements.clear();
        QCOMPARE(lulltide({"--pause"}).exitCode, 0);
        QTRY_VERIFY(!announcements.isEmpty());
        bool paused = false;
        for (const Announcement& announcement : announcements) {
            if (announcement.changed.value("ManualPause").toBool() &&
                announcement.changed.contains("Working") && !announcement.changed.value("Working").toBool())
                paused = true;
        }
        QVERIFY(paused);
    }

    void withoutASessionBusItRunsAloneAndSaysSoOnce()
    {
        Instance instance;
        QProcessEnvironment env = environment(instance.home.path());
        env.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + instance.home.path() + "/no-bus");
        instance.process.setProcessEnvironment(env);
        instance.process.start(LULLTIDE_BINARY, {});
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);
        QTest::qWait(1500);
        QCOMPARE(instance.process.state(), QProcess::Running);
        QCOMPARE(instance.log().count("no D-Bus session bus: running as a lone instance"), 1);
        QVERIFY(instance.log().contains("ticktack timer start 1500.0"));
    }

    void losingTheSessionBusEndsTheProgramWithAnErrorAndSaysSoOnce()
    {
        // A session bus of this test's own, to end under the running program.
        QProcess daemon;
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        QVERIFY(daemon.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(daemon.canReadLine(), 10000);
        const QString address = QString::fromUtf8(daemon.readLine()).trimmed();

        Instance instance;
        QDir().mkpath(instance.home.path() + "/.config/lulltide");
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n");
        conf.close();
        QProcessEnvironment env = environment(instance.home.path());
        env.insert("DBUS_SESSION_BUS_ADDRESS", address);
        instance.process.setProcessEnvironment(env);
        instance.process.start(LULLTIDE_BINARY, {});
        QVERIFY(instance.process.waitForStarted());
        {
            QDBusConnection bus = QDBusConnection::connectToBus(address, "doomed");
            QVERIFY(bus.isConnected());
            QTRY_VERIFY_WITH_TIMEOUT(bus.interface()->isServiceRegistered(service), 10000);
        }
        QDBusConnection::disconnectFromBus("doomed");
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);

        daemon.kill();
        QVERIFY(daemon.waitForFinished(5000));
        QVERIFY(instance.process.waitForFinished(15000));
        QCOMPARE(instance.process.exitStatus(), QProcess::NormalExit);
        QVERIFY2(instance.process.exitCode() != 0, qPrintable(QString::number(instance.process.exitCode())));
        QCOMPARE(
            instance.log().count("lost the D-Bus session bus: the desktop session is over, Lulltide ends"),
            1);
    }

    // The rest runs the service inside this test, with time stepped by hand.
    void countdownIsAnnouncedAtMostOncePerSecond()
    {
        auto* ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        {
            QDBusConnection connection =
                QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("inprocess"));
            ControlService control(connection);
            QCOMPARE(control.claim(), ControlService::Claim::Owned);
            AppState::setWorking(true);
            QTest::qWait(1100);
            announcements.clear();
            const qint64 from = clock.elapsed();
            ticks->tick(5); // five seconds' ticks at once
            QTRY_VERIFY(!announcements.isEmpty());
            QTest::qWait(300);
            QCOMPARE(announcements.size(), 1);
            QCOMPARE(announcements.first().changed.value("WorkTimeString").toString(), "24:59");
            // The latest countdown follows once the second is over.
            QTRY_COMPARE_WITH_TIMEOUT(announcements.size(), 2, 3000);
            QCOMPARE(announcements.last().changed.value("WorkTimeString").toString(), "24:55");
            QVERIFY(announcements.last().at - announcements.first().at >=
                    ControlService::countdownInterval - ControlService::countdownSlack);
            QVERIFY(announcements.first().at >= from);
            QTest::qWait(1200);
            QCOMPARE(announcements.size(), 2); // nothing changed since, nothing more is said
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("inprocess"));
        QTRY_VERIFY(!serviceOwned());
    }

    void stateChangesAreAnnouncedAtOnceEvenRightAfterATick()
    {
        auto* ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        {
            QDBusConnection connection =
                QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("inprocess2"));
            ControlService control(connection);
            QCOMPARE(control.claim(), ControlService::Claim::Owned);
            AppState::setWorking(true);
            QTest::qWait(1100);
            ticks->tick();
            announcements.clear();
            CycleControl::pause();
            // The tick's countdown may still be on its way; the pause comes with it or after it.
            const auto pauseAnnounced = [&] {
                for (const Announcement& announcement : announcements) {
                    if (announcement.changed.value("ManualPause") == true &&
                        announcement.changed.value("Working") == false)
                        return true;
                }
                return false;
            };
            QTRY_VERIFY_WITH_TIMEOUT(pauseAnnounced(), 500);
            CycleControl::resume();
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("inprocess2"));
        QTRY_VERIFY(!serviceOwned());
    }

    void statusLineNamesEachState()
    {
        CycleControl::Status status;
        status.workTimeString = "24:13";
        status.breakTimeString = "03:12";
        QCOMPARE(CycleControl::statusLine(status), "stopped");
        status.working = true;
        QCOMPARE(CycleControl::statusLine(status), "working 24:13");
        status.inBreak = true;
        QCOMPARE(CycleControl::statusLine(status), "break 03:12");
        status = {};
        status.manualPause = true;
        QCOMPARE(CycleControl::statusLine(status), "paused");
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(ControlTest, nullptr)
#include "tst_control.moc"
