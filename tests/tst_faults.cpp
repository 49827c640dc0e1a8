// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include "preferences/NumberParsing.h"
#include "preferences/PrefState.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace {

// Writes the work length again and again, as a person typing in the settings window does.
int childMain(const QByteArray& mode)
{
    if (mode != "writer")
        return 2;
    PrefState prefs;
    for (int i = 0;; ++i) {
        prefs.setWorkTimeString(QString::number(10 + i % 50));
        // A line per write that reached the file: the test kills the writer only in the middle of
        // writing, never before it began, however slowly it starts.
        std::printf("written\n");
        std::fflush(stdout);
    }
}

} // namespace

// What goes wrong around the program: broken folders and files, a settings file written by
// something else, a display that goes away, a broken installation. The real program runs in
// each of them (on this test's own session bus) and must run on, or end with a clear message.
class FaultsTest : public QObject {
    Q_OBJECT

    struct Instance : TestSupport::ProgramRun {
        QString output() { return QString::fromUtf8(process.readAllStandardOutput()); }
        QString settingsPath() const { return home.path() + "/.config/lulltide/lulltide.conf"; }
    };

    // Adds what the instance printed since the last look to `seen`; whether `text` is there now.
    static bool readUntil(QString& seen, Instance& instance, const QString& text)
    {
        seen += instance.output();
        return seen.contains(text);
    }

    static void writeSettings(Instance& instance, const QByteArray& contents)
    {
        QVERIFY(QDir().mkpath(instance.home.path() + "/.config/lulltide"));
        QFile conf(instance.settingsPath());
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write(contents);
    }

    // Runs as an ordinary user even when the tests run as root, for whom no folder is locked.
    static void start(Instance& instance, const QString& program = LULLTIDE_BINARY, bool asNobody = false)
    {
        QProcessEnvironment environment = TestSupport::environmentWithHome(instance.home.path());
        if (asNobody && geteuid() == 0) {
            // Another user may not use root's X server or bus: these runs need neither.
            environment.insert("QT_QPA_PLATFORM", "offscreen");
            environment.remove("XDG_RUNTIME_DIR");
        }
        instance.process.setProcessEnvironment(environment);
        if (asNobody && geteuid() == 0) {
            QFile::setPermissions(instance.home.path(), QFileDevice::Permissions(0x7777));
            instance.process.start("setpriv",
                                   {"--reuid=65534", "--regid=65534", "--clear-groups", "--", program});
        } else {
            instance.process.start(program, {});
        }
        QVERIFY(instance.process.waitForStarted());
    }

    // Whether the instance has come through its start-up to its event loop: it holds the
    // program's name on the bus and answers there.
    static bool answersOnTheBus(const Instance& instance)
    {
        QDBusConnection bus = QDBusConnection::sessionBus();
        if (bus.interface()->servicePid("org.lulltide.Lulltide").value() !=
            uint(instance.process.processId()))
            return false;
        QDBusMessage get = QDBusMessage::createMethodCall("org.lulltide.Lulltide", "/org/lulltide/Lulltide",
                                                          "org.freedesktop.DBus.Properties", "Get");
        get << "org.lulltide.Lulltide"
            << "Working";
        return bus.call(get).type() == QDBusMessage::ReplyMessage;
    }

    // The program is still there after its start-up. One that runs as another user has no bus to
    // answer on: it is asked to end as a logout does, and must do so in order, which only a
    // program whose event loop runs can.
    static void verifyStillRunning(Instance& instance, bool asNobody = false)
    {
        if (asNobody && geteuid() == 0) {
            QCOMPARE(instance.process.state(), QProcess::Running);
            QCOMPARE(::kill(pid_t(instance.process.processId()), SIGTERM), 0);
            QVERIFY(TestSupport::waitForEnd(instance.process, 30000));
            QCOMPARE(instance.process.exitStatus(), QProcess::NormalExit);
            QCOMPARE(instance.process.exitCode(), 0);
            QVERIFY(instance.output().contains("signal TERM: Lulltide ends"));
            return;
        }
        QTRY_VERIFY_WITH_TIMEOUT(answersOnTheBus(instance), 10000);
        QCOMPARE(instance.process.state(), QProcess::Running);
    }

