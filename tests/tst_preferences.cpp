// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "cycle/AppState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "preferences/LoginItem.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"
#include "preferences/SettingsStore.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusItem.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

// Turns launch at login on in a process of its own, so that its standard error and its
// day's log can be read.
int childMain(const QByteArray& mode)
{
    if (mode != "launch-at-login")
        return 2;
    PrefState prefs;
    prefs.setLaunchAtLogin(true);
    return prefs.launchAtLogin() ? 0 : 1;
}

} // namespace

class PreferencesTest : public QObject {
    Q_OBJECT

    QString settingsPath() const
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
               QStringLiteral("/lulltide/lulltide.conf");
    }
    QString settingsFileText() const
    {
        QFile file(settingsPath());
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    void clearSettings()
    {
        SettingsStore::settings().clear();
        SettingsStore::save();
    }

    // A program in `folder` that writes the path it was started by next to itself.
    static QString writeRecordingProgram(const QString& folder)
    {
        QDir().mkpath(folder);
        QString program = folder + "/lulltide";
        QFile script(program);
        if (script.open(QIODevice::WriteOnly))
            script.write("#!/bin/sh\nprintf '%s' \"$0\" > \"$(dirname \"$0\")/started\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        return program;
    }
    static QString recordedStart(const QString& program)
    {
        QFile record(QFileInfo(program).absolutePath() + "/started");
        return record.open(QIODevice::ReadOnly) ? QString::fromUtf8(record.readAll()) : QString();
    }
    static QString writeEntry(const QString& folder, const QString& program)
    {
        QString entry = folder + "/org.lulltide.Lulltide.desktop";
        QFile file(entry);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(LoginItem::entryText(program).toUtf8());
        return entry;
    }
    // The escapes of a string value, written out independently of the program's own code.
    static QString stringValue(const QString& text)
    {
        QString escaped = text;
        return escaped.replace("\\", "\\\\").replace("\n", "\\n").replace("\t", "\\t").replace("\r", "\\r");
    }
    // One quoted Exec argument read back: string escapes undone, then the quoting, then "%%".
    static QString execArgument(const QString& value)
    {
        QString unescaped;
        for (qsizetype i = 0; i < value.size(); ++i) {
            if (value.at(i) == '\\' && i + 1 < value.size()) {
                const QChar next = value.at(++i);
                unescaped += next == 's'   ? QChar(' ')
                             : next == 'n' ? QChar('\n')
                             : next == 't' ? QChar('\t')
                             : next == 'r' ? QChar('\r')
                                           : next;
            } else {
                unescaped += value.at(i);
            }
        }
        if (unescaped.size() < 2 || !unescaped.startsWith('"') || !unescaped.endsWith('"'))
            return "not one quoted argument: " + unescaped;
        QString argument;
        for (qsizetype i = 1; i < unescaped.size() - 1; ++i) {
            QChar character = unescaped.at(i);
            if (character == '"' || character == '`' || character == '$')
                return "unescaped " + QString(character) + " in: " + unescaped;
            if (character == '\\') {
                character = unescaped.at(++i);
                if (!QString("\"`$\\").contains(character))
                    return "a backslash before " + QString(character) + " in: " + unescaped;
            } else if (character == '%') {
                if (unescaped.at(++i) != '%')
                    return "a field code in: " + unescaped;
            }
            argument += character;
        }
        return argument;
    }

private slots:
    void initTestCase() { TicktackController::setTickSource(std::make_unique<ManualTickSource>()); }

    // Runs first, while nothing has been written.
    void creatingTheStoreWritesNothing()
    {
        PrefState prefs;
        // Reading every value, derived ones included, writes nothing either.
        prefs.launchAtLogin();
        prefs.workTime();
        prefs.shortBreakTimes();
        prefs.styleState()->breakStyle();
        QVERIFY(!QFile::exists(settingsPath()));
        QVERIFY(!QFile::exists(LoginItem::entryPath()));
    }

    void settingsLiveInTheXdgConfigFolder()
    {
        QCOMPARE(SettingsStore::settings().fileName(), settingsPath());
        QVERIFY(settingsPath().startsWith(QDir::homePath() + QStringLiteral("/.config/")));
    }

    void freshSettingsGiveTheDefaultLengths()
    {
        clearSettings();
        PrefState prefs;
        QCOMPARE(prefs.workTime(), 1500.0);
        QCOMPARE(prefs.breakTime(), 300.0);
        QCOMPARE(prefs.shortBreakTimes(), 4);
        QCOMPARE(prefs.longBreakTime(), 900.0);
    }

    void freshSettingsHaveEveryDefault()
    {
        clearSettings();
        PrefState prefs;
        QCOMPARE(prefs.launchAtLogin(), false);
        QCOMPARE(prefs.showTime(), true);
        QCOMPARE(prefs.autoCheckUpdate(), true);
        QCOMPARE(prefs.workTimeString(), "25");
        QCOMPARE(prefs.breakTimeString(), "300");
        QCOMPARE(prefs.customBreakPrompt(), false);
        QCOMPARE(prefs.breakPrompt(), "堂堂七尺少年郎, 躺上一躺又何妨");
        QCOMPARE(prefs.shortBreakTimesString(), "4");
        QCOMPARE(prefs.longBreakTimeString(), "15");
        QCOMPARE(prefs.customLongBreakPrompt(), false);
        QCOMPARE(prefs.longBreakPrompt(),
                 "地球不会因你停下来而停止转动\\n老板不会因你摸鱼而不挣钱\\n所以\\n不要犹豫");
        QCOMPARE(prefs.forceLongBreak(), false);
        QCOMPARE(prefs.restartTimerAfterAwake(), true);
        QCOMPARE(prefs.stopTimerAfterMouseStop(), true);
        QCOMPARE(prefs.showNewDayTip(), false);
        QCOMPARE(prefs.lastWeakupTimestamp(), 0.0);
    }

    void defaultLongBreakPromptHoldsBackslashNPairsAndNoLineFeeds()
    {
        clearSettings();
        const QString prompt = PrefState().longBreakPrompt();
        QCOMPARE(prompt.count(QStringLiteral("\\n")), 3);
        QVERIFY(!prompt.contains(u'\n'));
        QCOMPARE(prompt.toUtf8().size(), 102);
    }

    void everyPropertyIsStoredAtOnceUnderItsKey()
    {
        clearSettings();
        PrefState prefs;
        prefs.setShowTime(false);
        prefs.setAutoCheckUpdate(false);
        prefs.setWorkTimeString(QStringLiteral("30"));
        prefs.setBreakTimeString(QStringLiteral("120"));
        prefs.setCustomBreakPrompt(true);
        prefs.setBreakPrompt(QStringLiteral("站起来, 走一走"));
        prefs.setShortBreakTimesString(QStringLiteral("3"));
        prefs.setLongBreakTimeString(QStringLiteral("20"));
        prefs.setCustomLongBreakPrompt(true);
        prefs.setLongBreakPrompt(QStringLiteral("a\\nb"));
        prefs.setForceLongBreak(true);
        prefs.setRestartTimerAfterAwake(false);
        prefs.setStopTimerAfterMouseStop(false);
        prefs.setShowNewDayTip(true);
        prefs.setLastWeakupTimestamp(1732251234.5);

        // Another reader of the file sees every value under its exact key.
        QSettings file(settingsPath(), QSettings::IniFormat);
        QCOMPARE(file.value("show_time_in_status_bar").toString(), "false");
        QCOMPARE(file.value("auto_check_update").toString(), "false");
        QCOMPARE(file.value("work_time").toString(), "30");
        QCOMPARE(file.value("break_time").toString(), "120");
        QCOMPARE(file.value("custom_break_prompt").toString(), "true");
        QCOMPARE(file.value("break_prompt_text").toString(), "站起来, 走一走");
        QCOMPARE(file.value("short_break_times").toString(), "3");
        QCOMPARE(file.value("long_break_time").toString(), "20");
        QCOMPARE(file.value("custom_long_break_prompt").toString(), "true");
        QCOMPARE(file.value("long_break_prompt_text").toString(), "a\\nb");
        QCOMPARE(file.value("force_long_break").toString(), "true");
        QCOMPARE(file.value("restart_timer_after_awake").toString(), "false");
        QCOMPARE(file.value("stop_timer_after_mouse_stop").toString(), "false");
        QCOMPARE(file.value("show_new_day_tip").toString(), "true");
        QCOMPARE(file.value("last_weakup_timestamp").toDouble(), 1732251234.5);

        // Text is kept as typed, in UTF-8, at the top level of the file.
        const QString text = settingsFileText();
        QVERIFY2(text.startsWith(QLatin1String("[General]")), qPrintable(text));
        QVERIFY2(text.contains(QStringLiteral("站起来")), qPrintable(text));

        // And a new store reads them back.
        PrefState again;
        QCOMPARE(again.workTime(), 1800.0);
        QCOMPARE(again.breakPrompt(), "站起来, 走一走");
        QCOMPARE(again.lastWeakupTimestamp(), 1732251234.5);
    }

    void workTimeParsesMinutesWithAFallbackOf25_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds");
        QTest::newRow("half a minute") << "0.5" << 30.0;
        QTest::newRow("letters") << "abc" << 1500.0;
        QTest::newRow("empty") << "" << 1500.0;
        QTest::newRow("number then letters") << "25min" << 1500.0;
        QTest::newRow("leading plus") << "+2" << 120.0;
        QTest::newRow("exponent") << "1e1" << 600.0;
        QTest::newRow("negative is not rejected") << "-1" << -60.0;
        QTest::newRow("infinity is not a length") << "inf" << 1500.0;
        QTest::newRow("blank around") << " 5" << 1500.0;
    }
    void everyNumberOfTheTimingTabStaysInItsRangeWhateverTheFileHolds_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("expected");
        const QStringList hostile{"1e300", "-1e300", "nan", "inf", "1e-300", "", "text"};
        // Too large, too small, not a number: each read gives the bound or the default.
        const QMap<QString, QList<double>> expectations{
            {"heads_up_seconds", {600, 10, 60, 60, 10, 60, 60}},
            {"postpone_minutes", {1440 * 60, 60, 300, 300, 60, 300, 300}},
            {"postpone_limit", {2, 2, 2, 2, 2, 2, 2}},
            {"hold_limit_minutes", {1440 * 60, 0, 3600, 3600, 1e-300 * 60, 3600, 3600}},
        };
        for (auto it = expectations.cbegin(); it != expectations.cend(); ++it) {
            for (qsizetype i = 0; i < hostile.size(); ++i)
                QTest::addRow("%s=%s", qPrintable(it.key()), qPrintable(hostile.at(i)))
                    << it.key() << hostile.at(i) << it.value().at(i);
        }
        QTest::newRow("postpone_limit=99") << "postpone_limit"
                                           << "99" << 5.0;
        QTest::newRow("postpone_limit=-3") << "postpone_limit"
                                           << "-3" << 1.0;
        QTest::newRow("postpone_minutes=2000") << "postpone_minutes"
                                               << "2000" << 1440.0 * 60;
        QTest::newRow("postpone_minutes=1e17") << "postpone_minutes"
                                               << "1e17" << 1440.0 * 60;
    }
    void everyNumberOfTheTimingTabStaysInItsRangeWhateverTheFileHolds()
    {
        QFETCH(QString, key);
        QFETCH(QString, text);
        QFETCH(double, expected);
        SettingsStore::settings().setValue(key, text);
        PrefState prefs;
        const QMap<QString, double> read{
            {"heads_up_seconds", prefs.headsUpSeconds()},
            {"postpone_minutes", prefs.postponeTime()},
            {"postpone_limit", double(prefs.postponeLimit())},
            {"hold_limit_minutes", prefs.holdLimit()},
        };
        QCOMPARE(read.value(key), expected);
        SettingsStore::settings().remove(key);
    }

    void workTimeParsesMinutesWithAFallbackOf25()
    {
        QFETCH(QString, text);
        QFETCH(double, seconds);
        PrefState prefs;
        prefs.setWorkTimeString(text);
        QCOMPARE(prefs.workTime(), seconds);
        // Nothing is corrected in storage.
        QCOMPARE(prefs.workTimeString(), text);
    }

    void breakTimesParseWithTheirFallbacks()
    {
        PrefState prefs;
        prefs.setBreakTimeString(QStringLiteral("45.5"));
        QCOMPARE(prefs.breakTime(), 45.5);
        prefs.setBreakTimeString(QStringLiteral("five"));
        QCOMPARE(prefs.breakTime(), 300.0);
        prefs.setLongBreakTimeString(QStringLiteral("2"));
        QCOMPARE(prefs.longBreakTime(), 120.0);
        prefs.setLongBreakTimeString(QString());
        QCOMPARE(prefs.longBreakTime(), 900.0);
    }

    void shortBreakTimesTakesOnlyWholeNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("count");
        QTest::newRow("2.5 is not whole") << "2.5" << qint64(4);
        QTest::newRow("+3") << "+3" << qint64(3);
        QTest::newRow("3") << "3" << qint64(3);
        QTest::newRow("-2") << "-2" << qint64(-2);
        QTest::newRow("empty") << "" << qint64(4);
        QTest::newRow("letters") << "x" << qint64(4);
        QTest::newRow("blank before") << " 3" << qint64(4);
        QTest::newRow("two signs") << "+-3" << qint64(4);
        QTest::newRow("beyond 64 bits") << "99999999999999999999" << qint64(4);
        QTest::newRow("zero") << "0" << qint64(0);
    }
    void shortBreakTimesTakesOnlyWholeNumbers()
    {
        QFETCH(QString, text);
        QFETCH(qint64, count);
        PrefState prefs;
        prefs.setShortBreakTimesString(text);
        QCOMPARE(prefs.shortBreakTimes(), count);
    }

    void observersRunOnEveryAssignmentAlsoOfTheSameValue()
    {
        PrefState prefs;
        QSignalSpy changed(&prefs, &PrefState::workTimeStringChanged);
        prefs.setWorkTimeString(QStringLiteral("25"));
        prefs.setWorkTimeString(QStringLiteral("25"));
        QCOMPARE(changed.count(), 2);
    }

    void settingLaunchAtLoginToItsCurrentValueRegistersAgain()
    {
        PrefState prefs;
        const QString entry = LoginItem::entryPath();
        QVERIFY(entry.endsWith(QLatin1String("/autostart/org.lulltide.Lulltide.desktop")));

        prefs.setLaunchAtLogin(true);
        QVERIFY(QFile::exists(entry));
        QFile file(entry);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QVERIFY(text.startsWith(QLatin1String("[Desktop Entry]\n")));
        QVERIFY(text.contains(QLatin1String("\nExec=")));
        file.close();

        // Gone behind our back, then set to the same value: written again.
        QVERIFY(QFile::remove(entry));
        prefs.setLaunchAtLogin(true);
        QVERIFY(QFile::exists(entry));

        prefs.setLaunchAtLogin(false);
        QVERIFY(!QFile::exists(entry));
        // Put back behind our back, then set to false again: removed again.
        QVERIFY(QFile::copy(QStringLiteral(TESTS_SOURCE_DIR "/tst_preferences.cpp"), entry));
        prefs.setLaunchAtLogin(false);
        QVERIFY(!QFile::exists(entry));
        QCOMPARE(prefs.launchAtLogin(), false);
    }

    void autostartEntryIsTheDesktopEntryStartingThisProgram()
    {
        PrefState prefs;
        prefs.setLaunchAtLogin(true);
        QFile written(LoginItem::entryPath());
        QVERIFY(written.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(written.readAll());
        QFile shipped(TESTS_SOURCE_DIR "/../resources/org.lulltide.Lulltide.desktop");
        QVERIFY(shipped.open(QIODevice::ReadOnly));
        const QString desktop = QString::fromUtf8(shipped.readAll());
        // Every line of the desktop entry, and GNOME's switch at the end of the main group. (Only a
        // program named lulltide outside PATH names itself by path; this one is a test.)
        QString expected = desktop;
        expected.replace("\n\n[Desktop Action pause]",
                         "\nX-GNOME-Autostart-enabled=true\n\n[Desktop Action pause]");
        expected.replace("\nExec=lulltide\n", "\nExec=lulltide\nTryExec=lulltide\n");
        QCOMPARE(text, expected);
        prefs.setLaunchAtLogin(false);
    }

    void autostartEntryFollowsTheInstalledDesktopEntry()
    {
        // A packager's adapted entry, installed where the desktop looks for applications.
        const QString applications = QDir::homePath() + "/.local/share/applications";
        QVERIFY(QDir().mkpath(applications));
        QFile installed(applications + "/org.lulltide.Lulltide.desktop");
        QVERIFY(installed.open(QIODevice::WriteOnly));
        installed.write(
            "[Desktop "
            "Entry]\nType=Application\nName=Lulltide\nComment=Packaged\nExec=/opt/lulltide/bin/lulltide\n"
            "Icon=org.lulltide.Lulltide\n");
        installed.close();
        PrefState prefs;
        prefs.setLaunchAtLogin(true);
        QFile written(LoginItem::entryPath());
        QVERIFY(written.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(written.readAll()),
                 "[Desktop Entry]\nType=Application\nName=Lulltide\nComment=Packaged\nExec=lulltide"
                 "\nTryExec=lulltide\nIcon=org.lulltide.Lulltide\nX-GNOME-Autostart-enabled=true\n");
        prefs.setLaunchAtLogin(false);
        QVERIFY(installed.remove());
    }

    void launchAtLoginFailureLogsTheServiceErrorAndKeepsTheValue()
    {
        PrefState prefs;
        const QString autostart = QFileInfo(LoginItem::entryPath()).absolutePath();
        QDir(autostart).removeRecursively();
        {
            // A file where the folder should be: the entry cannot be written.
            QFile blocker(autostart);
            QVERIFY(blocker.open(QIODevice::WriteOnly));
        }
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("^SMAppService error: cannot create .+/autostart: .+"));
        prefs.setLaunchAtLogin(true);
        QCOMPARE(prefs.launchAtLogin(), true);
        QVERIFY(QFile::remove(autostart));
        prefs.setLaunchAtLogin(false);
    }

    void aFailedAutostartWriteTellsWhyOnStandardErrorAndInTheDaysLog()
    {
        QTemporaryDir home;
        // A file where the autostart folder should be: refused for root as well.
        QVERIFY(QDir().mkpath(home.path() + "/.config"));
        QFile blocker(home.path() + "/.config/autostart");
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();

        const auto child =
            TestSupport::runChild("launch-at-login", TestSupport::environmentWithHome(home.path()));
        QCOMPARE(child.exitCode, 0);
        const QStringList lines = child.standardError.split('\n').filter("SMAppService error: ");
        QCOMPARE(lines.size(), 1);
        const QString& line = lines.first();
        QVERIFY2(line.startsWith("SMAppService error: "), qPrintable(line));
        // The reason names the folder and what the system said about it.
        QVERIFY2(line.contains(home.path() + "/.config/autostart: "), qPrintable(line));
        QVERIFY2(!line.endsWith(": "), qPrintable(line));
        QVERIFY2(TestSupport::logTextIn(home.path()).contains(" info org.lulltide.Lulltide : " + line + "\n"),
                 qPrintable(TestSupport::logTextIn(home.path())));
        QVERIFY(QFileInfo(home.path() + "/.config/autostart").isFile());
    }

    void autostartEntryStartsAProgramWhosePathHoldsQuotesDollarsBackslashesAndPercents()
    {
        QTemporaryDir root;
        const QString tricky = root.path() + "/a \"b\" `c` $HOME \\d\\\\e 'g'";
        const QString program = writeRecordingProgram(tricky + " 100% %f");

        const QString entry = writeEntry(root.path(), program);
        QProcess validate;
        validate.start("desktop-file-validate", {entry});
        QVERIFY(validate.waitForFinished(20000));
        const QString complaints = QString::fromUtf8(validate.readAll());
        QVERIFY2(validate.exitCode() == 0 && !complaints.contains("error:"), qPrintable(complaints));

        // Read back as a desktop reads an entry: string escapes, then the quoting,
        // then the field codes.
        const QStringList lines =
            LoginItem::entryText(program).section("\n[", 0, 0).split('\n'); // main group
        QCOMPARE(lines.filter(QRegularExpression("^Exec=")).size(), 1);
        QCOMPARE(execArgument(lines.filter(QRegularExpression("^Exec=")).first().mid(5)), program);
        // TryExec names the plain path, so a removed program's entry is passed over at login.
        QCOMPARE(lines.filter(QRegularExpression("^TryExec=")),
                 QStringList({"TryExec=" + stringValue(program)}));

        // GLib, as a session reads the entry, starts exactly this program. (It looks for the
        // program before it expands field codes, so it cannot start one whose path holds a "%".)
        const QString launched = writeRecordingProgram(tricky);
        QProcess launch;
        launch.start("gio", {"launch", writeEntry(root.path(), launched)});
        QVERIFY(launch.waitForFinished(20000));
        QVERIFY2(launch.exitCode() == 0, launch.readAllStandardError().constData());
        QTRY_COMPARE_WITH_TIMEOUT(recordedStart(launched), launched, 10000);
    }

    void writingShowTimeShowsOrHidesTheCountdownInTheStatusItem()
    {
        PrefState& prefs = AppState::prefState();
        TicktackController::work(1500);
        StatusItem& item = StatusBarController::item();
        prefs.setShowTime(false);
        QCOMPARE(item.title(), QString());
        prefs.setShowTime(true);
        QCOMPARE(item.title(), "25:00");
        TicktackController::stop();
    }

    void aHandEditedPromptWithABareCommaReadsBackAsText()
    {
        clearSettings();
        {
            QFile file(settingsPath());
            QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write("[General]\nbreak_prompt_text=stand up, walk\n");
        }
        QSettings& store = SettingsStore::settings();
        store.sync();
        QCOMPARE(PrefState().breakPrompt(), "stand up, walk");
    }
};

LULLTIDE_TEST_MAIN_WITH_CHILD(PreferencesTest, childMain)
#include "tst_preferences.moc"
