// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestHoldSource.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/CycleEvents.h"
#include "cycle/PromptState.h"
#include "cycle/SystemEventActions.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "history/HistoryModel.h"
#include "history/HistoryRecorder.h"
#include "history/HistoryStore.h"
#include "history/HistorySummary.h"
#include "preferences/PrefState.h"
#include "preferences/SettingsStore.h"
#include "statusbar/StatusBarController.h"

#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSettings>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Event = HistoryStore::Event;

// An event as a test writes it: a local time, and what happened.
Event plant(const QString& localTime, const QString& kind, const QString& breakKind = {}, double seconds = 0,
            const QString& detail = {})
{
    Event event;
    const QDateTime local = QDateTime::fromString(localTime, Qt::ISODate);
    event.utc = local.toUTC();
    event.localDate = local.date().toString(Qt::ISODate);
    event.kind = kind;
    event.breakKind = breakKind;
    event.seconds = seconds;
    event.detail = detail;
    return event;
}

QStringList kinds(const QList<Event>& events)
{
    QStringList list;
    for (const Event& event : events)
        list << event.kind + (event.breakKind.isEmpty() ? QString() : u' ' + event.breakKind) +
                    (event.detail.isEmpty() ? QString() : u' ' + event.detail);
    return list;
}

// A week with known answers: Monday 2026-11-16 to Sunday 2026-11-22.
QList<Event> plantedWeek()
{
    return {
        // Monday: two periods of 25 min, a short break taken, one skipped, one postponed.
        plant("2026-11-16T09:00:00", "work_started", {}, 1500),
        plant("2026-11-16T09:25:00", "break_started", "short", 300),
        plant("2026-11-16T09:30:00", "break_ended", "short", 300, "full"),
        plant("2026-11-16T09:30:00", "work_started", {}, 1500),
        plant("2026-11-16T09:55:00", "break_started", "short", 300),
        plant("2026-11-16T09:55:10", "break_ended", "short", 10, "skipped"),
        plant("2026-11-16T09:55:10", "work_started", {}, 1500),
        plant("2026-11-16T10:20:10", "postponed", {}, 300),
        plant("2026-11-16T10:20:10", "work_started", {}, 300),
        plant("2026-11-16T10:25:10", "paused", {}, 0, "menu"),
        // Tuesday: a long stretch, 2 h 10 min, ended by a long break taken in full.
        plant("2026-11-17T13:00:00", "work_started", {}, 7800),
        plant("2026-11-17T15:10:00", "break_started", "long", 900),
        plant("2026-11-17T15:25:00", "break_ended", "long", 900, "full"),
        plant("2026-11-17T15:25:00", "work_started", {}, 1500),
        plant("2026-11-17T15:35:00", "locked"),
        // Wednesday to Sunday: nothing but Friday's greeting of a new day, which is no break.
        plant("2026-11-20T08:00:00", "break_started", "new_day", 10),
        plant("2026-11-20T08:00:10", "break_ended", "new_day", 10, "full"),
        plant("2026-11-20T08:00:10", "work_started", {}, 1500),
        plant("2026-11-20T08:10:10", "idle_stopped"),
    };
}

} // namespace