    // The cycle runs: the first work period started, and the program is still there after it.
    static void verifyCycleRuns(Instance& instance,
                                const QString& firstPeriod = "ticktack timer start 1500.0",
                                bool asNobody = false)
    {
        QString seen;
        QTRY_VERIFY_WITH_TIMEOUT(readUntil(seen, instance, "sandbox home path: "), 10000);
        QVERIFY2(seen.contains(firstPeriod), qPrintable(seen));
        verifyStillRunning(instance, asNobody);
    }

    static QByteArray contents(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void aSymlinkLoopInTheLogFolderLeavesFileLoggingWorkingAndTheCycleRuns()
    {
        Instance instance;
        const QString logs = instance.home.path() + "/.cache/Logs";
        QVERIFY(QDir().mkpath(logs));
        QVERIFY(QFile::link(logs + "/loop2", logs + "/loop1"));
        QVERIFY(QFile::link(logs + "/loop1", logs + "/loop2"));
        QVERIFY(QFile::link(logs + "/org.lulltide.Lulltide.loop", logs + "/org.lulltide.Lulltide.loop"));
        start(instance);
        QString seen;
        QTRY_VERIFY_WITH_TIMEOUT(readUntil(seen, instance, "sandbox home path: "), 10000);
        QVERIFY2(!seen.contains("create logger error"), qPrintable(seen));
        QVERIFY(seen.contains("ticktack timer start 1500.0"));
        QTRY_VERIFY(instance.log().contains("ticktack timer start 1500.0"));
        QVERIFY(QFileInfo(logs + "/loop1").isSymLink());
        verifyStillRunning(instance);
    }

    void anUnreadableFolderOfOursInTheLogFolderSaysCreateLoggerErrorAndTheCycleRuns()
    {
        Instance instance;
        const QString locked = instance.home.path() + "/.cache/Logs/org.lulltide.Lulltide.old";
        QVERIFY(QDir().mkpath(locked));
        QFile::setPermissions(instance.home.path() + "/.cache", QFileDevice::Permissions(0x7777));
        QFile::setPermissions(instance.home.path() + "/.cache/Logs", QFileDevice::Permissions(0x7777));
        QFile::setPermissions(locked, QFileDevice::Permissions());
        start(instance, LULLTIDE_BINARY, true);
        QString seen;
        QTRY_VERIFY_WITH_TIMEOUT(readUntil(seen, instance, "sandbox home path: "), 10000);
        QVERIFY2(seen.startsWith("create logger error: Permission denied: " + locked), qPrintable(seen));
        QVERIFY(seen.contains("ticktack timer start 1500.0"));
        verifyStillRunning(instance, true);
        QFile::setPermissions(locked,
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    void anUnwritableCacheFolderSaysCreateLoggerErrorAndTheCycleRuns()
    {
        Instance instance;
        const QString cache = instance.home.path() + "/.cache";
        QVERIFY(QDir().mkpath(cache));
        QFile::setPermissions(cache, QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                         QFileDevice::ExeOther);
        start(instance, LULLTIDE_BINARY, true);
        QString seen;
        QTRY_VERIFY_WITH_TIMEOUT(readUntil(seen, instance, "sandbox home path: "), 10000);
        QVERIFY2(seen.startsWith("create logger error: Permission denied: " + cache + "/Logs/"),
                 qPrintable(seen));
        QVERIFY(seen.contains("ticktack timer start 1500.0"));
        QVERIFY(!QFile::exists(cache + "/Logs"));
        QFile::setPermissions(cache,
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    void aSettingsFileOfGarbageBytesGivesTheDefaultsAndIsLeftAsItWas()
    {
        Instance instance;
        QByteArray garbage;
        QRandomGenerator random(20261122);
        for (int i = 0; i < 4096; ++i)
            garbage.append(char(random.bounded(256)));
        writeSettings(instance, garbage);
        const QDateTime modified = QFileInfo(instance.settingsPath()).lastModified();
        start(instance);
        verifyCycleRuns(instance);
        instance.process.terminate();
        QVERIFY(instance.process.waitForFinished(5000));
        QCOMPARE(contents(instance.settingsPath()), garbage);
        QCOMPARE(QFileInfo(instance.settingsPath()).lastModified(), modified);
    }

    void settingsOfTheWrongTypeFallBackAndTheFileIsLeftAsItWas()
    {
        Instance instance;
        const QByteArray settings = "[General]\nwork_time=abc\nbreak_time=@Variant(\\0\\0\\0\\x7f)\n"
                                    "short_break_times=2.5\nshow_time_in_status_bar=maybe\n"
                                    "long_break_time=1, 2, 3\nlast_weakup_timestamp=yesterday\n";
        writeSettings(instance, settings);
        start(instance);
        verifyCycleRuns(instance);
        instance.process.terminate();
        QVERIFY(instance.process.waitForFinished(5000));
        QCOMPARE(contents(instance.settingsPath()), settings);
    }

    void hugeNumbersInTheSettingsFallBack()
    {
        Instance instance;
        writeSettings(instance, "[General]\nwork_time=1e400\nshort_break_times=99999999999999999999999\n"
                                "break_time=" +
                                    QByteArray(100000, '9') + "\n");
        start(instance);
        verifyCycleRuns(instance);
        // The same values as the program reads them.
        QSettings settings(instance.settingsPath(), QSettings::IniFormat);
        QCOMPARE(NumberParsing::parseDouble(settings.value("work_time").toString()), std::nullopt);
        QCOMPARE(NumberParsing::parseInteger(settings.value("short_break_times").toString()), std::nullopt);
    }

    void aNumberSettingHoldingOnlyASignFallsBack()
    {
        for (const char* sign : {"-", "+", "--", "+-", "-+", "-.", "+."}) {
            QCOMPARE(NumberParsing::parseDouble(sign), std::nullopt);
            QCOMPARE(NumberParsing::parseInteger(sign), std::nullopt);
        }
        QCOMPARE(NumberParsing::parseDouble("-.5"), -0.5);
        Instance instance;
        writeSettings(instance, "[General]\nwork_time=-\nshort_break_times=+\n");
        start(instance);
        verifyCycleRuns(instance);
    }

    void aReadOnlySettingsFileIsReadAndLeftAlone()
    {
        Instance instance;
        const QByteArray settings = "[General]\nwork_time=0.5\n";
        writeSettings(instance, settings);
        QFile::setPermissions(instance.settingsPath(), QFileDevice::ReadOwner | QFileDevice::ReadOther);
        QFile::setPermissions(instance.home.path() + "/.config/lulltide",
                              QFileDevice::ReadOwner | QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                  QFileDevice::ExeOther);
        QFile::setPermissions(instance.home.path() + "/.config", QFileDevice::Permissions(0x7777));
        start(instance, LULLTIDE_BINARY, true);
        verifyCycleRuns(instance, "ticktack timer start 30.0", true);
        if (instance.process.state() != QProcess::NotRunning) {
            instance.process.terminate();
            QVERIFY(TestSupport::waitForEnd(instance.process, 30000));
        }
        QCOMPARE(contents(instance.settingsPath()), settings);
        QFile::setPermissions(instance.home.path() + "/.config/lulltide",
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

    void killedDuringASettingsWriteTheFileStillReadsBack_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << int(SIGTERM);
        QTest::newRow("SIGKILL") << int(SIGKILL);
    }

    void killedDuringASettingsWriteTheFileStillReadsBack()
    {
        QFETCH(int, signal);
        QTemporaryDir home;
        QRandomGenerator random(7);
        for (int round = 0; round < 8; ++round) {
            QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
            environment.insert("LULLTIDE_TEST_CHILD", "writer");
            QProcess writer;
            writer.setProcessEnvironment(environment);
            writer.start(QCoreApplication::applicationFilePath(), {});
            QVERIFY(writer.waitForStarted());
            // A few writes in, at a different point each round. A writer killed while it made its
            // lock file leaves it empty, and Qt takes such a lock for stale only after 30 s: the
            // next writer's first write waits that long.
            const int writes = 1 + int(random.bounded(20));
            int written = 0;
            const auto enoughWritten = [&] {
                written += int(writer.readAllStandardOutput().count("written\n"));
                return written >= writes;
            };
            QTRY_VERIFY_WITH_TIMEOUT(enoughWritten(), 60000);
            ::kill(pid_t(writer.processId()), signal);
            QVERIFY(writer.waitForFinished(5000));
            QSettings settings(home.path() + "/.config/lulltide/lulltide.conf", QSettings::IniFormat);
            QCOMPARE(settings.status(), QSettings::NoError);
            const int value = settings.value("work_time").toString().toInt();
            QVERIFY2(value >= 10 && value < 60, qPrintable(settings.value("work_time").toString()));
        }
        // What a killed writer leaves behind (a lock) does not stop the next one.
        QSettings settings(home.path() + "/.config/lulltide/lulltide.conf", QSettings::IniFormat);
        settings.setValue("work_time", "25");
        settings.sync();
        QCOMPARE(settings.status(), QSettings::NoError);
        QSettings reread(home.path() + "/.config/lulltide/lulltide.conf", QSettings::IniFormat);
        QCOMPARE(reread.value("work_time").toString(), "25");
    }

    void theXServerGoingAwayEndsTheProgramCleanlyWithAMessage()
    {
        QProcess xserver;
        xserver.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp"});
        QVERIFY(xserver.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(xserver.canReadLine(), 10000);
        const QString display = ":" + QString::fromLatin1(xserver.readLine()).trimmed();
        Instance instance;
        QProcessEnvironment environment = TestSupport::environmentWithHome(instance.home.path());
        environment.insert("DISPLAY", display);
        instance.process.setProcessEnvironment(environment);
        instance.process.start(LULLTIDE_BINARY, {});
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);
        xserver.terminate();
        QVERIFY(xserver.waitForFinished(5000));
        QVERIFY(instance.process.waitForFinished(5000));
        QCOMPARE(instance.process.exitStatus(), QProcess::NormalExit); // no signal, no core dump
        QCOMPARE(instance.process.exitCode(), 1);
        const QString errors = QString::fromUtf8(instance.process.readAllStandardError());
        QVERIFY2(errors.contains("The X11 connection broke"), qPrintable(errors));
    }

    void aMissingViewsProgramIsLoggedOnceAndTheCycleRunsOn()
    {
        // A program copied alone, away from the one that shows its windows (and with none installed).
        QTemporaryDir install;
        const QString program = install.filePath("lulltide");
        QVERIFY(QFile::copy(LULLTIDE_BINARY, program));
        QVERIFY2(!QFile::exists(QStringLiteral(LULLTIDE_INSTALLED_VIEWS)), "an installed Lulltide is in the way");

        Instance instance;
        writeSettings(instance, "[General]\nwork_time=0.05\nauto_check_update=false\n");
        start(instance, program);
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().count("ticktack timer start 3.0") >= 3, 20000);
        const QString log = instance.log();
        QCOMPARE(log.count(" error org.lulltide.Lulltide : the break screen cannot start: "), 1);
        QVERIFY(log.contains(
            " error org.lulltide.Lulltide : no break screen can be shown: the next work period starts"));
        QCOMPARE(instance.process.state(), QProcess::Running);
        QCOMPARE(TestSupport::visibleWindowsOf(instance.process.processId()), QStringList());
    }

    void aBreakScreenThatCannotBeMadeShowsNothingAndTheCycleRunsOn()
    {
        // A broken installation: the program finds no QML modules (its qt.conf points elsewhere).
        QTemporaryDir install;
        const QString program = install.filePath("lulltide");
        QVERIFY(QFile::copy(LULLTIDE_BINARY, program));
        QVERIFY(QFile::copy(LULLTIDE_VIEWS_BINARY, install.filePath("lulltide-views")));
        QFile conf(install.filePath("qt.conf"));
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[Paths]\nPlugins=" + QLibraryInfo::path(QLibraryInfo::PluginsPath).toUtf8() +
                   "\nQmlImports=" + install.filePath("no-qml").toUtf8() + "\n");
        conf.close();

        Instance instance;
        writeSettings(instance, "[General]\nwork_time=0.05\nauto_check_update=false\n");
        start(instance, program);
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().count("ticktack timer start 3.0") >= 2, 15000);
        const QString log = instance.log();
        QVERIFY2(log.contains(" error org.lulltide.Lulltide : cannot make the view BreakView: "),
                 qPrintable(log));
        QVERIFY(log.contains(
            " error org.lulltide.Lulltide : no break screen can be shown: the next work period starts"));
        // The break screen's process said why it could not go on, and that is said once.
        QCOMPARE(log.count("the break screen cannot start: the break view cannot be made"), 1);
        QCOMPARE(instance.process.state(), QProcess::Running);
        // Nothing covers the screen.
        QCOMPARE(TestSupport::visibleWindowsOf(instance.process.processId()), QStringList());
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(FaultsTest, childMain)

#include "tst_faults.moc"
