// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/BlackWindow.h"
#include "support/CoveredOutputs.h"
#include "support/FakeInput.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "cycle/AppState.h"
#include "cycle/SystemEventController.h"
#include "cycle/WorkItem.h"
#include "events/WaylandIdleMonitor.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace {

// Runs the application on Qt's offscreen platform (so the compositor's idle notifications are
// its only view of the person) with an idle timeout of 0.6 s: prints when the cycle stops and
// when a pointer move through the compositor starts it again.
int childMain(const QByteArray& mode)
{
    if (mode == "full-screen-window") {
        // Another program, full screen: a plain window of the test's own.
        return BlackWindow::runFullScreen();
    }
    if (mode != "idle-cycle" && mode != "idle-never")
        return 2;
    SystemEventController::setIdleTimeout(std::chrono::milliseconds(600));
    AppDelegate().applicationDidFinishLaunching();
    if (mode == "idle-never") {
        // A moment well past the idle timeout, on the same clock as the timeout itself.
        bool passed = false;
        const auto later =
            WorkItem::schedule(std::chrono::milliseconds(3 * 600), [&passed] { passed = true; });
        for (int i = 0; i < 100 && !passed; ++i)
            QTest::qWait(100);
        if (!passed)
            return 3;
        std::puts(AppState::working() ? "still working past the idle timeout" : "stopped");
        return 0;
    }
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
    QTemporaryDir swayRuntime; // sway's own: it runs as another user when the tests run as root
    QProcess sway;
    QString swayDisplay; // the absolute path of sway's socket
    QString display;
    const QString socket = "wayland-lulltide-test";
    const QString kwinSocket = "wayland-lulltide-kwin";

    using Instance = TestSupport::ProgramRun;

    QProcessEnvironment onWayland(const QString& home) const
    {
        return TestSupport::waylandClientWithHome(home, runtime.path(), socket);
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

    // On weston unless another compositor's socket is given.
    void start(Instance& instance, const QByteArray& settings, const QString& compositor = QString())
    {
        QDir().mkpath(instance.home.path() + "/.config/lulltide");
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n" + settings);
        conf.close();
        QProcessEnvironment environment = onWayland(instance.home.path());
        if (!compositor.isEmpty())
            environment.insert("WAYLAND_DISPLAY", compositor);
        instance.process.setProcessEnvironment(environment);
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

    // KWin on two virtual outputs side by side, with two virtual desktops: the Wayland compositor
    // in Debian that offers ext-idle-notify-v1.
    void startKWin()
    {
        // A copy: the installed program carries file capabilities, which containers may refuse
        // to run; KWin needs none of them here.
        const QString program = scratch.filePath("kwin_wayland");
        QVERIFY(QFile::copy("/usr/bin/kwin_wayland", program));
        QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner);
        // KWin offers fake input and screenshots only to programs whose desktop entry asks for them.
        const QString applications = QDir::homePath() + "/.local/share/applications";
        QVERIFY(QDir().mkpath(applications));
        QFile entry(applications + "/lulltide-wayland-test.desktop");
        QVERIFY(entry.open(QIODevice::WriteOnly));
        entry.write("[Desktop Entry]\nType=Application\nName=Lulltide Wayland test\nExec=" +
                    QCoreApplication::applicationFilePath().toUtf8() +
                    "\nNoDisplay=true\nX-KDE-Wayland-Interfaces=org_kde_kwin_fake_input\n"
                    "X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2\n");
        entry.close();
        // Lulltide's own, as its installed entry has it: KWin's list of every program's windows.
        QFile lulltideEntry(applications + "/lulltide-under-test.desktop");
        QVERIFY(lulltideEntry.open(QIODevice::WriteOnly));
        lulltideEntry.write(
            "[Desktop Entry]\nType=Application\nName=Lulltide under test\nExec=" LULLTIDE_BINARY
            "\nNoDisplay=true\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n");
        lulltideEntry.close();
        QFile config(QDir::homePath() + "/.config/kwinrc");
        QVERIFY(QDir().mkpath(QDir::homePath() + "/.config"));
        QVERIFY(config.open(QIODevice::WriteOnly));
        config.write("[Desktops]\nNumber=2\nRows=1\n");
        config.close();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.remove("QT_QPA_PLATFORM");
        environment.remove("DISPLAY");
        environment.remove("WAYLAND_DISPLAY");
        kwin.setProcessEnvironment(environment);
        kwin.setStandardOutputFile(scratch.filePath("kwin.log"));
        kwin.setStandardErrorFile(scratch.filePath("kwin.log"));
        kwin.start(program, {"--virtual", "--output-count", "2", "--socket", kwinSocket, "--width", "1280",
                             "--height", "800"});
        QVERIFY(kwin.waitForStarted());
        const auto kwinLog = [this] {
            QFile log(scratch.filePath("kwin.log"));
            return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(runtime.filePath(kwinSocket)), kwinLog().constData(), 20000);
    }

    // What KWin shows on its two outputs, side by side, through its screenshot interface (the
    // pixels it composites for the outputs). A null image when KWin refuses.
    QImage kwinScreen()
    {
        QImage both(2560, 800, QImage::Format_RGB32);
        both.fill(Qt::black);
        QPainter painter(&both);
        for (int output : {0, 1}) {
            int pipe[2];
            if (::pipe2(pipe, O_CLOEXEC) != 0)
                return QImage();
            QDBusMessage reply;
            {
                // KWin writes the pixels once it has answered; our copies of the write end are
                // closed before reading, so the end of its writing is the end of the pipe.
                QDBusMessage call = QDBusMessage::createMethodCall(
                    "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2", "CaptureScreen");
                call << QStringLiteral("Virtual-%1").arg(output) << QVariantMap()
                     << QVariant::fromValue(QDBusUnixFileDescriptor(pipe[1]));
                ::close(pipe[1]);
                reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 10000);
            }
            QFile pixels;
            pixels.open(pipe[0], QIODevice::ReadOnly, QFile::AutoCloseHandle);
            const QByteArray data = pixels.readAll();
            if (reply.type() != QDBusMessage::ReplyMessage) {
                qWarning() << "KWin's screenshot:" << reply.errorMessage();
                return QImage();
            }
            const QVariantMap results = qdbus_cast<QVariantMap>(reply.arguments().value(0));
            const int width = results.value("width").toInt();
            const int height = results.value("height").toInt();
            const int stride = results.value("stride").toInt();
            if (data.size() < qsizetype(stride) * height)
                return QImage();
            const QImage image(reinterpret_cast<const uchar*>(data.constData()), width, height, stride,
                               QImage::Format(results.value("format").toInt()));
            painter.drawImage(output * 1280, 0, image);
        }
        painter.end();
        return both;
    }

    // Calls one of KWin's actions, as its keyboard shortcut would.
    static void kwinAction(const QString& name)
    {
        QDBusMessage call = QDBusMessage::createMethodCall(
            "org.kde.kglobalaccel", "/component/kwin", "org.kde.kglobalaccel.Component", "invokeShortcut");
        call << name;
        QDBusConnection::sessionBus().call(call, QDBus::Block, 10000);
    }

    // The effects KWin is drawing now ("overview", "desktopgrid").
    static QStringList kwinActiveEffects()
    {
        QDBusMessage call = QDBusMessage::createMethodCall("org.kde.KWin", "/Effects",
                                                           "org.freedesktop.DBus.Properties", "Get");
        call << "org.kde.kwin.Effects"
             << "activeEffects";
        const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 10000);
        return qdbus_cast<QStringList>(reply.arguments().value(0).value<QDBusVariant>().variant());
    }

    static QDBusMessage kwinDesktopCall(const char* method, const QVariantList& arguments = {})
    {
        QDBusMessage call = QDBusMessage::createMethodCall("org.kde.KWin", "/KWin", "org.kde.KWin", method);
        call.setArguments(arguments);
        return QDBusConnection::sessionBus().call(call, QDBus::Block, 10000);
    }

    // sway 1.7 headless with two outputs of 1280×800 side by side. sway refuses to run as root:
    // then it runs as nobody, in folders given to nobody, and the tests (root) reach its socket
    // by its absolute path.
    void startSway()
    {
        const bool asRoot = ::getuid() == 0;
        const QString config = swayRuntime.filePath("config");
        QFile file(config);
        QVERIFY(file.open(QIODevice::WriteOnly));
        // Workspace keys as sway's own configuration has them (sway names its first workspace
        // after the first of them), and a witness key that acts even while a client inhibits the
        // bindings: once the witness has acted, so would have a key pressed before it.
        file.write("output HEADLESS-1 mode 1280x800 position 0 0\n"
                   "output HEADLESS-2 mode 1280x800 position 1280 0\n"
                   "bindsym Mod4+1 workspace number 1\n"
                   "bindsym Mod4+9 workspace number 9\n"
                   "bindsym --inhibited Mod4+F12 exec touch " +
                   swayRuntime.filePath("run/witness").toUtf8() + "\n");
        file.close();
        const QString socketFolder = swayRuntime.filePath("run");
        QVERIFY(QDir().mkpath(socketFolder));
        QFile::setPermissions(socketFolder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::setPermissions(swayRuntime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                      QFile::ReadOther | QFile::ExeOther);
        if (asRoot)
            QCOMPARE(
                run("chown", {"65534:65534", socketFolder, config}, QProcessEnvironment::systemEnvironment()),
                QString());
        QProcessEnvironment environment;
        environment.insert("PATH", qEnvironmentVariable("PATH"));
        environment.insert("HOME", swayRuntime.path());
        environment.insert("XDG_RUNTIME_DIR", socketFolder);
        environment.insert("WLR_BACKENDS", "headless");
        environment.insert("WLR_HEADLESS_OUTPUTS", "2");
        environment.insert("WLR_LIBINPUT_NO_DEVICES", "1");
        environment.insert("WLR_RENDERER", "pixman");
        sway.setProcessEnvironment(environment);
        sway.setStandardOutputFile(scratch.filePath("sway.log"));
        sway.setStandardErrorFile(scratch.filePath("sway.log"));
        // Composited frames only: sway 1.7 shows a full-screen window by handing its buffer to the
        // output, and a screenshot taken then is composited into a buffer last painted before that
        // began, so grim may read a frame seconds old while the output shows the break.
        QStringList arguments = {"-D", "noscanout", "-c", config};
        if (asRoot) {
            arguments =
                QStringList({"--reuid=65534", "--regid=65534", "--clear-groups", "--", "sway"}) + arguments;
            sway.start("setpriv", arguments);
        } else {
            sway.start("sway", arguments);
        }
        QVERIFY(sway.waitForStarted());
        const auto socketOf = [socketFolder] {
            const QStringList sockets = QDir(socketFolder).entryList({"wayland-*"}, QDir::System);
            for (const QString& name : sockets) {
                if (!name.endsWith(".lock"))
                    return QDir(socketFolder).filePath(name);
            }
            return QString();
        };
        const auto swayLog = [this] {
            QFile log(scratch.filePath("sway.log"));
            return log.open(QIODevice::ReadOnly) ? log.readAll() : QByteArray();
        };
        QTRY_VERIFY2_WITH_TIMEOUT(!socketOf().isEmpty(), swayLog().constData(), 20000);
        swayDisplay = socketOf();
    }

    QString swaymsg(const QStringList& arguments)
    {
        const QStringList sockets = QDir(swayRuntime.filePath("run")).entryList({"sway-ipc.*"}, QDir::System);
        if (sockets.isEmpty())
            return "no sway socket";
        return run("swaymsg", QStringList({"-s", swayRuntime.filePath("run/" + sockets.first())}) + arguments,
                   QProcessEnvironment::systemEnvironment());
    }

    // sway's node of the window with this title, empty when there is none.
    QJsonObject swayWindow(const QString& title)
    {
        std::function<QJsonObject(const QJsonObject&)> find = [&](const QJsonObject& node) {
            if (node.value("name").toString() == title && node.value("type").toString() == "con")
                return node;
            for (const char* children : {"nodes", "floating_nodes"}) {
                const QJsonArray nodes = node.value(children).toArray();
                for (const auto& child : nodes) {
                    QJsonObject found = find(child.toObject());
                    if (!found.isEmpty())
                        return found;
                }
            }
            return QJsonObject();
        };
        return find(QJsonDocument::fromJson(swaymsg({"-t", "get_tree"}).toUtf8()).object());
    }

    // The environment of a client of sway, run by the tests.
    QProcessEnvironment clientOfSway()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.insert("WAYLAND_DISPLAY", swayDisplay);
        return environment;
    }

    QString focusedSwayWorkspace()
    {
        const QJsonArray workspaces =
            QJsonDocument::fromJson(swaymsg({"-t", "get_workspaces"}).toUtf8()).array();
        for (const auto& workspace : workspaces) {
            if (workspace.toObject().value("focused").toBool())
                return workspace.toObject().value("name").toString();
        }
        return QString();
    }

    // Super+9 pressed as a keyboard does, through sway's virtual keyboard, then Super+F12, which
    // sway serves even while a client inhibits its bindings: one keyboard sends both in order,
    // so once Super+F12 has acted Super+9 has been and gone. False when the witness did not act.
    bool pressSuper9OnSway()
    {
        const QString witness = swayRuntime.filePath("run/witness");
        QFile::remove(witness);
        run("wtype", {"-M", "logo", "9", "-k", "F12", "-m", "logo"}, clientOfSway());
        return QTest::qWaitFor([&] { return QFile::exists(witness); }, 5000);
    }

    // What sway shows on its two outputs, side by side.
    QImage swayScreen()
    {
        const QString shot = scratch.filePath("sway.png");
        QFile::remove(shot);
        run("grim", {shot}, clientOfSway());
        return QImage(shot);
    }

    // Runs the application in a child on the compositor at `socketName` and returns what it
    // printed, the log aside; the log is left in `home`.
    QStringList idleChild(const QByteArray& mode, const QString& socketName, const QString& home)
    {
        QProcessEnvironment environment = TestSupport::environmentWithHome(home);
        environment.insert("QT_QPA_PLATFORM", "offscreen");
        environment.insert("XDG_RUNTIME_DIR", runtime.path());
        environment.insert("WAYLAND_DISPLAY", socketName);
        const TestSupport::ChildResult child = TestSupport::runChild(mode, environment);
        QStringList said;
        for (const QString& line : child.standardOutput.split('\n', Qt::SkipEmptyParts)) {
            if (!line.contains(" info org.lulltide.Lulltide : "))
                said << line;
        }
        if (child.exitCode != 0)
            said << QStringLiteral("exit code %1").arg(child.exitCode);
        return said;
    }

    // Another program: a window full screen and black all over, on the compositor at `socketName`.
    void startAnotherProgram(QProcess& other, const QString& home, const QString& socketName) const
    {
        QProcessEnvironment environment = onWayland(home);
        environment.insert("WAYLAND_DISPLAY", socketName);
        environment.insert("LULLTIDE_TEST_CHILD", "full-screen-window");
        other.setProcessEnvironment(environment);
        other.start(QCoreApplication::applicationFilePath(), {});
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
        startSway();
        // The compositor draws the pointer where X has it (the middle, on an edge we look at).
        onX("xdotool", {"mousemove", "700", "600"});
    }

    void cleanupTestCase()
    {
        sway.terminate();
        sway.waitForFinished(5000);
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
        QCOMPARE(CoveredOutputs::whitePoints(screen()), 0); // the compositor's own background
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), int(CoveredOutputs::edges().size()),
                                  5000);
        // Kept in the build folder for a person to look at.
        screen().save(QDir::current().filePath("wayland-two-outputs.png"));
    }

    void pauseFromAScriptClosesTheBreakOnEveryOutput()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), int(CoveredOutputs::edges().size()),
                                  5000);
        run(LULLTIDE_BINARY, {"--pause"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), 0, 5000);
        QCOMPARE(status(instance), "paused");
    }

    void breakFadesInWithoutComplaintsFromThePlatform()
    {
        // Wayland has no window opacity: the content fades instead, and Qt has nothing to say.
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 10000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), int(CoveredOutputs::edges().size()),
                                  5000);
        instance.process.terminate();
        QVERIFY(instance.process.waitForFinished(5000));
        const QString errors = QString::fromUtf8(instance.process.readAllStandardError());
        QVERIFY2(!errors.contains("does not support setting window opacity"), qPrintable(errors));
    }

    void onSwayNoEscapeUncoversAnOutputOfTheOverlayLayer()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", swayDisplay);
        const auto covered = [this] { return CoveredOutputs::whitePoints(swayScreen()); };
        const int all = int(CoveredOutputs::edges().size());
        QTRY_COMPARE_WITH_TIMEOUT(covered(), all, 15000);
        QVERIFY(instance.log().contains("breaks cover the screens from the compositor's overlay layer"));

        swayScreen().save(QDir::current().filePath("sway-two-outputs.png"));
        // What sway's bindings would do to the windows, done to another program's, full screen
        // and opened during the break: each time, once sway has done it, both outputs still show
        // the break, and the break had nothing to put back.
        // The tests after this one find sway's focus where it was.
        const QString workspace = focusedSwayWorkspace();
        const auto focusBack = qScopeGuard([&] { swaymsg({"workspace", workspace}); });
        QProcess other;
        QTemporaryDir otherHome;
        const QString criteria = QStringLiteral("[title=\"another program\"]");
        const auto window = [this] { return swayWindow("another program"); };
        QByteArray said;
        const auto otherSaid = [&] { return said += other.readAllStandardOutput(); };
        QString swaySaid; // its answer to the last command that has one to check
        const QList<std::pair<QString, std::function<bool()>>> escapes = {
            {"a new full-screen window",
             [&] {
                 startAnotherProgram(other, otherHome.path(), swayDisplay);
                 return QTest::qWaitFor([&] { return otherSaid().contains("shown 1280x800"); }, 10000);
             }},
            {"fullscreen disable",
             [&] {
                 // Tiled, with sway's title bar: a frame of another size.
                 swaymsg({criteria, "fullscreen", "disable"});
                 return QTest::qWaitFor(
                     [&] {
                         return otherSaid().count("shown ") == 2 &&
                                window().value("fullscreen_mode").toInt() == 0;
                     },
                     5000);
             }},
            {"move container to output right",
             [&] {
                 swaymsg({criteria, "move", "container", "to", "output", "right"});
                 return QTest::qWaitFor(
                     [&] { return window().value("rect").toObject().value("x").toInt() >= 1280; }, 5000);
             }},
            {"move container to workspace number 4",
             [&] {
                 swaymsg({criteria, "move", "container", "to", "workspace", "number", "4"});
                 return QTest::qWaitFor(
                     [&] {
                         return swaymsg({"-t", "get_workspaces"}).contains("\"name\": \"4\"");
                     },
                     5000);
             }},
            {"workspace number 4",
             [&] {
                 swaymsg({"workspace", "number", "4"});
                 return QTest::qWaitFor([&] { return focusedSwayWorkspace() == "4"; }, 5000);
             }},
            {"kill", [&] {
                 // Asked again should the program miss sway's request under load (it once
                 // outlived a single one by 10 s).
                 return QTest::qWaitFor(
                     [&] {
                         swaySaid = swaymsg({criteria, "kill"});
                         return other.state() == QProcess::NotRunning || other.waitForFinished(3000);
                     },
                     15000);
             }}};
        for (const auto& [what, act] : escapes) {
            QVERIFY2(act(), qPrintable(what + ": sway did not do it (it said: " + swaySaid + ")"));
            QVERIFY2(covered() == all, qPrintable(what + " uncovered an output"));
        }
        QVERIFY2(!instance.log().contains(" put back: "), qPrintable(instance.log().right(900)));
        QVERIFY(status(instance).startsWith("break "));
        // Paused (no next break comes), the break leaves nothing on either output, and sway gives
        // the keyboard to the next window again.
        run(LULLTIDE_BINARY, {"--pause"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(covered(), 0, 10000);
        swaymsg({"workspace", workspace});
        QProcess next;
        said.clear();
        QTemporaryDir nextHome;
        startAnotherProgram(next, nextHome.path(), swayDisplay);
        QVERIFY(
            QTest::qWaitFor([&] { return (said += next.readAllStandardOutput()).contains("shown"); }, 10000));
        QTRY_VERIFY_WITH_TIMEOUT(window().value("focused").toBool(), 5000);
        next.kill();
        next.waitForFinished();
    }

    void onKWinNoEscapeUncoversAnOutputOfTheOverlayLayer()
    {
        // The next test starts on the first desktop, whatever happens here.
        const auto firstDesktopAgain = qScopeGuard([] { kwinDesktopCall("setCurrentDesktop", {1}); });
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", kwinSocket);
        const auto covered = [this] { return CoveredOutputs::whitePoints(kwinScreen()); };
        const int all = int(CoveredOutputs::edges().size());
        QTRY_COMPARE_WITH_TIMEOUT(covered(), all, 15000);
        QVERIFY(instance.log().contains("breaks cover the screens from the compositor's overlay layer"));

        kwinScreen().save(QDir::current().filePath("kwin-two-outputs.png"));
        QProcess other;
        QTemporaryDir otherHome;
        QByteArray said;
        const auto otherSaid = [&] { return said += other.readAllStandardOutput(); };
        // KWin has done what a shortcut asked once it answers a later call.
        const auto kwinHasDoneIt = [] {
            return kwinDesktopCall("currentDesktop").type() == QDBusMessage::ReplyMessage;
        };
        const QList<std::pair<QString, std::function<bool()>>> escapes = {
            {"another virtual desktop (Ctrl+F2)",
             [] {
                 kwinDesktopCall("setCurrentDesktop", {2});
                 return kwinDesktopCall("currentDesktop").arguments().value(0).toInt() == 2;
             }},
            // A program started during the break, full screen.
            {"a new full-screen window",
             [&] {
                 startAnotherProgram(other, otherHome.path(), kwinSocket);
                 return QTest::qWaitFor([&] { return otherSaid().contains("shown 1280x800"); }, 10000);
             }},
            {"minimise",
             [&] {
                 kwinAction("Window Minimize");
                 return kwinHasDoneIt();
             }},
            {"close (Alt+F4)",
             [&] {
                 kwinAction("Window Close");
                 return kwinHasDoneIt();
             }},
        };
        // KWin's Minimize and Close act on a surface of the overlay layer too when it is the active
        // one (it closes it): then the break opens it anew.
        for (const auto& [what, act] : escapes) {
            QVERIFY2(act(), qPrintable(what + ": KWin did not do it"));
            CoveredOutputs::within2s(instance, what, [this] { return kwinScreen(); });
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(status(instance).startsWith("break "));
        // Nothing unmaps a surface of the overlay layer: one that KWin's desktop switch kept
        // from drawing for a moment was not opened anew (which would let keys through).
        QVERIFY2(!instance.log().contains("put back: unmapped"), qPrintable(instance.log().right(900)));
        other.kill();
        other.waitForFinished();
        // Skipped, the break leaves nothing on either output.
        run(LULLTIDE_BINARY, {"--skip"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(covered(), 0, 10000);
    }

    void onSwaySuperAndWorkspaceKeysDoNotReachSwayDuringABreakAndDoAfterIt()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", swayDisplay);
        const int all = int(CoveredOutputs::edges().size());
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(swayScreen()), all, 15000);
        QTRY_VERIFY_WITH_TIMEOUT(
            instance.log().contains("the compositor's own key bindings wait while a break has "
                                    "the keyboard"),
            5000);
        const QString workspace = focusedSwayWorkspace();
        QVERIFY(workspace != "9");
        QVERIFY2(pressSuper9OnSway(), qPrintable(run("cat", {scratch.filePath("sway.log")},
                                                     QProcessEnvironment::systemEnvironment())));
        QCOMPARE(focusedSwayWorkspace(), workspace);
        QVERIFY2(!instance.log().contains(" put back: ") && !instance.log().contains("took the focus back"),
                 qPrintable(instance.log().right(900)));
        QCOMPARE(CoveredOutputs::whitePoints(swayScreen()), all);

        // After the break the keys are sway's again.
        run(LULLTIDE_BINARY, {"--skip"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(swayScreen()), 0, 10000);
        QVERIFY(pressSuper9OnSway());
        QCOMPARE(focusedSwayWorkspace(), QString("9"));
        swaymsg({"workspace", "number", workspace});
    }

    // Enter on the break's focused Skip ends it, as it does for a person at a keyboard. Sway's
    // headless seat has a keyboard only while wtype runs, as if one were plugged in: held for
    // 1.5 s, it gives the break's surface the keyboard and lets its keys arm before Enter.
    void onSwayEnterOnTheFocusedSkipEndsTheBreak()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", swayDisplay);
        const int all = int(CoveredOutputs::edges().size());
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(swayScreen()), all, 15000);
        // Pressed again should a loaded machine give the break the keyboard later than that.
        QVERIFY2(QTest::qWaitFor(
                     [&] {
                         run("wtype", {"-s", "1500", "-k", "Return"}, clientOfSway());
                         return QTest::qWaitFor([&] { return instance.log().contains("skip break view"); },
                                                2000);
                     },
                     20000),
                 qPrintable(instance.log().right(900)));
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(swayScreen()), 0, 10000);
    }

    // KWin's overview and desktop grid are KWin's own drawing over every surface. Their keys are
    // held back during a break (see the Ctrl+F2 test); opened some other way (here through KWin's
    // D-Bus call for its shortcuts), they show the break small beside the desktops until they close.
    void onKWinTheOverviewAndTheDesktopGridShowTheBreakSmallUntilTheyClose()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", kwinSocket);
        QTRY_VERIFY_WITH_TIMEOUT(CoveredOutputs::covered(kwinScreen()), 15000);
        const QList<std::pair<QString, QString>> effects = {{"Overview", "overview"},
                                                            {"ShowDesktopGrid", "desktopgrid"}};
        // Whatever happens here, the next test finds neither open.
        const auto closeEffects = qScopeGuard([&] {
            for (const auto& [action, effect] : effects) {
                if (kwinActiveEffects().contains(effect))
                    kwinAction(action);
            }
        });
        const int all = int(CoveredOutputs::edges().size());
        for (const auto& [action, effect] : effects) {
            kwinAction(action);
            QTRY_VERIFY_WITH_TIMEOUT(kwinActiveEffects().contains(effect), 5000);
            QTRY_VERIFY_WITH_TIMEOUT(
                [&] {
                    const int white = CoveredOutputs::whitePoints(kwinScreen());
                    return white >= 0 && white < all;
                }(),
                5000);
            kwinAction(action);
            QTRY_VERIFY_WITH_TIMEOUT(!kwinActiveEffects().contains(effect), 5000);
            CoveredOutputs::within2s(instance, effect + " closed", [this] { return kwinScreen(); });
        }
        QVERIFY(status(instance).startsWith("break "));
        run(LULLTIDE_BINARY, {"--skip"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(kwinScreen()), 0, 10000);
    }

    void onKWinCtrlF2DoesNotReachKWinDuringABreakAndDoesAfterIt()
    {
        const auto firstDesktopAgain = qScopeGuard([] { kwinDesktopCall("setCurrentDesktop", {1}); });
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n", kwinSocket);
        QTRY_VERIFY_WITH_TIMEOUT(CoveredOutputs::covered(kwinScreen()), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(
            instance.log().contains("the compositor holds its key bindings back for the break"), 5000);
        QCOMPARE(kwinDesktopCall("currentDesktop").arguments().value(0).toInt(), 1);
        useCompositor(kwinSocket);
        constexpr quint32 ctrl = 29;
        constexpr quint32 f2 = 60;
        constexpr quint32 enter = 28;
        constexpr quint32 meta = 125;
        constexpr quint32 w = 17;
        QVERIFY(FakeInput::pressKeys({ctrl, f2}));
        QVERIFY(FakeInput::pressKeys({meta, w})); // the overview
        // Then Enter on the break's focused Skip: KWin has taken in each press before pressKeys
        // returns, so once the break is skipped, Ctrl+F2 has been and gone. (Keys in the break's first half
        // second are taken for typing and do nothing: Enter is pressed again until it acts.)
        QVERIFY2(QTest::qWaitFor(
                     [&] {
                         FakeInput::pressKeys({enter});
                         return QTest::qWaitFor([&] { return instance.log().contains("skip break view"); },
                                                1000);
                     },
                     10000),
                 qPrintable(instance.log().right(900)));
        QCOMPARE(kwinDesktopCall("currentDesktop").arguments().value(0).toInt(), 1);
        QVERIFY(!kwinActiveEffects().contains("overview"));

        // After the break the keys are KWin's again (pressed again until the break's process,
        // which may still hold them as it ends, has gone).
        QVERIFY(QTest::qWaitFor(
            [&] {
                FakeInput::pressKeys({ctrl, f2});
                return QTest::qWaitFor(
                    [] { return kwinDesktopCall("currentDesktop").arguments().value(0).toInt() == 2; }, 1000);
            },
            10000));
        QVERIFY(FakeInput::pressKeys({meta, w}));
        QTRY_VERIFY_WITH_TIMEOUT(kwinActiveEffects().contains("overview"), 5000);
        kwinAction("Overview");
        QTRY_VERIFY_WITH_TIMEOUT(!kwinActiveEffects().contains("overview"), 5000);
    }

    void onWestonABreakCoversAWindowOpenedDuringIt()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        const int all = int(CoveredOutputs::edges().size());
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), all, 15000);
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 5000);
        QProcess terminal;
        QProcessEnvironment environment = onWayland(instance.home.path());
        terminal.setProcessEnvironment(environment);
        terminal.start("weston-terminal", {});
        QVERIFY(terminal.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(instance.log().contains("the break took the focus back from another window"),
                                 5000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), all, 2000);
        terminal.kill();
        terminal.waitForFinished();
    }

    // weston's Super+K kills the program whose window has the keyboard: that is the break
    // screen's process, which the program starts again at once.
    void onWestonSuperKEndsTheBreakScreensProcessAndTheBreakCoversBothOutputsAgain()
    {
        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\n");
        QTRY_VERIFY_WITH_TIMEOUT(CoveredOutputs::covered(screen()), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 5000);
        // weston takes keys from the X window of its first output, through the X server.
        QString output;
        for (const QString& line : onX("xwininfo", {"-root", "-children"}).split('\n')) {
            if (line.contains("\"Weston Compositor - screen0\""))
                output = line.trimmed().section(' ', 0, 0);
        }
        QVERIFY(!output.isEmpty());
        // weston's keyboard focus follows its X window's. While it moves, the break may lose the
        // keyboard for a moment and take it back by opening its windows anew; Super+K pressed
        // then finds no surface to end. So it is pressed again until it has acted.
        QVERIFY2(QTest::qWaitFor(
                     [&] {
                         onX("xdotool", {"windowfocus", "--sync", output});
                         onX("xdotool", {"key", "super+k"});
                         return QTest::qWaitFor(
                             [&] {
                                 return instance.log().contains(
                                     "the break screen ended during the break: starting it again");
                             },
                             2000);
                     },
                     12000),
                 qPrintable(instance.log().right(900)));
        // The new process has started (each says how it covers the screens), by which time
        // weston has long taken the old one's windows off the outputs.
        QTRY_VERIFY_WITH_TIMEOUT(
            int(instance.log().count("breaks cover the screens as full-screen windows")) >= 2, 10000);
        // A new process, not a put-back: about one and a half seconds on a quiet machine, without
        // the fade of a break's start; more under load.
        QTRY_VERIFY_WITH_TIMEOUT(CoveredOutputs::covered(screen()), 10000);
        QCOMPARE(instance.process.state(), QProcess::Running);
        QVERIFY(status(instance).startsWith("break "));
        run(LULLTIDE_BINARY, {"--skip"}, onWayland(instance.home.path()));
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(screen()), 0, 5000);
    }

    void onSwayAFullScreenWindowOfAnotherProgramHoldsTheBreakUntilItLeavesFullScreen()
    {
        QProcess other;
        QTemporaryDir otherHome;
        startAnotherProgram(other, otherHome.path(), swayDisplay);
        QVERIFY(other.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(swayWindow("another program").value("fullscreen_mode").toInt(), 1, 10000);

        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\nhold_breaks=true\n", swayDisplay);
        QTRY_VERIFY_WITH_TIMEOUT(
            instance.log().contains(
                "breaks are held for full-screen windows through the compositor's window list"),
            5000);
        // Due after three seconds of work, and held.
        QTRY_VERIFY2_WITH_TIMEOUT(status(instance).startsWith("held "),
                                  qPrintable(status(instance) + instance.log().right(600)), 15000);
        QCOMPARE(CoveredOutputs::whitePoints(swayScreen()), 0);
        swaymsg({"fullscreen", "disable"});
        // The break follows the hold's ten seconds of notice.
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 30000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(swayScreen()),
                                  int(CoveredOutputs::edges().size()), 5000);
        other.kill();
        other.waitForFinished();
    }

    void onKWinAFullScreenWindowOfAnotherProgramHoldsTheBreakUntilItLeavesFullScreen()
    {
        QProcess other;
        QTemporaryDir otherHome;
        startAnotherProgram(other, otherHome.path(), kwinSocket);
        QVERIFY(other.waitForStarted());
        // Full screen on one output: that output all black.
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(kwinScreen()), 0, 10000);

        Instance instance;
        start(instance, "work_time=0.05\nbreak_time=200\nhold_breaks=true\n", kwinSocket);
        QTRY_VERIFY_WITH_TIMEOUT(
            instance.log().contains("breaks are held for full-screen windows through the compositor's window "
                                    "list (org_kde_plasma_window_management)"),
            5000);
        QTRY_VERIFY2_WITH_TIMEOUT(status(instance).startsWith("held "),
                                  qPrintable(status(instance) + instance.log().right(600)), 15000);
        QCOMPARE(CoveredOutputs::whitePoints(kwinScreen()), 0);
        kwinAction("Window Fullscreen"); // the other program's window, active, leaves full screen
        // The break follows the hold's ten seconds of notice.
        QTRY_VERIFY_WITH_TIMEOUT(status(instance).startsWith("break "), 30000);
        QTRY_COMPARE_WITH_TIMEOUT(CoveredOutputs::whitePoints(kwinScreen()),
                                  int(CoveredOutputs::edges().size()), 5000);
        other.kill();
        other.waitForFinished();
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
        QCOMPARE(idleChild("idle-cycle", kwinSocket, home.path()),
                 QStringList({"stopped after idleness", "working again after a pointer move"}));
        const QString log = TestSupport::logTextIn(home.path());
        QCOMPARE(
            log.count("pointer idleness from the compositor's idle notifications (ext_idle_notifier_v1)"), 1);
        QVERIFY(!log.contains("no pointer monitor"));
        QCOMPARE(log.count("ticktack timer start 1500.0"), 2);
    }

    void swayTellsOfIdlenessThroughKdesOlderProtocol()
    {
        useCompositor(swayDisplay);
        WaylandIdleMonitor monitor;
        QVERIFY(monitor.start(std::chrono::milliseconds(600)));
        QCOMPARE(monitor.protocol(), QStringLiteral("org_kde_kwin_idle"));
        QSignalSpy idle(&monitor, &PointerMonitor::idle);
        QSignalSpy activity(&monitor, &PointerMonitor::activity);
        QTRY_COMPARE_WITH_TIMEOUT(idle.count(), 1, 5000);
        QCOMPARE(activity.count(), 0);
        QVERIFY(FakeInput::movePointer());
        QTRY_COMPARE_WITH_TIMEOUT(activity.count(), 1, 5000);
    }

    void onSwayIdlenessStopsTheCycleAndAPointerMoveStartsIt()
    {
        QTemporaryDir home;
        QCOMPARE(idleChild("idle-cycle", swayDisplay, home.path()),
                 QStringList({"stopped after idleness", "working again after a pointer move"}));
        const QString log = TestSupport::logTextIn(home.path());
        QCOMPARE(log.count("pointer idleness from the compositor's idle notifications (org_kde_kwin_idle)"),
                 1);
        QVERIFY(!log.contains("no pointer monitor"));
        QCOMPARE(log.count("ticktack timer start 1500.0"), 2);
    }

    void onWestonWhichTellsNoIdlenessTheCycleNeverStopsForIt()
    {
        QTemporaryDir home;
        QCOMPARE(idleChild("idle-never", socket, home.path()),
                 QStringList({"still working past the idle timeout"}));
        const QString log = TestSupport::logTextIn(home.path());
        QCOMPARE(log.count("no pointer monitor on the offscreen platform"), 1);
        QCOMPARE(log.count("ticktack timer start 1500.0"), 1);
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
        QCOMPARE(instance.log().count(
                     "pointer idleness from the compositor's idle notifications (ext_idle_notifier_v1)"),
                 1);
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