// The history: the file, the summary of the days, the command line; the cycle itself on Qt's
// offscreen platform with two screens, stepped with an injected tick.
class HistoryTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;
    QString path;
    bool openedAtStart = true;

    static PrefState& prefs() { return AppState::prefState(); }
    // The program's file, followed by a recorder of the test's own.
    static HistoryStore& store()
    {
        static auto* history = new HistoryStore;
        return *history;
    }
    QList<Event> recorded() { return store().read(QDate(2000, 1, 1), QDate(2100, 1, 1)); }

    void tickUntilTimesUp()
    {
        while (!AppState::workState().timesUp())
            ticks->tick();
    }

    static void writePlanted(const QString& file, const QList<Event>& events)
    {
        HistoryStore planted(file);
        for (const Event& event : events)
            QVERIFY(planted.record(event));
    }

    TestSupport::ChildResult runCommandLine(const QStringList& arguments, const QString& dataHome)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        environment.remove("QT_QPA_PLATFORM");
        environment.insert("XDG_DATA_HOME", dataHome);
        environment.insert("TZ", "Europe/Berlin");
        environment.insert("LC_ALL", "C.UTF-8");
        process.setProcessEnvironment(environment);
        process.start(LULLTIDE_BINARY, arguments);
        process.waitForFinished(20000);
        return {process.exitCode(), process.exitStatus() != QProcess::NormalExit,
                QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        BreakGate::setHoldSourceFactory([] { return std::make_unique<TestHoldSource>(); });
        path = HistoryStore::defaultPath();
        QVERIFY(path.startsWith(QDir::homePath())); // in the test's own XDG_DATA_HOME
        QVERIFY(path.endsWith("/lulltide/history.sqlite"));
        WindowController::install();
        new HistoryRecorder(store(), AppState::events(), this);
        StatusBarController::item();
        QCoreApplication::processEvents();
        openedAtStart = QFile::exists(path) || !QSqlDatabase::connectionNames().isEmpty();
    }

    void init()
    {
        WindowController::closeBreak();
        SettingsStore::settings().clear();
        prompt().resetShortBreakTimes();
        AppState::setManualPause(false);
        store().forget();
    }

    void cleanup() { WindowController::closeBreak(); }

    void nothingIsOpenedBeforeTheFirstEvent()
    {
        QVERIFY(!openedAtStart);
        QVERIFY(!QFile::exists(path));
        TicktackController::work(prefs().workTime());
        QVERIFY(QFile::exists(path));
        QCOMPARE(kinds(recorded()), QStringList{"work_started"});
        QCOMPARE(recorded().constFirst().seconds, 1500.0);
    }

    void everyEventOfTheCycleLandsWithItsFields()
    {
        prefs().setAllowPostpone(true);
        prefs().setShortBreakTimesString("2");
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp(); // a short break
        prompt().skip();    // skipped at once
        tickUntilTimesUp(); // a long break
        QCOMPARE(CycleControl::postpone(0), QString());
        tickUntilTimesUp(); // the long break again, run to its end
        while (WindowController::isBreakShown())
            ticks->tick();
        CycleControl::pause(CycleControl::Origin::Menu);
        CycleControl::resume(CycleControl::Origin::Bus);
        SystemEventActions::didLockScreenShow();
        SystemEventActions::didLockScreenDismiss();
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        tickUntilTimesUp();
        ticks->tick(7);
        TestHoldSource::current->set(false);
        prefs().setHoldBreaks(false);

        const QList<Event> events = recorded();
        QCOMPARE(kinds(events), QStringList({"work_started",
                                             "break_started short",
                                             "break_ended short skipped",
                                             "work_started",
                                             "break_started long",
                                             "break_ended long postponed",
                                             "postponed",
                                             "work_started",
                                             "break_started long",
                                             "break_ended long full",
                                             "work_started",
                                             "paused menu",
                                             "resumed bus",
                                             "work_started",
                                             "locked",
                                             "unlocked",
                                             "work_started",
                                             "held",
                                             "hold_released cleared",
                                             "work_started"}));
        QCOMPARE(events.at(1).seconds, 300.0); // the planned short break
        QCOMPARE(events.at(4).seconds, 900.0); // the planned long break
        QCOMPARE(events.at(6).seconds, 300.0); // postponed by five minutes
        QCOMPARE(events.at(18).seconds, 7.0);  // the break waited seven seconds
        QCOMPARE(events.at(19).seconds, 10.0); // and came ten seconds after
        const QDateTime now = QDateTime::currentDateTimeUtc();
        for (const Event& event : events) {
            QVERIFY(qAbs(event.utc.secsTo(now)) < 600);
            QCOMPARE(event.localDate, event.utc.toLocalTime().date().toString(Qt::ISODate));
        }
    }

    void aBreakClosedByTheLockEndsSoInTheHistory()
    {
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        SystemEventActions::didLockScreenShow();
        SystemEventActions::didLockScreenDismiss();
        QCOMPARE(kinds(recorded()).mid(1, 4),
                 QStringList({"break_started short", "break_ended short lock", "locked", "unlocked"}));
    }

    void aLockThatLetsTheCycleRunLeavesTheBreakToEndByItself()
    {
        prefs().setRestartTimerAfterAwake(false);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        SystemEventActions::didLockScreenShow();
        SystemEventActions::didLockScreenDismiss();
        while (WindowController::isBreakShown())
            ticks->tick();
        QCOMPARE(kinds(recorded()), QStringList({"work_started", "break_started short", "locked cycle_runs",
                                                 "unlocked", "break_ended short full", "work_started"}));
    }

    void aHoldEndedByAPauseSaysSo()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        ticks->tick(4);
        CycleControl::pause(CycleControl::Origin::Menu);
        TestHoldSource::current->set(false);
        prefs().setHoldBreaks(false);
        const QList<Event> events = recorded();
        QCOMPARE(kinds(events), QStringList({"work_started", "held", "hold_released pause", "paused menu"}));
        // The four seconds it waited, as the panel counted them.
        QCOMPARE(events.at(2).seconds, 4.0);
    }

    void aFlappingHolderWritesOnePairOfRowsAMinute()
    {
        prefs().setHoldBreaks(true);
        TestHoldSource::current->set(true);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        for (int round = 0; round < 4; ++round) {
            ticks->tick(3);
            TestHoldSource::current->set(false);
            ticks->tick(9);
            TestHoldSource::current->set(true);
            ticks->tick();
        }
        CycleControl::pause(CycleControl::Origin::Menu);
        TestHoldSource::current->set(false);
        prefs().setHoldBreaks(false);
        const QList<Event> events = recorded();
        // Each release starts the ten seconds' wait; the holds after the first are the same one.
        QCOMPARE(kinds(events), QStringList({"work_started", "held", "hold_released cleared", "work_started",
                                             "work_started", "work_started", "work_started", "paused menu"}));
    }

    void theRecorderWritesWhatAnyCycleTellsIt()
    {
        // A cycle of the test's own, told by hand: the recorder needs nothing else.
        CycleEvents cycle;
        const QString file = QDir::homePath() + "/other-history.sqlite";
        {
            HistoryStore other(file);
            HistoryRecorder recorder(other, cycle);
            emit cycle.workStarted(1500);
            emit cycle.breakStarted(PromptState::Kind::Long, 900);
            emit cycle.postponed(300);
            emit cycle.paused(CycleEvents::Origin::MiddleClick);
            emit cycle.resumed(CycleEvents::Origin::Bus);
            emit cycle.stopped();
            QCOMPARE(kinds(other.read(QDate(2000, 1, 1), QDate(2100, 1, 1))),
                     QStringList({"work_started", "break_started long", "break_ended long postponed",
                                  "postponed", "paused middle_click", "resumed bus", "stopped"}));
        }
        // The program's own file heard none of it.
        QCOMPARE(kinds(recorded()), QStringList());
        QFile::remove(file);
    }

    void quittingEndsTheRunningPeriod()
    {
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        AppDelegate delegate;
        delegate.applicationWillTerminate();
        QCOMPARE(kinds(recorded()),
                 QStringList({"work_started", "break_started short", "break_ended short quit", "stopped"}));
    }

    void recordingOffWritesNothing()
    {
        prefs().setKeepHistory(false);
        TicktackController::work(prefs().workTime());
        tickUntilTimesUp();
        prompt().skip();
        CycleControl::pause();
        CycleControl::resume();
        QVERIFY(!QFile::exists(path));
    }

    void aHistoryFileDeletedWhileLulltideRunsIsSaidAndStartedAfresh()
    {
        TicktackController::work(prefs().workTime());
        QVERIFY(QFile::exists(path));
        // What a person cleaning their home folder does.
        for (const char* suffix : {"", "-wal", "-shm"})
            QFile::remove(path + QString::fromLatin1(suffix));
        const QString said = "was deleted or replaced while Lulltide ran: a new one begins";
        const int before = TestSupport::logText().count(said);
        TicktackController::work(prefs().workTime());
        QVERIFY(QFile::exists(path));
        QCOMPARE(kinds(recorded()), QStringList{"work_started"});
        QCOMPARE(TestSupport::logText().count(said), before + 1);
        // Once: the new file is the open one now.
        TicktackController::work(prefs().workTime());
        QCOMPARE(kinds(recorded()), QStringList({"work_started", "work_started"}));
        QCOMPARE(TestSupport::logText().count(said), before + 1);
    }

    void forgetHistoryRemovesTheFile()
    {
        TicktackController::work(prefs().workTime());
        QVERIFY(QFile::exists(path));
        QVERIFY(store().forget());
        QVERIFY(!QFile::exists(path));
        QVERIFY(!QFile::exists(path + "-wal"));
        // Recording goes on in a new file.
        TicktackController::work(prefs().workTime());
        QCOMPARE(kinds(recorded()), QStringList{"work_started"});
    }

    // The file.

    void aFileOfVersionOneIsMigratedAndKeepsItsEvents()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("history.sqlite");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "version-one");
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery query(db);
            QVERIFY(query.exec("CREATE TABLE schema_version (version INTEGER NOT NULL)"));
            QVERIFY(query.exec("INSERT INTO schema_version VALUES (1)"));
            QVERIFY(
                query.exec("CREATE TABLE events (id INTEGER PRIMARY KEY, utc TEXT NOT NULL, local_date TEXT "
                           "NOT NULL, kind TEXT NOT NULL, break_kind TEXT, seconds REAL, detail TEXT)"));
            QVERIFY(query.exec("INSERT INTO events (utc, local_date, kind, seconds) VALUES "
                               "('2026-01-05T08:00:00.000Z', '2026-01-05', 'work_started', 1500)"));
        }
        QSqlDatabase::removeDatabase("version-one");
        HistoryStore migrated(file);
        QVERIFY(migrated.record(plant("2026-01-05T09:00:00", "paused", {}, 0, "menu")));
        QCOMPARE(kinds(migrated.read(QDate(2026, 1, 5), QDate(2026, 1, 5))),
                 QStringList({"work_started", "paused menu"}));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "check");
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery query(db);
            QVERIFY(query.exec("SELECT version FROM schema_version") && query.next());
            QCOMPARE(query.value(0).toInt(), HistoryStore::schemaVersion);
            QVERIFY(query.exec("SELECT name FROM sqlite_master WHERE type = 'index'") && query.next());
            QCOMPARE(query.value(0).toString(), "events_by_local_date");
        }
        QSqlDatabase::removeDatabase("check");
    }

    void aCorruptFileIsMovedAsideOnceAndANewOneStarts()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("history.sqlite");
        QFile corrupt(file);
        QVERIFY(corrupt.open(QIODevice::WriteOnly));
        corrupt.write(QByteArray(8192, 'x'));
        corrupt.close();
        const int before = TestSupport::logText().count("moved aside");
        const QString aside = file + ".broken-" + QDate::currentDate().toString(Qt::ISODate);
        {
            HistoryStore store(file);
            QVERIFY(store.record(plant("2026-11-16T09:00:00", "work_started", {}, 1500)));
            QVERIFY(store.record(plant("2026-11-16T09:25:00", "locked")));
            QVERIFY(QFile::exists(aside));
            QCOMPARE(QFile(aside).size(), 8192);
            QCOMPARE(TestSupport::logText().count("moved aside"), before + 1);
            QCOMPARE(kinds(store.read(QDate(2026, 11, 16), QDate(2026, 11, 16))),
                     QStringList({"work_started", "locked"}));
        }

        // Broken again the same day: the first copy stays, the second goes beside it.
        QFile again(file);
        QVERIFY(again.open(QIODevice::WriteOnly));
        again.write(QByteArray(4096, 'y'));
        again.close();
        HistoryStore reopened(file);
        QVERIFY(reopened.record(plant("2026-11-16T10:00:00", "unlocked")));
        QCOMPARE(QFile(aside).size(), 8192);
        QCOMPARE(QFile(aside + "-2").size(), 4096);
        QCOMPARE(kinds(reopened.read(QDate(2026, 11, 16), QDate(2026, 11, 16))), QStringList{"unlocked"});
        // Forgetting the history forgets the copies too.
        QVERIFY(reopened.forget());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList());
    }

    void aFileWithSomeoneElsesTriggerIsMovedAside()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("history.sqlite");
        writePlanted(file, {plant("2026-11-16T09:00:00", "work_started", {}, 1500)});
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "trigger");
            db.setDatabaseName(file);
            QVERIFY(db.open());
            QSqlQuery query(db);
            // Each insert would run a query without end.
            QVERIFY(query.exec("CREATE TRIGGER forever AFTER INSERT ON events BEGIN "
                               "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) "
                               "SELECT count(*) FROM n; END"));
        }
        QSqlDatabase::removeDatabase("trigger");
        QString error;
        QVERIFY(HistoryStore(file).read(QDate(2026, 11, 16), QDate(2026, 11, 16), &error).isEmpty());
        QCOMPARE(error, "it holds more than a history");
        HistoryStore store(file);
        QVERIFY(store.record(plant("2026-11-16T10:00:00", "unlocked")));
        QVERIFY(QFile::exists(file + ".broken-" + QDate::currentDate().toString(Qt::ISODate)));
        QCOMPARE(kinds(store.read(QDate(2026, 11, 16), QDate(2026, 11, 16))), QStringList{"unlocked"});
    }

    void aFileLockedByAnotherProgramIsSaidOnceAndTheCycleDoesNotWait()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("history.sqlite");
        writePlanted(file, {plant("2026-11-16T09:00:00", "work_started", {}, 1500)});
        // Another program holds the write lock, as sqlite3's shell would.
        QProcess holder;
        holder.start("python3", {"-c",
                                 "import sqlite3, sys, time\n"
                                 "c = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
                                 "c.execute('BEGIN EXCLUSIVE')\n"
                                 "print('locked', flush=True)\n"
                                 "sys.stdin.read()\n",
                                 file});
        QVERIFY(holder.waitForReadyRead(10000));
        QCOMPARE(holder.readLine().trimmed(), "locked");
        const QString said = "cannot be written to " + file + ": it is locked by another program";
        const int before = TestSupport::logText().count(said);
        HistoryStore store(file);
        QElapsedTimer clock;
        clock.start();
        QVERIFY(!store.record(plant("2026-11-16T09:25:00", "locked")));
        QVERIFY(!store.record(plant("2026-11-16T09:26:00", "unlocked")));
        // SQLite's own wait for a lock is 5 s a write; ours is a few milliseconds. The bound is
        // far above what even a loaded machine takes, and far below one such wait.
        QVERIFY2(clock.elapsed() < 4000, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(TestSupport::logText().count(said), before + 1);
        QVERIFY(!QFile::exists(file + ".broken-" + QDate::currentDate().toString(Qt::ISODate)));
        holder.closeWriteChannel();
        QVERIFY(holder.waitForFinished(10000));
        // The lock gone, the same file takes the next event.
        QVERIFY(store.record(plant("2026-11-16T09:27:00", "paused", {}, 0, "menu")));
        QCOMPARE(kinds(store.read(QDate(2026, 11, 16), QDate(2026, 11, 16))),
                 QStringList({"work_started", "paused menu"}));
    }

    void aFullDiskIsSaidOnceAndLosesOnlyTheEvent()
    {
        QTemporaryDir dir;
        const QString file = dir.filePath("history.sqlite");
        // The child may write files of at most 64 KiB: the journal's write that crosses the
        // limit is cut short by the kernel, as on a full disk.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LULLTIDE_TEST_CHILD", "fill");
        environment.insert("LULLTIDE_TEST_HISTORY", file);
        QProcess child;
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(child.waitForFinished(20000));
        const QString output = QString::fromUtf8(child.readAllStandardOutput()) +
                               QString::fromUtf8(child.readAllStandardError());
        QCOMPARE(child.exitCode(), 0);
        QVERIFY2(output.contains(QRegularExpression("recorded (\\d+), then none of 5")), qPrintable(output));
        QVERIFY2(output.count(": the disk is full or failing") == 1, qPrintable(output));
        // What was written before stays readable.
        HistoryStore store(file);
        const int recorded = QRegularExpression("recorded (\\d+)").match(output).captured(1).toInt();
        QVERIFY(recorded > 0);
        QCOMPARE(store.read(QDate(2026, 11, 16), QDate(2026, 11, 16)).size(), recorded);
    }

    void aReadOnlyFileIsSaidOnce()
    {
        QTemporaryDir dir;
        QVERIFY(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                      QFile::ReadOther | QFile::ExeOther));
        const QString file = dir.filePath("history.sqlite");
        writePlanted(file, {plant("2026-11-16T09:00:00", "work_started", {}, 1500)});
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther |
                                                      QFile::ExeOther));
        // Root may write anywhere: the record is tried as nobody then. Nobody may not reach this
        // checkout (a private folder, as mktemp -d makes): the child runs from a copy it can reach,
        // on the offscreen platform without the checkout's screen file.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LULLTIDE_TEST_HISTORY", file);
        QStringList wrapper;
        QString program = QCoreApplication::applicationFilePath();
        QTemporaryDir reachable;
        if (::geteuid() == 0) {
            wrapper = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "--"};
            QVERIFY(QFile::setPermissions(reachable.path(), QFile::ReadOwner | QFile::WriteOwner |
                                                                QFile::ExeOwner | QFile::ReadOther |
                                                                QFile::ExeOther));
            program = reachable.filePath("tst_history");
            QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));
            QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther |
                                                       QFile::ExeOther));
            environment.insert("LULLTIDE_TEST_KEEP_PLATFORM", "1");
            environment.insert("QT_QPA_PLATFORM", "offscreen");
        }
        QProcess child;
        environment.insert("LULLTIDE_TEST_CHILD", "record");
        child.setProcessEnvironment(environment);
        const QStringList command = wrapper + QStringList{program};
        child.start(command.first(), command.mid(1));
        QVERIFY(child.waitForFinished(20000));
        const QString output = QString::fromUtf8(child.readAllStandardOutput()) +
                               QString::fromUtf8(child.readAllStandardError());
        QVERIFY2(output.contains("recorded: no, no"), qPrintable(output));
        QCOMPARE(output.count("cannot be written to"), 1);
        QVERIFY2(output.contains("it is read-only") || output.contains("it cannot be opened"),
                 qPrintable(output));
        QVERIFY(QFile::setPermissions(dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    // The summary of the days.

    void theWeekSummaryHasTheKnownAnswers()
    {
        qputenv("TZ", "Europe/Berlin");
        const auto days = HistorySummary::days(plantedWeek(), QDate(2026, 11, 16), QDate(2026, 11, 22),
                                               QDateTime(QDate(2026, 11, 23), QTime(12, 0)));
        QCOMPARE(days.size(), 7);
        const HistorySummary::Day& monday = days.at(0);
        QVERIFY(!monday.empty);
        QCOMPARE(monday.breaks, 2);
        QCOMPARE(monday.taken, 1);
        QCOMPARE(monday.skipped, 1);
        QCOMPARE(monday.postponed, 1);
        QCOMPARE(monday.screenSeconds,
                 25 * 60 + 25 * 60 + 30 * 60); // 09:00-09:25, 09:30-09:55, 09:55:10-10:25:10
        QCOMPARE(monday.longestStretchSeconds, 25 * 60 + 30 * 60); // the skip did not end it
        const HistorySummary::Day& tuesday = days.at(1);
        QCOMPARE(tuesday.breaks, 1);
        QCOMPARE(tuesday.taken, 1);
        QCOMPARE(tuesday.longestStretchSeconds, 130 * 60);
        QCOMPARE(tuesday.screenSeconds, 140 * 60);
        QVERIFY(days.at(2).empty && days.at(3).empty && days.at(5).empty && days.at(6).empty);
        const HistorySummary::Day& friday = days.at(4);
        QVERIFY(!friday.empty);
        QCOMPARE(friday.breaks, 0); // the greeting is no break
        QCOMPARE(friday.screenSeconds, 10 * 60);
        QCOMPARE(HistorySummary::sentence(days),
                 "This week: 2 of 3 breaks taken; longest stretch without a break: 2 h 10 min (Tuesday).");
    }

    void workAcrossMidnightCountsOnBothDays()
    {
        qputenv("TZ", "Europe/Berlin");
        const QList<Event> events{plant("2026-11-16T23:40:00", "work_started", {}, 1500),
                                  plant("2026-11-17T00:05:00", "break_started", "short", 300),
                                  plant("2026-11-17T00:10:00", "break_ended", "short", 300, "full")};
        const auto days = HistorySummary::days(events, QDate(2026, 11, 16), QDate(2026, 11, 17));
        QCOMPARE(days.at(0).screenSeconds, 20 * 60);
        QCOMPARE(days.at(1).screenSeconds, 5 * 60);
        QCOMPARE(days.at(0).longestStretchSeconds, 20 * 60);
        QCOMPARE(days.at(1).longestStretchSeconds, 25 * 60);
        QCOMPARE(days.at(1).taken, 1);
    }

    void aBreakAcrossMidnightBelongsToTheDayItBegan()
    {
        qputenv("TZ", "Europe/Berlin");
        const QList<Event> events{plant("2026-11-16T23:33:00", "work_started", {}, 1500),
                                  plant("2026-11-16T23:58:00", "break_started", "short", 300),
                                  plant("2026-11-17T00:03:00", "break_ended", "short", 300, "full"),
                                  plant("2026-11-17T00:03:00", "work_started", {}, 1500)};
        const auto days = HistorySummary::days(events, QDate(2026, 11, 16), QDate(2026, 11, 17),
                                               QDateTime(QDate(2026, 11, 17), QTime(0, 10)));
        QCOMPARE(days.at(0).breaks, 1);
        QCOMPARE(days.at(0).taken, 1);
        QCOMPARE(days.at(1).breaks, 0);
        QCOMPARE(days.at(1).taken, 0);
        // Today alone: no break began today, so none was taken today.
        const auto today = HistorySummary::days(events, QDate(2026, 11, 17), QDate(2026, 11, 17),
                                                QDateTime(QDate(2026, 11, 17), QTime(0, 10)));
        QCOMPARE(today.at(0).taken, 0);
        QVERIFY(HistorySummary::sentence(today).contains("0 of 0 breaks"));
    }

    void theBarsOfADayAreTheBreaksTheSentenceCounts()
    {
        qputenv("TZ", "Europe/Berlin");
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        // Three taken, one skipped, one cut short by a pause, and two postponements, one of a
        // break on the screen that came back and was taken.
        const QList<Event> events{
            plant(today + "T09:00:00", "break_started", "short", 300),
            plant(today + "T09:05:00", "break_ended", "short", 300, "full"),
            plant(today + "T09:30:00", "break_started", "short", 300),
            plant(today + "T09:35:00", "break_ended", "short", 300, "full"),
            plant(today + "T10:00:00", "break_started", "short", 300),
            plant(today + "T10:00:05", "break_ended", "short", 5, "skipped"),
            plant(today + "T10:30:00", "postponed", {}, 300),
            plant(today + "T11:00:00", "break_started", "short", 300),
            plant(today + "T11:00:05", "break_ended", "short", 5, "postponed"),
            plant(today + "T11:00:05", "postponed", {}, 300),
            plant(today + "T11:05:05", "break_started", "short", 300),
            plant(today + "T11:10:05", "break_ended", "short", 300, "full"),
            plant(today + "T12:00:00", "break_started", "short", 300),
            plant(today + "T12:01:00", "break_ended", "short", 60, "pause"),
        };
        const auto days = HistorySummary::days(events, QDate::currentDate(), QDate::currentDate(),
                                               QDateTime::currentDateTime().addDays(1));
        const HistorySummary::Day& day = days.at(0);
        QCOMPARE(day.breaks, 5);
        QCOMPARE(day.taken, 3);
        QCOMPARE(day.skipped, 1);
        QCOMPARE(day.cutShort(), 1);
        QCOMPARE(day.postponed, 2);
        QCOMPARE(day.taken + day.skipped + day.cutShort(), day.breaks);
        QVERIFY(HistorySummary::sentence(days).contains("3 of 5 breaks taken"));
        HistoryStore planted(QDir::homePath() + "/bars.sqlite");
        for (const Event& event : events)
            QVERIFY(planted.record(event));
        const QVariantMap shown = HistoryModel(planted).load(1);
        QCOMPARE(shown.value("maximum").toInt(), 5);
        QCOMPARE(shown.value("cutShort").toList().constFirst().toInt(), 1);
    }

    void aDaylightSavingChangeCountsTheRealHours()
    {
        qputenv("TZ", "Europe/Berlin");
        // 25 October 2026: at 03:00 summer time the clocks go back to 02:00.
        const QList<Event> events{plant("2026-10-25T01:30:00", "work_started", {}, 10800),
                                  plant("2026-10-25T03:30:00", "break_started", "long", 900)};
        const auto days = HistorySummary::days(events, QDate(2026, 10, 25), QDate(2026, 10, 25));
        QCOMPARE(days.at(0).screenSeconds, 3 * 3600); // two hours on the clock, three lived
        QCOMPARE(HistorySummary::duration(days.at(0).screenSeconds), "3 h 00 min");
    }

    void aPeriodCutShortCountsNoLongerThanItsCountdown()
    {
        qputenv("TZ", "Europe/Berlin");
        // Friday evening's period, then nothing until Monday: the computer was switched off.
        const QList<Event> events{plant("2026-11-20T17:00:00", "work_started", {}, 1500),
                                  plant("2026-11-23T09:00:00", "work_started", {}, 1500),
                                  // Monday: the countdown ran out and the break was held an hour.
                                  plant("2026-11-23T09:25:00", "held"),
                                  plant("2026-11-23T10:25:00", "break_started", "short", 300)};
        const auto days = HistorySummary::days(events, QDate(2026, 11, 20), QDate(2026, 11, 23),
                                               QDateTime(QDate(2026, 11, 23), QTime(12, 0)));
        QCOMPARE(days.at(0).screenSeconds, 25 * 60);
        QVERIFY(days.at(1).empty && days.at(2).empty);
        QCOMPARE(days.at(1).screenSeconds, 0);
        QCOMPARE(days.at(3).screenSeconds, 85 * 60);
        QCOMPARE(days.at(3).longestStretchSeconds, 85 * 60);
    }

    void aDaylightSavingChangeAtMidnightLosesNoTime()
    {
        // Havana, 8 March 2026: midnight does not exist, the clocks go from 23:59:59 to 01:00.
        qputenv("TZ", "America/Havana");
        const QList<Event> events{plant("2026-03-07T23:00:00", "work_started", {}, 4 * 3600),
                                  plant("2026-03-08T03:00:00", "paused", {}, 0, "menu")};
        const auto days = HistorySummary::days(events, QDate(2026, 3, 7), QDate(2026, 3, 8),
                                               QDateTime(QDate(2026, 3, 8), QTime(12, 0)));
        qputenv("TZ", "Europe/Berlin");
        QCOMPARE(days.at(0).screenSeconds, 3600);
        QCOMPARE(days.at(1).screenSeconds, 2 * 3600);
    }

    // The command line.

    void historyPrintsThePerDayTableWithoutADisplay()
    {
        QTemporaryDir data;
        qputenv("TZ", "Europe/Berlin");
        const QDate today = QDate::currentDate();
        const QString file = data.filePath("lulltide/history.sqlite");
        QList<Event> events;
        const QString day = today.addDays(-1).toString(Qt::ISODate);
        events << plant(day + "T09:00:00", "work_started", {}, 1500)
               << plant(day + "T09:25:00", "break_started", "short", 300)
               << plant(day + "T09:30:00", "break_ended", "short", 300, "full")
               << plant(day + "T09:30:00", "paused");
        writePlanted(file, events);
        const auto result = runCommandLine({"--history", "3"}, data.path());
        QCOMPARE(result.exitCode, 0);
        const QStringList lines = result.standardOutput.split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 5);
        QVERIFY(lines.at(0).startsWith("Date"));
        QVERIFY(lines.at(0).contains("Longest stretch"));
        QVERIFY2(lines.at(2).contains(QRegularExpression("^" + day + " +1 +1 +0 +0 +25 min +25 min$")),
                 qPrintable(lines.at(2)));
        QVERIFY(lines.at(1).contains(QRegularExpression(" +- +- +- +- +- +-$")));
        QCOMPARE(lines.at(4), "These 3 days: 1 of 1 breaks taken; longest stretch without a break: 25 min (" +
                                  QLocale::c().dayName(today.addDays(-1).dayOfWeek()) + ").");

        QCOMPARE(runCommandLine({"--history=0"}, data.path()).exitCode, 2);
        QCOMPARE(runCommandLine({"--history", "many"}, data.path()).exitCode, 2);
        QCOMPARE(runCommandLine({"--history", "--pause"}, data.path()).exitCode, 2);
        // Nothing recorded yet: an empty table, and no file made.
        QTemporaryDir empty;
        const auto nothing = runCommandLine({"--history"}, empty.path());
        QCOMPARE(nothing.exitCode, 0);
        QVERIFY(nothing.standardOutput.contains("This week: nothing recorded yet."));
        QVERIFY(!QFile::exists(empty.filePath("lulltide/history.sqlite")));
    }

    void historyCsvWritesTheRawEvents()
    {
        QTemporaryDir data;
        qputenv("TZ", "Europe/Berlin");
        writePlanted(data.filePath("lulltide/history.sqlite"),
                     {plant("2026-11-16T09:00:00", "work_started", {}, 1500),
                      plant("2026-11-16T09:25:00", "paused", {}, 0, "middle_click")});
        const auto result = runCommandLine({"--history-csv"}, data.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.standardOutput, "utc,local_date,kind,break_kind,seconds,detail\n"
                                        "2026-11-16T08:00:00.000Z,2026-11-16,work_started,,1500.000,\n"
                                        "2026-11-16T08:25:00.000Z,2026-11-16,paused,,0.000,middle_click\n");
        QCOMPARE(runCommandLine({"--history-csv", "3"}, data.path()).exitCode, 2);
    }

    void historyReadsAnUnreadableFileWithoutTouchingIt()
    {
        QTemporaryDir data;
        const QString file = data.filePath("lulltide/history.sqlite");
        QVERIFY(QDir().mkpath(data.filePath("lulltide")));
        QFile corrupt(file);
        QVERIFY(corrupt.open(QIODevice::WriteOnly));
        corrupt.write(QByteArray(8192, 'x'));
        corrupt.close();
        for (const QStringList& arguments : {QStringList{"--history-csv"}, QStringList{"--history"}}) {
            const auto result = runCommandLine(arguments, data.path());
            QCOMPARE(result.exitCode, 1);
            QCOMPARE(result.standardOutput, QString());
            QVERIFY2(result.standardError.startsWith("Cannot read the history file " + file +
                                                     ": it is not a readable database"),
                     qPrintable(result.standardError));
        }
        // Left as it was, for the running Lulltide to deal with.
        QCOMPARE(QDir(data.filePath("lulltide")).entryList(QDir::Files | QDir::Hidden),
                 QStringList{"history.sqlite"});
        QCOMPARE(QFile(file).size(), 8192);
    }

    void historyCsvQuotesWhatASpreadsheetWouldMisread()
    {
        QTemporaryDir data;
        writePlanted(data.filePath("lulltide/history.sqlite"),
                     {plant("2026-11-16T09:25:00", "paused", {}, 0, "a \"b\", c\x1b[31m\r")});
        const auto result = runCommandLine({"--history-csv"}, data.path());
        QCOMPARE(result.exitCode, 0);
        QCOMPARE(result.standardOutput.split('\n').at(1),
                 "2026-11-16T08:25:00.000Z,2026-11-16,paused,,0.000,\"a \"\"b\"\", c [31m \"");
    }

    void historyCsvKeepsASpreadsheetFromRunningAFieldAsAFormula()
    {
        QTemporaryDir data;
        writePlanted(data.filePath("lulltide/history.sqlite"),
                     {plant("2026-11-16T09:25:00", "paused", {}, 0, "=HYPERLINK(\"http://x\")"),
                      plant("2026-11-16T09:26:00", "paused", {}, 0, "+1"),
                      plant("2026-11-16T09:27:00", "paused", {}, 0, "-2"),
                      plant("2026-11-16T09:28:00", "paused", {}, 0, "@SUM(A1)"),
                      plant("2026-11-16T09:29:00", "paused", {}, 0, "\tcmd"),
                      plant("2026-11-16T09:30:00", "paused", {}, 0, "menu")});
        const auto result = runCommandLine({"--history-csv"}, data.path());
        QCOMPARE(result.exitCode, 0);
        const QStringList lines = result.standardOutput.split('\n');
        QCOMPARE(lines.at(1),
                 "2026-11-16T08:25:00.000Z,2026-11-16,paused,,0.000,\"'=HYPERLINK(\"\"http://x\"\")\"");
        QCOMPARE(lines.at(2).section(',', 5), "'+1");
        QCOMPARE(lines.at(3).section(',', 5), "'-2");
        QCOMPARE(lines.at(4).section(',', 5), "'@SUM(A1)");
        QCOMPARE(lines.at(5).section(',', 5), "' cmd");
        QCOMPARE(lines.at(6).section(',', 5), "menu");
    }

    void theHistoryIsReadableByItsOwnerOnly()
    {
        TicktackController::work(prefs().workTime());
        QVERIFY(QFile::exists(path));
        const auto mode = [](const QString& file) {
            struct stat status {};
            return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? int(status.st_mode & 0777)
                                                                             : -1;
        };
        QCOMPARE(mode(QFileInfo(path).absolutePath()), 0700);
        QCOMPARE(mode(path), 0600);
        QCOMPARE(mode(path + "-wal"), 0600);
        QCOMPARE(mode(path + "-shm"), 0600);
    }

    void readingTheHistoryChangesNothingOfAFileLeftWithItsJournal()
    {
        QTemporaryDir data;
        const QString file = data.filePath("lulltide/history.sqlite");
        writePlanted(file, {plant("2026-11-16T09:25:00", "work_started", {}, 1500)});
        // A writer that ended without closing (a crash, a power cut) leaves its journal behind,
        // holding the newest rows.
        QProcess writer;
        writer.start("python3",
                     {"-c",
                      "import sqlite3, os, sys\n"
                      "db = sqlite3.connect(sys.argv[1])\n"
                      "db.execute('PRAGMA journal_mode=WAL')\n"
                      "db.execute(\"INSERT INTO events (utc, local_date, kind, break_kind, seconds, "
                      "detail) VALUES ('2026-11-16T09:30:00.000Z', '2026-11-16', 'paused', '', 0, "
                      "'menu')\")\n"
                      "db.commit()\n"
                      "os._exit(0)\n",
                      file});
        QVERIFY(writer.waitForFinished(20000));
        QCOMPARE(writer.exitCode(), 0);
        QVERIFY(QFile::exists(file + "-wal"));
        const auto snapshot = [&file] {
            QStringList sums;
            for (const QString& name : {file, file + "-wal"}) {
                QFile f(name);
                f.open(QIODevice::ReadOnly);
                sums << QString::fromLatin1(
                    QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha256).toHex());
            }
            return sums;
        };
        const QStringList before = snapshot();
        const auto result = runCommandLine({"--history-csv"}, data.path());
        QCOMPARE(result.exitCode, 0);
        QVERIFY2(result.standardOutput.contains("paused,,0.000,menu"), qPrintable(result.standardOutput));
        QVERIFY(QFile::exists(file + "-wal"));
        QCOMPARE(snapshot(), before);
    }

