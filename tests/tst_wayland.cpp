// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/FakeInput.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "cycle/AppState.h"
#include "cycle/SystemEventController.h"
#include "events/WaylandIdleMonitor.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cstdio>

namespace {

// Runs the application on Qt's offscreen platform (so the compositor's idle notifications are
// its only view of the person) with an idle timeout of 0.6 s: prints when the cycle stops and
// when a pointer move through the compositor starts it again.
int childMain(const QByteArray& mode)
{
    if (mode != "idle-cycle")
        return 2;
    SystemEventController::setIdleTimeout(std::chrono::milliseconds(600));
    AppDelegate().applicationDidFinishLaunching();
    const auto waitFor = [](bool working) {
        for (int i = 0; i < 100 && AppState::working() != working; ++i)
            QTest::qWait(100);
        return AppState::working() == working;
    };
    if (!waitFor(false))
        return 3;
    std::puts("stopped after idleness");
    std::fflush(stdout);
    if (!FakeInput::movePointer())
        return 4;
    if (!waitFor(true))
        return 5;
    std::puts("working again after a pointer move");
    return 0;
}

} // namespace

// The real program as a Wayland client: weston, a real compositor, runs with two outputs of
// 1280×800 side by side (its X11 backend shows each output as a window of an Xvfb of this test's
// own, which gives it a seat and lets the test look at what it draws).
class WaylandTest : public QObject {
    Q_OBJECT

    QTemporaryDir runtime; // XDG_RUNTIME_DIR: weston's socket
    QTemporaryDir scratch;
    QProcess xserver;
    QProcess weston;
    QProcess kwin;
    QString display;
    const QString socket = "wayland-lulltide-test";
    const QString kwinSocket = "wayland-lulltide-kwin";

    using Instance = TestSupport::ProgramRun;

    QProcessEnvironment onWayland(const QString& home) const
    {
        QProcessEnvironment environment = TestSupport::environmentWithHome(home);
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.insert("WAYLAND_DISPLAY", socket);
        environment.insert("QT_QPA_PLATFORM", "wayland");
        environment.remove("DISPLAY");
        environment.insert("LC_ALL", "C.UTF-8");
        return environment;
    }

    QString run(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment)
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.waitForFinished(10000);
        return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
    }

    QString onX(const QString& program, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", display);
        return run(program, arguments, environment);
    }

    QString status(const Instance& instance)
    {
        return run(LULLTIDE_BINARY, {"--status"}, onWayland(instance.home.path()));
    }

    void start(Instance& instance, const QByteArray& settings)
    {
        QDir().mkpath(instance.home.path() + "/.config/lulltide");
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n" + settings);
        conf.close();
        instance.process.setProcessEnvironment(onWayland(instance.home.path()));
        instance.process.start(LULLTIDE_BINARY, {});
        QVERIFY(instance.process.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);
    }

    // What the compositor shows: both outputs, side by side.
    QImage screen()
    {
        const QString shot = scratch.filePath("screen.png");
        QFile::remove(shot);
        onX("import", {"-window", "root", "-crop", "2560x800+0+0", "+repage", shot});
        return QImage(shot);
    }

    // The corners and the middle of the left edge of each output: a window covers an output
    // only when all of them show it.
    static QList<QPoint> edgesOfBothOutputs()
    {
        QList<QPoint> points;
        for (int left : {0, 1280})
            for (QPoint point :
                 {QPoint(2, 2), QPoint(1277, 2), QPoint(2, 797), QPoint(1277, 797), QPoint(2, 400)})
                points << point + QPoint(left, 0);
        return points;
    }

    static int whitePoints(const QImage& image)
    {
        int white = 0;
        for (QPoint point : edgesOfBothOutputs())
            white += image.pixel(point) == qRgb(255, 255, 255) ? 1 : 0;
        return white;
    }

    // KWin on a virtual output: the Wayland compositor in Debian that offers ext-idle-notify-v1.
    void startKWin()
    {
        // A copy: the installed program carries file capabilities, which containers may refuse
        // to run; KWin needs none of them here.
        const QString program = scratch.filePath("kwin_wayland");
        QVERIFY(QFile::copy("/usr/bin/kwin_wayland", program));
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        // KWin offers fake input only to programs whose desktop entry asks for it.
        const QString applications = QDir::homePath() + "/.local/share/applications";
        QVERIFY(QDir().mkpath(applications));
        QFile entry(applications + "/lulltide-wayland-test.desktop");
        QVERIFY(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\nName=Lulltide Wayland test\nExec=" +
                    QCoreApplication::applicationFilePath().toUtf8() +
                    "\nNoDisplay=true\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n");
        entry.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.remove("QT_QPA_PLATFORM");
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        kwin.setProcessEnvironment(environment);
        kwin.setStandardOutputFile(scratch.filePath("kwin.log"));
        kwin.setStandardErrorFile(scratch.filePath("kwin.log"));
        kwin.start(program, {"--virtual", "--socket", kwinSocket, "--width", "1280", "--height", "800"});
        QVERIFY(kwin.waitForStarted());
        const auto kwinLog = [this] {
            QFile log(scratch.filePath("kwin.log"));
            return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(runtime.filePath(kwinSocket)), kwinLog().constData(), 20000);
    }

    // Points this process's own Wayland connections at one of the compositors.
    void useCompositor(const QString& socketName)
    {
        qputenv("XDG_RUNTIME_DIR", runtime.path().toUtf8());
        qputenv("WAYLAND_DISPLAY", socketName.toUtf8());
    }

