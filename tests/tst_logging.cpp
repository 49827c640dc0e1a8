// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include "logging/FileHandlerOutputStream.h"
#include "logging/FileLogHandler.h"
#include "logging/FileLogging.h"
#include "logging/LogLine.h"
#include "logging/LogSetup.h"
#include "logging/Logger.h"
#include "logging/MultiplexLogHandler.h"
#include "statusbar/Feedback.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

const QString id = QStringLiteral("org.lulltide.Lulltide");
const QString today = QStringLiteral("20261122");

void touch(const QString& path, const QByteArray& contents = {})
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
}

QString readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

std::time_t noonOn(int year, int month, int day)
{
    std::tm date{};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    date.tm_hour = 12;
    date.tm_isdst = -1;
    return std::mktime(&date);
}

// Records what reaches it, for the multiplexer's tests.
class RecordingHandler : public LogHandler {
public:
    RecordingHandler(QStringList* record, QString name) : m_record(record), m_name(std::move(name)) {}
    void log(LogLevel, const QString& message, const LogMetadata&, const QString&, const QString&,
             const QString&, int) override
    {
        *m_record << m_name + u':' + message;
    }
    LogLevel logLevel() const override { return m_level; }
    void setLogLevel(LogLevel level) override { m_level = level; }
    LogMetadata metadata() const override { return {}; }
    void setMetadata(const LogMetadata&) override {}

private:
    QStringList* m_record;
    QString m_name;
    LogLevel m_level = LogLevel::info;
};

const QString stamp = QStringLiteral("\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d[+-]\\d{4}");

// Another program's corner of the shared log folder: a symbolic link loop, and a link that leads
// out of one of our folders into theirs (followed, it would put their file under our prefix).
void plantAnotherProgramsFolder(const QString& directory)
{
    touch(directory + "other.program/keep.log");
    QVERIFY(QFile::link("loop2", directory + "other.program/loop1"));
    QVERIFY(QFile::link("loop1", directory + "other.program/loop2"));
    QVERIFY(QFile::link("loopB", directory + "loopA"));
    QVERIFY(QFile::link("loopA", directory + "loopB"));
    QVERIFY(QDir().mkpath(directory + id + ".d"));
    QVERIFY(QFile::link("../other.program", directory + id + ".d/other"));
}

void verifyAnotherProgramsFolderIsUntouched(const QString& directory)
{
    QVERIFY(QFile::exists(directory + "other.program/keep.log"));
    QVERIFY(QFileInfo(directory + "other.program/loop1").isSymLink());
    QVERIFY(QFileInfo(directory + "other.program/loop2").isSymLink());
    QVERIFY(QFileInfo(directory + "loopA").isSymLink());
    QVERIFY(QFileInfo(directory + id + ".d/other").isSymLink());
}

// Runs this program again as a child in `mode` (see TestSupport::runChild), as the user nobody.
TestSupport::ChildResult runChildAsNobody(const QByteArray& mode, QProcessEnvironment environment)
{
    environment.insert("LULLTIDE_TEST_CHILD", QString::fromUtf8(mode));
    QProcess child;
    child.setProcessEnvironment(environment);
    child.start("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", "--",
                            QCoreApplication::applicationFilePath()});
    if (!child.waitForFinished(20000)) {
        child.kill();
        child.waitForFinished();
    }
    TestSupport::ChildResult result;
    result.crashed = child.exitStatus() == QProcess::CrashExit;
    result.exitCode = child.exitCode();
    result.standardOutput = QString::fromUtf8(child.readAllStandardOutput());
    result.standardError = QString::fromUtf8(child.readAllStandardError());
    return result;
}

// A file name that is not UTF-8, made from its bytes.
std::filesystem::path rawName(const QString& directory, const std::string& name)
{
    return std::filesystem::path(QFile::encodeName(directory).toStdString()) / name;
}

} // namespace

class LoggingTest : public QObject {
    Q_OBJECT

private slots:
    void fileNameJoinsIdentifierDateAndLog()
    {
        QCOMPARE(LogSetup::logFileName("com.example.app", "20240305"), "com.example.app.20240305.log");
        QCOMPARE(LogSetup::dateString(noonOn(2024, 3, 5), "en_US"), "20240305");
        QCOMPARE(LogSetup::todayString(), LogSetup::dateString(std::time(nullptr)));
    }