private:
    static PromptState& prompt() { return AppState::promptState(); }
};

// The children: one store, records, what it said.
static int childMain(const QByteArray& mode)
{
    if (mode == "fill") {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlim_t kibibytes64 = rlim_t{64} * 1024;
        const rlimit limit{kibibytes64, kibibytes64};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        HistoryStore store(qEnvironmentVariable("LULLTIDE_TEST_HISTORY"));
        int recorded = 0;
        while (recorded < 1000 && store.record(plant("2026-11-16T09:00:00", "work_started", {}, 1500)))
            ++recorded;
        int after = 0;
        for (int i = 0; i < 5; ++i)
            after += store.record(plant("2026-11-16T09:30:00", "locked"));
        std::printf("recorded %d, then %s of 5\n", recorded, after == 0 ? "none" : "some");
        return 0;
    }
    if (mode != "record")
        return 2;
    HistoryStore store(qEnvironmentVariable("LULLTIDE_TEST_HISTORY"));
    const bool first = store.record(plant("2026-11-16T09:25:00", "locked"));
    const bool second = store.record(plant("2026-11-16T09:26:00", "unlocked"));
    std::printf("recorded: %s, %s\n", first ? "yes" : "no", second ? "yes" : "no");
    return 0;
}

static void beforeApplication()
{
    if (qEnvironmentVariableIsEmpty("LULLTIDE_TEST_KEEP_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TESTS_SOURCE_DIR "/support/screens.json");
    qputenv("QT_QUICK_BACKEND", "software");
    // The summaries' days and hours are those of one place, with a daylight-saving change.
    qputenv("TZ", "Europe/Berlin");
    TestSupport::startPrivateSessionBus();
}

int main(int argc, char* argv[])
{
    return TestSupport::runTests<HistoryTest>(argc, argv, childMain, beforeApplication);
}
#include "tst_history.moc"
