// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "cycle/AppState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusItem.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

class AppTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    static QString settingsPath(const QString& home) { return home + "/.config/lulltide/lulltide.conf"; }

    static QString logOf(const QString& home) { return TestSupport::logTextIn(home); }

    struct Rendered {
        int exitCode = -1;
        QString text;
        QString warnings;
    };

    // The manual page as man shows it on an 80-column terminal, with groff's warnings.
    static Rendered manPage(const QString& file)
    {
        QProcess man;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", "C");
        environment.insert("MANWIDTH", "80");
        environment.remove("MANPAGER");
        environment.remove("PAGER");
        man.setProcessEnvironment(environment);
        man.start("man", {"--warnings", "-l", file});
        if (!man.waitForFinished(30000))
            return {};
        return {man.exitStatus() == QProcess::NormalExit ? man.exitCode() : -1,
                QString::fromUtf8(man.readAllStandardOutput()),
                QString::fromUtf8(man.readAllStandardError())};
    }

    // Starts the real program in `home`, lets it run a moment, checks it is still running and
    // ends it the way a session logout does.
    static void launchAndTerminate(const QString& home)
    {
        QProcess app;
        app.setProcessEnvironment(TestSupport::environmentWithHome(home));
        app.start(LULLTIDE_BINARY, {});
        QVERIFY(app.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(logOf(home).contains("sandbox home path: "), 10000);
        QVERIFY(!app.waitForFinished(1500)); // still running
        app.terminate();
        QVERIFY(app.waitForFinished(5000));
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching();
    }

    void firstLaunchStartsAFullWorkPeriodAndTheItemShows2500()
    {
        QCOMPARE(AppState::working(), true);
        QVERIFY(ticks->running());
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(StatusBarController::item().title(), "25:00");
        ticks->tick();
        QCOMPARE(StatusBarController::item().title(), "24:59");
    }

    void pauseItemReadsStopWithTheStopImageRightAfterLaunch()
    {
        StatusMenuItem* pause = StatusBarController::menu().itemWithTag(AppState::pauseItemTag);
        QVERIFY(pause);
        QCOMPARE(pause->title(), "- Stop -");
        QCOMPARE(pause->image(), "stop.circle");
    }

    void launchingWritesNoSettingsFile() { QVERIFY(!QFile::exists(settingsPath(QDir::homePath()))); }

    void launchLogsTheHomeDirectory()
    {
        const QStringList lines = TestSupport::logLines();
        QVERIFY(
            lines.last().endsWith(" info org.lulltide.Lulltide : sandbox home path: " + QDir::homePath()));
    }

    void theLogSaysOnceWhereIdlenessIsSeenFrom()
    {
        QCOMPARE(TestSupport::logLines().filter("pointer idleness from the X server's input events").size(),
                 1);
    }

    void menuHoldsTheEntriesInOrder()
    {
        QStringList titles;
        for (StatusMenuItem* item : StatusBarController::menu().items())
            titles << (item->isSeparator() ? "---" : item->title());
        QCOMPARE(titles, QStringList({"Lulltide - v1.0.0(1)", "---", "- Stop -", "Settings...", "---",
                                      "Check for Updates...", "Feedback...", "About...", "Quit"}));
    }

    void installPutsAValidDesktopEntryMetadataAndIconInPlace()
    {
        QTemporaryDir prefix;
        QProcess install;
        install.start("cmake", {"--install", BUILD_DIR, "--prefix", prefix.path()});
        QVERIFY(install.waitForFinished(60000));
        QCOMPARE(install.exitCode(), 0);
        const QString share = prefix.path() + "/share/";
        QVERIFY(QFile::exists(prefix.path() + "/bin/lulltide"));
        QVERIFY(QFile::exists(share + "icons/hicolor/scalable/apps/org.lulltide.Lulltide.svg"));
        QVERIFY(QFile::exists(share + "icons/hicolor/scalable/status/org.lulltide.Lulltide-muyu.svg"));
        for (int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
            const QString png =
                share + QStringLiteral("icons/hicolor/%1x%1/apps/org.lulltide.Lulltide.png").arg(size);
            QVERIFY2(QImage(png).size() == QSize(size, size), qPrintable(png));
        }
        QVERIFY(QFile::exists(share + "metainfo/org.lulltide.Lulltide.metainfo.xml"));
        // The installed entry is the one the autostart entry is made from, with the program named
        // by its full path, which is how KWin finds the entry that asks for its window list.
        QFile installed(share + "applications/org.lulltide.Lulltide.desktop");
        QVERIFY(installed.open(QIODevice::ReadOnly));
        QFile shipped(TESTS_SOURCE_DIR "/../resources/org.lulltide.Lulltide.desktop");
        QVERIFY(shipped.open(QIODevice::ReadOnly));
        const QByteArray entry = installed.readAll();
        QCOMPARE(entry,
                 shipped.readAll().replace("\nExec=lulltide\n",
                                           "\nExec=" + QFile::encodeName(prefix.path()) + "/bin/lulltide\n"));
        QVERIFY(entry.contains("\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n"));

        QProcess validate;
        validate.start("desktop-file-validate", {share + "applications/org.lulltide.Lulltide.desktop"});
        QVERIFY(validate.waitForFinished());
        QVERIFY2(validate.exitCode() == 0, validate.readAllStandardOutput().constData());
        validate.start("appstreamcli", {"validate", "--pedantic", "--no-net",
                                        share + "metainfo/org.lulltide.Lulltide.metainfo.xml"});
        QVERIFY(validate.waitForFinished(30000));
        const QString report = validate.readAllStandardOutput();
        QVERIFY2(validate.exitCode() == 0, qPrintable(report));
        // The one remark left: the id has capitals, but it is also the D-Bus name and the name
        // of the desktop entry, the log files and the autostart entry, so it stays.
        for (const QString& line : report.split('\n')) {
            if (line.size() > 1 && line.at(1) == ':' && QStringLiteral("EWIP").contains(line.at(0)))
                QVERIFY2(line.contains(" cid-contains-uppercase-letter "), qPrintable(report));
        }
    }

    void installPutsTheManualPageInPlace()
    {
        QTemporaryDir prefix;
        QProcess install;
        install.start("cmake", {"--install", BUILD_DIR, "--prefix", prefix.path()});
        QVERIFY(install.waitForFinished(60000));
        QCOMPARE(install.exitCode(), 0);
        const QString page = prefix.path() + "/share/man/man1/lulltide.1";
        QVERIFY2(QFile::exists(page), qPrintable(page));
        QCOMPARE(manPage(page).exitCode, 0);
    }

    void manualPageRendersWithoutWarnings()
    {
        const Rendered rendered = manPage(BUILD_DIR "/docs/lulltide.1");
        QCOMPARE(rendered.exitCode, 0);
        QCOMPARE(rendered.warnings, "");
        for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS",
                                    "ENVIRONMENT", "FILES", "D-BUS INTERFACE", "EXAMPLES"})
            QVERIFY2(rendered.text.contains(QStringLiteral("\n%1\n").arg(section)), section);
    }

    void manualPageDescribesEveryOptionOfHelpAndEveryExitStatus()
    {
        QProcess help;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", "C.UTF-8");
        environment.remove("LANGUAGE");
        help.setProcessEnvironment(environment);
        help.start(LULLTIDE_BINARY, {"--help"});
        QVERIFY(help.waitForFinished(10000));
        QCOMPARE(help.exitCode(), 0);
        const QString helpText = QString::fromUtf8(help.readAllStandardOutput());
        QStringList options;
        QStringList statuses;
        static const QRegularExpression optionLine("^  (-\\w, )?(--[\\w-]+)");
        static const QRegularExpression statusLine("^  (\\d)  ");
        for (const QString& line : helpText.split('\n')) {
            if (const auto match = optionLine.match(line); match.hasMatch()) {
                if (match.hasCaptured(1))
                    options << match.captured(1).chopped(2);
                options << match.captured(2);
            }
            if (const auto match = statusLine.match(line); match.hasMatch())
                statuses << match.captured(1);
        }
        QVERIFY2(options.size() >= 10, qPrintable(helpText));
        QCOMPARE(statuses, QStringList({"0", "1", "2"}));

        const Rendered rendered = manPage(BUILD_DIR "/docs/lulltide.1");
        const QString optionsSection =
            rendered.text.section("\nOPTIONS\n", 1).section("\nEXIT STATUS\n", 0, 0);
        for (const QString& option : options) {
            const QRegularExpression named("(^|[\\s,])" + QRegularExpression::escape(option) + "($|[\\s,])");
            QVERIFY2(named.match(optionsSection).hasMatch(), qPrintable(option));
        }
        const QString exitStatus =
            rendered.text.section("\nEXIT STATUS\n", 1).section("\nENVIRONMENT\n", 0, 0);
        for (const QString& status : statuses)
            QVERIFY2(QRegularExpression("\\n +" + status + "\\s").match("\n" + exitStatus).hasMatch(),
                     qPrintable(status));
    }

    void applicationIconIsBuiltIn()
    {
        QVERIFY(QFile::exists(":/icons/org.lulltide.Lulltide.svg"));
        const QIcon icon(":/icons/org.lulltide.Lulltide.svg");
        QVERIFY(!icon.pixmap(64, 64).isNull());
    }

    void programRunsUntilTerminatedAndWritesNoSettings()
    {
        QTemporaryDir home;
        launchAndTerminate(home.path());
        const QString log = logOf(home.path());
        QVERIFY2(log.contains("hello Lulltide"), qPrintable(log));
        QVERIFY(log.contains(" : ticktack timer start 1500.0\n"));
        QVERIFY(log.contains(" : sandbox home path: " + home.path() + "\n"));
        QVERIFY(!QFile::exists(settingsPath(home.path())));
    }

    void relaunchStartsAFreshWorkPeriodOfFullLength()
    {
        QTemporaryDir home;
        launchAndTerminate(home.path());
        launchAndTerminate(home.path());
        const QString log = logOf(home.path());
        QCOMPARE(log.count(" : ticktack timer start 1500.0\n"), 2);
        QCOMPARE(log.count("hello Lulltide"), 2);
    }

    void programUsesTheStoredWorkLength()
    {
        QTemporaryDir home;
        QDir().mkpath(home.path() + "/.config/lulltide");
        QFile conf(settingsPath(home.path()));
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nwork_time=0.5\n");
        conf.close();
        launchAndTerminate(home.path());
        QVERIFY(logOf(home.path()).contains(" : ticktack timer start 30.0\n"));
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(AppTest, nullptr)
#include "tst_app.moc"