    void fileDateUsesTheWeekNumberingYear_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month");
        QTest::addColumn<int>("day");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        // In the US the week of 29 December 2024 is the first of 2025.
        QTest::newRow("US, 30 Dec 2024") << 2024 << 12 << 30 << "en_US"
                                         << "20251230";
        QTest::newRow("US, 1 Jan 2021") << 2021 << 1 << 1 << "en_US"
                                        << "20210101";
        // By ISO rules 1 January 2021 still belongs to the last week of 2020.
        QTest::newRow("Germany, 1 Jan 2021") << 2021 << 1 << 1 << "de_DE"
                                             << "20200101";
        QTest::newRow("Germany, mid-year") << 2024 << 7 << 15 << "de_DE"
                                           << "20240715";
    }
    void fileDateUsesTheWeekNumberingYear()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(int, day);
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QCOMPARE(LogSetup::dateString(noonOn(year, month, day), locale.toLatin1().constData()), text);
    }

    void logDirectoryIsLogsInTheXdgCache()
    {
        QCOMPARE(LogSetup::logDirectory(), QDir::homePath() + "/.cache/Logs/");
        QCOMPARE(*Logger::logfilePath(),
                 QDir::homePath() + "/.cache/Logs/org.lulltide.Lulltide." + LogSetup::todayString() + ".log");
    }

    void freshDirectoryIsCreatedAndNothingDeleted()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/deep/Logs/";
        QString error;
        QVERIFY2(LogSetup::prepareDirectory(directory, id, today, &error), qPrintable(error));
        QVERIFY(QFileInfo(directory).isDir());
        QVERIFY(QDir(directory).isEmpty());
    }

    void aFreshFolderHasNothingDeletedEvenWhenAnOldLogAppearsInIt()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        const QString planted = directory + id + ".20261101.log";
        QString error;
        const bool prepared =
            LogSetup::prepareDirectory(directory, id, today, &error, [&](const QString& folder, QString*) {
                // Another writer drops an old day's log in the moment the folder exists.
                touch(planted);
                return QFileInfo(folder).isDir();
            });
        QVERIFY2(prepared, qPrintable(error));
        QVERIFY(QFile::exists(planted));
    }

    void existingLogOfTodayIsAppendedToNotTruncatedAndSurvivesCleanup()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        const QString file = directory + LogSetup::logFileName(id, today);
        touch(file, "earlier launch\n");

        QString error;
        QVERIFY(LogSetup::prepareDirectory(directory, id, today, &error));
        QVERIFY(QFile::exists(file));
        for (int launch = 0; launch < 2; ++launch) {
            auto fileLogging = FileLogging::to(file, &error);
            QVERIFY2(fileLogging, qPrintable(error));
            fileLogging->handler("label")->log(LogLevel::info, QString("launch %1").arg(launch), {}, {}, {},
                                               {}, 0);
        }
        const QStringList lines = readAll(file).split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 3);
        QCOMPARE(lines.at(0), "earlier launch");
        QVERIFY(lines.at(1).endsWith(" info label : launch 0"));
        QVERIFY(lines.at(2).endsWith(" info label : launch 1"));
    }

    void cleanupRemovesOnlyOtherDaysLogsOfThisApplication()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        const QStringList kept{
            id + ".20261122.log",          // today
            id + ".20261121.txt",          // not a log
            "other.app.20261121.log",      // another program's
            "notes.log",                   // no prefix
            id + ".old-20261122-copy.log", // today's date anywhere
            "sub/" + id + ".20261120.txt",
        };
        const QStringList removed{
            id + ".20261121.log",
            id + ".20251230.log",
            id + "-backup.log",
        };
        for (const QString& name : kept + removed)
            touch(directory + name);

        QString error;
        QVERIFY2(LogSetup::prepareDirectory(directory, id, today, &error), qPrintable(error));
        for (const QString& name : kept)
            QVERIFY2(QFile::exists(directory + name), qPrintable(name));
        for (const QString& name : removed)
            QVERIFY2(!QFile::exists(directory + name), qPrintable(name));
    }

    void cleanupIsRecursiveForPathsThatBeginWithTheIdentifier()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        touch(directory + id + "/nested/older.log");
        touch(directory + id + "/nested/today-" + today + ".log");
        touch(directory + "elsewhere/" + id + ".20261101.log"); // relative path starts with "elsewhere"

        QString error;
        QVERIFY2(LogSetup::prepareDirectory(directory, id, today, &error), qPrintable(error));
        QVERIFY(!QFile::exists(directory + id + "/nested/older.log"));
        QVERIFY(QFile::exists(directory + id + "/nested/today-" + today + ".log"));
        QVERIFY(QFile::exists(directory + "elsewhere/" + id + ".20261101.log"));
    }

    void cleanupEntersNoOtherProgramsFolderAndFollowsNoLink()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        plantAnotherProgramsFolder(directory);
        touch(directory + id + ".20261101.log");
        touch(directory + id + ".d/" + "older.log");

        QString error;
        QVERIFY2(LogSetup::prepareDirectory(directory, id, today, &error), qPrintable(error));
        verifyAnotherProgramsFolderIsUntouched(directory);
        QVERIFY(!QFile::exists(directory + id + ".20261101.log"));
        QVERIFY(!QFile::exists(directory + id + ".d/older.log"));
    }

    void oldLogWhoseNameIsNotUtf8IsRemoved()
    {
        QTemporaryDir root;
        const QString directory = root.path() + "/Logs/";
        QVERIFY(QDir().mkpath(directory));
        const char notUtf8 = char(0xff);
        const auto old = rawName(directory, id.toStdString() + ".2026" + notUtf8 + "1101.log");
        const auto todays =
            rawName(directory, id.toStdString() + '.' + notUtf8 + '.' + today.toStdString() + ".log");
        const auto foreign = rawName(directory, "other." + std::string(1, notUtf8) + ".20261101.log");
        for (const auto& path : {old, todays, foreign})
            std::ofstream(path).put('x');
        QVERIFY(std::filesystem::exists(old));

        QString error;
        QVERIFY2(LogSetup::prepareDirectory(directory, id, today, &error), qPrintable(error));
        QVERIFY(!std::filesystem::exists(old));
        QVERIFY(std::filesystem::exists(todays));
        QVERIFY(std::filesystem::exists(foreign));
        // QTemporaryDir cannot name what is not UTF-8.
        std::filesystem::remove_all(QFile::encodeName(root.path()).toStdString());
    }

    void anotherProgramsLockedFolderAndLinkLoopLeaveFileLoggingWorking()
    {
        QTemporaryDir home;
        const QString directory = home.path() + "/.cache/Logs/";
        plantAnotherProgramsFolder(directory);
        touch(directory + "other.program/locked/" + id + ".20261101.log");
        touch(directory + id + ".20261101.log");
        QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
        // Root opens every folder: the program runs as an ordinary user, for whom a folder can
        // be locked, without root's display (it needs none to log).
        const bool asNobody = geteuid() == 0;
        if (asNobody) {
            for (const QString& folder : {home.path(), home.path() + "/.cache", directory})
                QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
            environment.insert("QT_QPA_PLATFORM", "offscreen");
            environment.remove("XDG_RUNTIME_DIR");
        }
        QFile::setPermissions(directory + "other.program/locked", QFileDevice::Permissions());

        const auto child = asNobody ? runChildAsNobody("log-once", environment)
                                    : TestSupport::runChild("log-once", environment);
        QFile::setPermissions(directory + "other.program/locked", QFileDevice::Permissions(0x7700));
        QCOMPARE(child.exitCode, 0);
        QVERIFY2(!child.standardOutput.contains("create logger error"), qPrintable(child.standardOutput));
        const QString fileText = readAll(directory + id + "." + LogSetup::todayString() + ".log");
        QVERIFY2(fileText.contains(" info org.lulltide.Lulltide : from the child\n"), qPrintable(fileText));
        verifyAnotherProgramsFolderIsUntouched(directory);
        QVERIFY(QFile::exists(directory + "other.program/locked/" + id + ".20261101.log"));
        QVERIFY(!QFile::exists(directory + id + ".20261101.log"));
    }

    void fileLoggingMakesALoggerThatWritesOnlyToItsFile()
    {
        QTemporaryDir root;
        const QString file = root.path() + "/own.log";
        QString error;
        auto own = FileLogging::logger("com.example.tool", file, &error);
        QVERIFY2(own, qPrintable(error));
        own->info("to the file");
        own->debug("below the level");
        QVERIFY(readAll(file).endsWith(" info com.example.tool : to the file\n"));
        QCOMPARE(readAll(file).count('\n'), 1);
    }

    void fileThatCannotBeCreatedIsReported()
    {
        QTemporaryDir root;
        QString error;
        QVERIFY(!FileHandlerOutputStream::open(root.path() + "/missing/folder/x.log", &error));
        QVERIFY2(error.startsWith("couldNotCreateFile"), qPrintable(error));
    }

    void lineWithoutMetadataReadsTimestampLevelLabelColonMessage()
    {
        QTemporaryDir root;
        const QString file = root.path() + "/a.log";
        QString error;
        auto handler = FileLogHandler::create("com.example.app", file, &error);
        QVERIFY(handler);
        handler->log(LogLevel::info, "hello there", {}, "Source", "file.cpp", "function()", 12);
        const QRegularExpression line("^" + stamp + " info com\\.example\\.app : hello there\\n$");
        QVERIFY2(line.match(readAll(file)).hasMatch(), qPrintable(readAll(file)));
    }

    void lineWithHandlerMetadataPutsItBetweenColonAndMessage()
    {
        QTemporaryDir root;
        const QString file = root.path() + "/a.log";
        QString error;
        auto handler = FileLogHandler::create("lbl", file, &error);
        handler->setMetadataValue("k", "v");
        QCOMPARE(*handler->prettyMetadata(), "k=v");
        handler->log(LogLevel::warning, "message", {}, {}, {}, {}, 0);
        const QRegularExpression line("^" + stamp + " warning lbl : k=v message\\n$");
        QVERIFY2(line.match(readAll(file)).hasMatch(), qPrintable(readAll(file)));
    }

    void callMetadataIsMergedAndWinsOnEqualKeys()
    {
        QTemporaryDir root;
        const QString file = root.path() + "/a.log";
        QString error;
        auto handler = FileLogHandler::create("lbl", file, &error);
        handler->setMetadata({{"a", "1"}, {"k", "handler"}});
        handler->log(LogLevel::info, "m", {{"k", "call"}}, {}, {}, {}, 0);
        QVERIFY2(readAll(file).contains(" lbl : a=1 k=call m\n"), qPrintable(readAll(file)));
    }

    void timestampIsLocalTimeWithANumericZoneWithoutColon()
    {
        const QByteArray zone = qgetenv("TZ");
        qputenv("TZ", "Asia/Shanghai");
        tzset();
        const QString text = LogLine::timestamp();
        qputenv("TZ", zone);
        tzset();
        QVERIFY2(
            QRegularExpression("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\+0800$").match(text).hasMatch(),
            qPrintable(text));
    }

    void textTheEncodingCannotHoldIsDropped()
    {
        QTemporaryDir root;
        const QString file = root.path() + "/latin1.log";
        QString error;
        auto stream = FileHandlerOutputStream::open(file, &error, QStringConverter::Latin1);
        QVERIFY(stream);
        stream->write("plain\n");
        stream->write("不能\n");
        QCOMPARE(readAll(file), "plain\n");
    }

    void multiplexerForwardsToEveryHandlerInOrder()
    {
        QStringList record;
        std::vector<std::unique_ptr<LogHandler>> handlers;
        handlers.push_back(std::make_unique<RecordingHandler>(&record, "first"));
        handlers.push_back(std::make_unique<RecordingHandler>(&record, "second"));
        handlers.back()->setLogLevel(LogLevel::error);
        Logger logger("test", std::make_unique<MultiplexLogHandler>(std::move(handlers)));
        logger.info("one");
        logger.error("two");
        logger.debug("dropped");
        QCOMPARE(record, QStringList({"first:one", "first:two", "second:two"}));
    }

    void processLoggerGreetsInTheDaysFileAndOnStandardOutput()
    {
        QTemporaryDir home;
        const QString directory = home.path() + "/.cache/Logs/";
        touch(directory + id + ".20000101.log"); // an old day's log
        const auto child = TestSupport::runChild("log-once", TestSupport::environmentWithHome(home.path()));
        QCOMPARE(child.exitCode, 0);

        const QString greeting = "~~~~~~~~~~~~~~~~~~~~~~~~hello Lulltide~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~";
        const QString fileText = readAll(directory + id + "." + LogSetup::todayString() + ".log");
        const QRegularExpression first("^" + stamp + " info org\\.lulltide\\.Lulltide : " +
                                       QRegularExpression::escape(greeting) + "\\n");
        QVERIFY2(first.match(fileText).hasMatch(), qPrintable(fileText));
        QVERIFY(fileText.contains(" info org.lulltide.Lulltide : from the child\n"));
        QVERIFY2(child.standardOutput.contains(greeting), qPrintable(child.standardOutput));
        QVERIFY(child.standardOutput.contains("from the child"));
        QVERIFY(!QFile::exists(directory + id + ".20000101.log"));
    }

    void feedbackMailAfterMidnightAttachesTheLogThatIsOpen()
    {
        QTemporaryDir home;
        QTemporaryDir tools;
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-email");
        QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
        environment.insert("PATH", tools.path() + ":" + environment.value("PATH"));
        const auto child = TestSupport::runChild("mail-after-midnight", environment);
        QCOMPARE(child.exitCode, 0);

        // Opened on 5 March, still open on the 6th: the mail carries the file that holds the run.
        const QString opened = home.path() + "/.cache/Logs/" + id + ".20240305.log";
        QTRY_COMPARE_WITH_TIMEOUT(TestSupport::recordedArguments(record).size(), 7, 10000);
        const QStringList arguments = TestSupport::recordedArguments(record);
        QCOMPARE(arguments.at(arguments.indexOf("--attach") + 1), opened);
        QVERIFY2(readAll(opened).contains(" : before midnight\n"), qPrintable(readAll(opened)));
    }

    void setupFailurePrintsCreateLoggerErrorAndRunsOnWithoutAFile()
    {
        QTemporaryDir home;
        // The log folder is a file: nothing can be listed, created or written in it.
        touch(home.path() + "/.cache/Logs");
        const auto child = TestSupport::runChild("log-once", TestSupport::environmentWithHome(home.path()));
        QCOMPARE(child.exitCode, 0);
        const QStringList lines = child.standardOutput.split('\n', Qt::SkipEmptyParts);
        QVERIFY2(lines.size() >= 3, qPrintable(child.standardOutput));
        QVERIFY2(lines.at(0).startsWith("create logger error: "), qPrintable(lines.at(0)));
        QVERIFY(lines.at(1).contains("hello Lulltide"));
        QVERIFY(lines.at(2).endsWith("from the child"));
        QVERIFY(QFileInfo(home.path() + "/.cache/Logs").isFile());
    }
};

static std::time_t childClock = 0;

static int childMain(const QByteArray& mode)
{
    if (mode == "log-once")
        logger().info("from the child");
    if (mode == "mail-after-midnight") {
        std::tm lastSecond{};
        lastSecond.tm_year = 2024 - 1900;
        lastSecond.tm_mon = 2;
        lastSecond.tm_mday = 5;
        lastSecond.tm_hour = 23;
        lastSecond.tm_min = 59;
        lastSecond.tm_sec = 59;
        lastSecond.tm_isdst = -1;
        childClock = std::mktime(&lastSecond);
        LogSetup::setClock([] { return childClock; });
        logger().info("before midnight");
        childClock += 2;
        Feedback::compose();
    }
    return 0;
}

LULLTIDE_TEST_MAIN_WITH_CHILD(LoggingTest, childMain)
#include "tst_logging.moc"
