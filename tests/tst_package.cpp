// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "Config.h"
#include "app/AppDelegate.h"
#include "break/WindowController.h"
#include "cycle/TicktackController.h"
#include "settings/SettingsWindow.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusMenu.h"
#include "statusbar/StatusMenuItem.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QQuickItem>
#include <QQuickWindow>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QXmlStreamReader>

// What a build hands to a distribution: the licence, the installed program and its metadata,
// and, when built without update checks, no trace of them in the menu, the settings or the
// libraries it loads.
class PackageTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

#if LULLTIDE_UPDATE_CHECKS
    static constexpr bool updateChecks = true;
#else
    static constexpr bool updateChecks = false;
#endif

    struct Result {
        int exitCode = -1;
        QString output;
    };

    static Result run(const QString& program, const QStringList& arguments)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(program, arguments);
        if (!process.waitForFinished(120000))
            return {-1, program + QStringLiteral(" did not finish: ") + process.errorString()};
        return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
                QString::fromLocal8Bit(process.readAll())};
    }

    static QString dynamicSection(const QString& binary)
    {
        const Result readelf = run(QStringLiteral("readelf"), {QStringLiteral("-d"), binary});
        return readelf.exitCode == 0 ? readelf.output : QString();
    }

    // The texts of `name`'s elements (one entry per element, in file order).
    static QStringList elementTexts(const QString& file, const QString& name,
                                    const QString& attribute = QString(), const QString& value = QString())
    {
        QFile xml(file);
        if (!xml.open(QIODevice::ReadOnly))
            return {};
        QStringList texts;
        QXmlStreamReader reader(&xml);
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement || reader.name() != name)
                continue;
            if (!attribute.isEmpty() && reader.attributes().value(attribute) != value)
                continue;
            texts << reader.readElementText(QXmlStreamReader::IncludeChildElements).trimmed();
        }
        return texts;
    }

    static QQuickWindow* settingsWindow()
    {
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == "settingsWindow")
                return qobject_cast<QQuickWindow*>(window);
        }
        return nullptr;
    }

    static QString builtPackage()
    {
        const QDir folder(TESTS_SOURCE_DIR "/../build/package");
        const QStringList debs = folder.entryList({QStringLiteral("lulltide_*.deb")}, QDir::Files);
        return debs.isEmpty() ? QString() : folder.filePath(debs.first());
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching();
    }

    void licenceIsTheFullTextOfGplVersion3()
    {
        QFile licence(TESTS_SOURCE_DIR "/../LICENSE");
        QVERIFY2(licence.open(QIODevice::ReadOnly), "no LICENSE at the top of the tree");
        QFile gpl("/usr/share/common-licenses/GPL-3");
        QVERIFY(gpl.open(QIODevice::ReadOnly));
        QVERIFY(licence.readAll() == gpl.readAll());
    }

    void metainfoNamesBothLicencesAndWhatTheProgramProvides()
    {
        const QString metainfo = TESTS_SOURCE_DIR "/../resources/org.lulltide.Lulltide.metainfo.xml";
        QCOMPARE(elementTexts(metainfo, "project_license"), QStringList{"GPL-3.0-or-later"});
        QCOMPARE(elementTexts(metainfo, "metadata_license"), QStringList{"CC0-1.0"});
        QCOMPARE(elementTexts(metainfo, "launchable", "type", "desktop-id"),
                 QStringList{"org.lulltide.Lulltide.desktop"});
        QCOMPARE(elementTexts(metainfo, "binary"), QStringList{"lulltide"});
        QCOMPARE(elementTexts(metainfo, "url", "type", "bugtracker").size(), 1);
        QVERIFY(
            elementTexts(metainfo, "url", "type", "bugtracker").first().startsWith("https://lulltide.org/"));
        QCOMPARE(elementTexts(metainfo, "content_rating", "type", "oars-1.1").size(), 1);
        QCOMPARE(elementTexts(metainfo, "release", "version", Config::version).size(), 1);
    }

    void installedProgramCarriesNoRunpath()
    {
        QTemporaryDir prefix;
        const Result install =
            run(QStringLiteral("cmake"), {"--install", BUILD_DIR, "--prefix", prefix.path()});
        QVERIFY2(install.exitCode == 0, qPrintable(install.output));
        const QString dynamic = dynamicSection(prefix.filePath("bin/lulltide"));
        QVERIFY(dynamic.contains("(NEEDED)"));
        QVERIFY2(!dynamic.contains("(RUNPATH)") && !dynamic.contains("(RPATH)"), qPrintable(dynamic));
    }

    void programLinksTheNetworkLibraryOnlyWithUpdateChecks()
    {
        const QString dynamic = dynamicSection(LULLTIDE_BINARY);
        QVERIFY(dynamic.contains("libQt6Core.so"));
        QCOMPARE(dynamic.contains("libQt6Network.so"), updateChecks);
    }

    void menuOffersTheUpdateCheckOnlyWithUpdateChecks()
    {
        QStringList titles;
        for (StatusMenuItem* item : StatusBarController::menu().items())
            titles << (item->isSeparator() ? "---" : item->title());
        QStringList expected{"Lulltide - v1.0.0(1)", "---", "- Stop -", "Settings...", "---"};
        if (updateChecks)
            expected << "Check for Updates...";
        expected << QStringList{"Feedback...", "About...", "Quit"};
        QCOMPARE(titles, expected);
    }

    void generalPaneShowsTheUpdateSwitchOnlyWithUpdateChecks()
    {
        SettingsWindow::show();
        QQuickWindow* window = settingsWindow();
        QVERIFY(window);
        QVERIFY(QTest::qWaitForWindowExposed(window, 20000));
        QQuickItem* launchAtLogin = TestSupport::findItem(window->contentItem(), "launchAtLogin");
        QVERIFY(launchAtLogin);
        QTRY_VERIFY_WITH_TIMEOUT(launchAtLogin->isVisible(), 10000);
        QQuickItem* autoCheckUpdate = TestSupport::findItem(window->contentItem(), "autoCheckUpdate");
        QCOMPARE(autoCheckUpdate && autoCheckUpdate->isVisible(), updateChecks);
        window->close();
    }

    // The package is built without update checks and with the distribution's hardening flags.
    void builtPackageHasNoUpdateCheckNoRunpathAndIsHardened()
    {
        const QString deb = builtPackage();
        if (deb.isEmpty())
            QSKIP("no package under build/package: scripts/package makes one");
        QTemporaryDir root;
        const Result extract = run(QStringLiteral("dpkg-deb"), {"-x", deb, root.path()});
        QVERIFY2(extract.exitCode == 0, qPrintable(extract.output));
        const QString binary = root.filePath("usr/bin/lulltide");
        // The windows' program lives where the distribution keeps programs only others start.
        QDirIterator found(root.path(), {QStringLiteral("lulltide-views")}, QDir::Files,
                           QDirIterator::Subdirectories);
        const QString views = found.hasNext() ? found.next() : QString();
        QVERIFY2(!views.isEmpty(), "no lulltide-views in the package");
        QVERIFY2(views.contains("/usr/lib") && views.endsWith("/lulltide/lulltide-views"), qPrintable(views));
        // The process that counts all day loads nothing of Qt Quick.
        const QString counting = dynamicSection(binary);
        QVERIFY2(!counting.contains("libQt6Quick") && !counting.contains("libQt6Qml"), qPrintable(counting));
        QVERIFY(dynamicSection(views).contains("libQt6Quick.so"));
        for (const QString& file : {binary, views}) {
            const QString dynamic = dynamicSection(file);
            QVERIFY(dynamic.contains("libQt6Core.so"));
            QVERIFY2(!dynamic.contains("libQt6Network.so"), qPrintable(dynamic));
            QVERIFY2(!dynamic.contains("(RUNPATH)") && !dynamic.contains("(RPATH)"), qPrintable(dynamic));
            QVERIFY(dynamic.contains("BIND_NOW"));
            QFile program(file);
            QVERIFY(program.open(QIODevice::ReadOnly));
            QVERIFY(!program.readAll().contains("appcast"));
        }

        // KWin finds the entry that asks for its window list by the program's full path.
        QFile entry(root.filePath("usr/share/applications/org.lulltide.Lulltide.desktop"));
        QVERIFY(entry.open(QIODevice::ReadOnly));
        QVERIFY(entry.readAll().contains("\nExec=/usr/bin/lulltide\n"));

        const Result depends = run(QStringLiteral("dpkg-deb"), {"--field", deb, "Depends"});
        QVERIFY(depends.output.contains("libqt6core6"));
        QVERIFY2(!depends.output.contains("libqt6network6"), qPrintable(depends.output));
        // The break screen uses Qt's private platform interface: only the Qt it was built with.
        const QString qtVersion = QString::fromLatin1(qVersion());
        QVERIFY2(depends.output.contains("qt6-base-abi (= " + qtVersion + ")"), qPrintable(depends.output));

        if (QStandardPaths::findExecutable("hardening-check").isEmpty())
            QSKIP("hardening-check (devscripts) is not installed");
        // Debian 12's C start files carry no IBT/SHSTK note, so no program linked here shows
        // control-flow protection, whatever it is compiled with.
        for (const QString& file : {binary, views}) {
            const Result hardening = run(QStringLiteral("hardening-check"), {"--nocfprotection", file});
            QVERIFY2(hardening.exitCode == 0, qPrintable(hardening.output));
        }
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(PackageTest, nullptr)
#include "tst_package.moc"