private slots:
    void initTestCase()
    {
        QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        xserver.start("Xvfb", {"-displayfd", "1", "-screen", "0", "2560x800x24", "-nolisten", "tcp"});
        QVERIFY(xserver.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(xserver.canReadLine(), 10000);
        display = ":" + QString::fromLatin1(xserver.readLine()).trimmed();

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", display);
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        weston.setProcessEnvironment(environment);
        weston.setStandardOutputFile(scratch.filePath("weston.log"));
        weston.setStandardErrorFile(scratch.filePath("weston.log"));
        weston.start("weston",
                     {"--backend=x11-backend.so", "--use-pixman", "--output-count=2", "--width=1280",
                      "--height=800", "--socket=" + socket, "--no-config", "--idle-time=0"});
        QVERIFY(weston.waitForStarted());
        const auto westonLog = [this] {
            QFile log(scratch.filePath("weston.log"));
            return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(runtime.filePath(socket)), westonLog().constData(), 10000);
        // Each output is an X window at 0,0; the second goes to the right of the first, where the
        // compositor places that output.
        // (xwininfo, not xdotool: weston names its windows in a way xdotool's search misses.)
        const auto secondOutput = [this] {
            for (const QString& line : onX("xwininfo", {"-root", "-children"}).split('\n')) {
                if (line.contains("\"Weston Compositor - screen1\""))
                    return line.trimmed().section(' ', 0, 0);
            }
            return QString();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(!secondOutput().isEmpty(), westonLog().constData(), 10000);
        const QString second = secondOutput();
        onX("xdotool", {"windowmove", second, "1280", "0"});
        QTRY_VERIFY_WITH_TIMEOUT(onX("xdotool", {"getwindowgeometry", second}).contains("Position: 1280,0"),
                                 5000);
        startKWin();
        // The compositor draws the pointer where X has it (the middle, on an edge we look at).
        onX("xdotool", {"mousemove", "700", "600"});
    }

    void cleanupTestCase()
    {
        kwin.terminate();
        kwin.waitForFinished(5000);
        weston.terminate();
        weston.waitForFinished(5000);
        xserver.terminate();
        xserver.waitForFinished(5000);
    }

    void breakWindowsCoverEveryOutputFromEdgeToEdge()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTest::qWait(500);
        QCOMPARE(whitePoints(screen()), 0); // the compositor's own background
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(whitePoints(screen()), int(edgesOfBothOutputs().size()), 5000);
        // Kept in the build folder for a person to look at.
        screen().save(QDir::current().filePath("wayland-two-outputs.png"));
    }

    void pauseFromAScriptClosesTheBreakOnEveryOutput()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(whitePoints(screen()), int(edgesOfBothOutputs().size()), 5000);
        run(LULLTIDE_BINARY, {"--pause"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(whitePoints(screen()), 0, 5000);
        QCOMPARE(status(instance), "paused");
    }

    void breakFadesInWithoutComplaintsFromThePlatform()
    {
        // Wayland has no window opacity: the content fades instead, and Qt has nothing to say.
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(whitePoints(screen()), int(edgesOfBothOutputs().size()), 5000);
        instance.process.terminate();
        QVERIFY(instance.process.waitForFinished(5000));
        const QString errors = QString::fromUtf8(instance.process.readAllStandardError());
        QVERIFY2(!errors.contains("does not support setting window opacity"), qPrintable(errors));
    }

    void aWaylandStartWithoutAPanelWaitsForNoX11Tray()
    {
        Instance instance;
        start(instance, "work_time=25\n");
        // The item found no panel: that decision is made, so anything Qt would say of a tray has
        // been said.
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("nothing in the panel shows Lulltide"), 10000);
        QCOMPARE(status(instance).left(8), QStringLiteral("working "));
        instance.process.terminate();
        QVERIFY(instance.process.waitForFinished(5000));
        const QString errors = QString::fromUtf8(instance.process.readAllStandardError());
        QVERIFY2(!errors.contains("systemTrayWindowChanged"), qPrintable(errors));
    }

    void kwinTellsOfIdlenessAfterTheTimeoutAndOfThePersonComingBack()
    {
        useCompositor(kwinSocket);
        WaylandIdleMonitor monitor;
        QVERIFY(monitor.start(std::chrono::milliseconds(600)));
        QVERIFY(monitor.reportsIdleness());
        QSignalSpy idle(&monitor, &PointerMonitor::idle);
        QSignalSpy activity(&monitor, &PointerMonitor::activity);
        QTest::qWait(300);
        QCOMPARE(idle.count(), 0); // not before the timeout
        QTRY_COMPARE_WITH_TIMEOUT(idle.count(), 1, 5000);
        QCOMPARE(activity.count(), 0);
        QVERIFY(FakeInput::movePointer());
        QTRY_COMPARE_WITH_TIMEOUT(activity.count(), 1, 5000);
        // Still again: idle once more after the timeout.
        QTRY_COMPARE_WITH_TIMEOUT(idle.count(), 2, 5000);
    }

    void compositorIdlenessStopsTheCycleAndAPointerMoveStartsIt()
    {
        QTemporaryDir home;
        QProcessEnvironment environment = TestSupport::environmentWithHome(home.path());
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.insert("WAYLAND_DISPLAY", kwinSocket);
        const TestSupport::ChildResult child = TestSupport::runChild("idle-cycle", environment);
        QCOMPARE(child.exitCode, 0);
        // (The log goes to standard output too.)
        QStringList said;
        for (const QString& line : child.standardOutput.split('\n', Qt::SkipEmptyParts)) {
            if (!line.contains(" info org.lulltide.Lulltide : "))
                said << line;
        }
        QCOMPARE(said, QStringList({"stopped after idleness", "working again after a pointer move"}));
        const QString log = TestSupport::logTextIn(home.path());
        QCOMPARE(log.count("pointer idleness from the compositor's idle notifications"), 1);
        QVERIFY(!log.contains("no pointer monitor"));
        QCOMPARE(log.count("ticktack timer start 1500.0"), 2);
    }

    void aCompositorWithoutTheProtocolOrNoCompositorLeavesTheMonitorUnstarted()
    {
        useCompositor(socket); // weston offers no idle notifications
        WaylandIdleMonitor onWeston;
        QVERIFY(!onWeston.start(std::chrono::milliseconds(600)));
        useCompositor("no-such-compositor");
        WaylandIdleMonitor nowhere;
        QVERIFY(!nowhere.start(std::chrono::milliseconds(600)));
    }

    void theProgramOnKWinUsesTheCompositorsIdleNotifications()
    {
        Instance instance;
        QProcessEnvironment environment = onWayland(instance.home.path());
        environment.insert("WAYLAND_DISPLAY", kwinSocket);
        instance.process.setProcessEnvironment(environment);
        instance.process.start(LULLTIDE_BINARY, {});
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("sandbox home path: "), 10000);
        QCOMPARE(instance.log().count("pointer idleness from the compositor's idle notifications"), 1);
        QVERIFY(!instance.log().contains("no pointer monitor"));
    }

    void withoutAnIdleMonitorItSaysSoOnceAndCountsOn()
    {
        Instance instance;
        start(instance, {});
        QTest::qWait(1500);
        QCOMPARE(instance.log().count("no pointer monitor on the wayland platform"), 1);
        QVERIFY(status(instance).startsWith("working "));
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(WaylandTest, childMain)

#include "tst_wayland.moc"
