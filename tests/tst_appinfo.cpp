// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include "appinfo/AppInfo.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QProcess>

class AppInfoTest : public QObject {
    Q_OBJECT

    static QString commandOutput(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.start(program, arguments);
        process.waitForFinished();
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

private slots:
    void compiledInFactsAreTheConfiguredOnes()
    {
        QCOMPARE(AppInfo::name(), "Lulltide");
        QCOMPARE(AppInfo::version(), "1.0.0");
        QCOMPARE(AppInfo::build(), "1");
        QCOMPARE(AppInfo::identifier(), "org.lulltide.Lulltide");
        QCOMPARE(AppInfo::releaseNotesLink(), "https://lulltide.org/release_note/");
    }

    void missingFactsFallBack()
    {
        const QVariantMap none;
        QCOMPARE(AppInfo::name(none), "Lulltide");
        QCOMPARE(AppInfo::version(none), "1.0.0");
        QCOMPARE(AppInfo::build(none), "1");
        QCOMPARE(AppInfo::identifier(none), "1");

        const QVariantMap empty{{"name", ""}, {"version", ""}, {"build", ""}, {"identifier", ""}};
        QCOMPARE(AppInfo::build(empty), "1");
        QCOMPARE(AppInfo::identifier(empty), "1");

        const QVariantMap notText{{"build", 7}};
        QCOMPARE(AppInfo::build(notText), "1");
    }

    void missingBuildGivesAMenuHeaderEndingInOne()
    {
        QVariantMap infos = AppInfo::infos();
        infos.remove("build");
        QCOMPARE(StatusBarController::headerTitle(infos), "Lulltide - v1.0.0(1)");
        QVERIFY(StatusBarController::headerTitle(infos).endsWith("(1)"));
        // The real menu's header is the compiled-in one, shown disabled.
        StatusMenuItem* header = StatusBarController::menu().items().first();
        QCOMPARE(header->title(), "Lulltide - v1.0.0(1)");
        QVERIFY(!header->isEnabled());
    }

    void copyrightCarriesTheYearOfTheDay()
    {
        QCOMPARE(AppInfo::copyright(QDate(2030, 1, 1)), "Copyright \u00A9 2030 Lulltide Team.");
        QCOMPARE(AppInfo::copyright(QDate(2031, 12, 31)), "Copyright \u00A9 2031 Lulltide Team.");
        QCOMPARE(AppInfo::copyright(), AppInfo::copyright(QDate::currentDate()));
    }

    void modelSkipsZeroBytesWhereverTheyStand()
    {
        const char field[] = {'x', '8', 0, '6', 0, 0, '_', '6', '4', 0, 0, 'z', 0};
        QCOMPARE(AppInfo::modelFromMachineField(field, sizeof field), "x86_64z");
        const char empty[8] = {};
        QCOMPARE(AppInfo::modelFromMachineField(empty, sizeof empty), QString());
    }

    void modelIsTheKernelsMachineName() { QCOMPARE(AppInfo::model(), commandOutput("uname", {"-m"})); }

    void modelWithAByteAbove127EndsTheProcess()
    {
        const auto child = TestSupport::runChild("model-high-byte", QProcessEnvironment::systemEnvironment());
        QVERIFY(child.crashed);
        QVERIFY2(child.standardError.contains("above 127"), qPrintable(child.standardError));
    }

    void osVersionIsTheKernelReleaseAsMajorMinorPatch_data()
    {
        QTest::addColumn<QString>("release");
        QTest::addColumn<QString>("version");
        QTest::newRow("debian") << "6.1.0-18-amd64"
                                << "6.1.0";
        QTest::newRow("two parts") << "5.10"
                                   << "5.10.0";
        QTest::newRow("plain") << "4.19.12"
                               << "4.19.12";
        QTest::newRow("suffix on patch") << "6.8.9-arch1-1"
                                         << "6.8.9";
        QTest::newRow("nonsense") << "abc"
                                  << "0.0.0";
    }
    void osVersionIsTheKernelReleaseAsMajorMinorPatch()
    {
        QFETCH(QString, release);
        QFETCH(QString, version);
        QCOMPARE(AppInfo::osVersionFromRelease(release), version);
    }

    void osVersionOfThisMachine()
    {
        QCOMPARE(AppInfo::osVersion(), AppInfo::osVersionFromRelease(commandOutput("uname", {"-r"})));
        QVERIFY(QRegularExpression("^\\d+\\.\\d+\\.\\d+$").match(AppInfo::osVersion()).hasMatch());
    }
};

static int childMain(const QByteArray& mode)
{
    if (mode == "model-high-byte") {
        const char field[] = {'a', char(0xC3), 'b'};
        AppInfo::modelFromMachineField(field, sizeof field);
    }
    std::puts("survived");
    return 0;
}

LULLTIDE_TEST_MAIN_WITH_CHILD(AppInfoTest, childMain)
#include "tst_appinfo.moc"
