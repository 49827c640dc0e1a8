// SPDX-License-Identifier: GPL-3.0-or-later
#include "TestSupport.h"

#include <QQuickItem>

#include "logging/Logger.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/types.h>
#include <unistd.h>
#include <vector>

#include <X11/Xlib.h>

namespace TestSupport {

QString isolateUserDirs()
{
    // Removed when the test program ends, with whatever the program under test left in it.
    static QTemporaryDir root(QDir::tempPath() + QStringLiteral("/lulltide-test-XXXXXX"));
    QString home = root.path();
    qputenv("HOME", home.toUtf8());
    qputenv("XDG_CONFIG_HOME", (home + QStringLiteral("/.config")).toUtf8());
    qputenv("XDG_CACHE_HOME", (home + QStringLiteral("/.cache")).toUtf8());
    qputenv("XDG_DATA_HOME", (home + QStringLiteral("/.local/share")).toUtf8());
    // No test speaks to the real update server: an automatic check that comes due during a long
    // test asks this machine's discard port, which refuses at once.
    qputenv("LULLTIDE_FEED_URL", "http://127.0.0.1:9/appcast.xml");
    return home;
}

QString logText()
{
    const auto path = Logger::logfilePath();
    if (!path)
        return {};
    QFile file(*path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll());
}

QStringList logLines()
{
    return logText().split(u'\n', Qt::SkipEmptyParts);
}

QString logTextIn(const QString& home)
{
    QDir logs(home + QStringLiteral("/.cache/Logs"));
    QString text;
    for (const QString& name : logs.entryList({QStringLiteral("*.log")}, QDir::Files)) {
        QFile file(logs.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            text += QString::fromUtf8(file.readAll());
    }
    return text;
}

namespace {

// A session bus that starts no services of its own: a notification server or anything else the
// machine happens to have installed must not answer where a test expects nobody.
const char privateBusConfig[] =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

QByteArray privateBusConfigFile()
{
    static QByteArray path;
    if (!path.isEmpty())
        return path;
    char name[] = "/tmp/lulltide-test-bus-XXXXXX.conf";
    const int fd = ::mkstemps(name, 5);
    if (fd < 0 || ::write(fd, privateBusConfig, sizeof privateBusConfig - 1) < 0)
        qFatal("cannot write the test bus's configuration");
    ::close(fd);
    path = name;
    std::atexit([] { ::unlink(path.constData()); });
    return path;
}

// Starts a dbus-daemon with a session configuration that activates nothing and points
// `variable` at it; the daemon ends with this program.
void startPrivateBus(const char* variable)
{
    if (!qEnvironmentVariableIsEmpty("LULLTIDE_TEST_CHILD"))
        return;
    const QByteArray command =
        "dbus-daemon --config-file=" + privateBusConfigFile() + " --fork --print-address=1 --print-pid=1";
    FILE* daemon = popen(command.constData(), "r");
    if (!daemon)
        qFatal("cannot start dbus-daemon");
    char address[1024] = {};
    char pidText[64] = {};
    const bool read =
        std::fgets(address, sizeof address, daemon) && std::fgets(pidText, sizeof pidText, daemon);
    pclose(daemon);
    if (!read)
        qFatal("dbus-daemon did not tell its address");
    static std::vector<pid_t> daemons;
    if (daemons.empty())
        std::atexit([] {
            for (pid_t pid : daemons)
                ::kill(pid, SIGTERM);
        });
    daemons.push_back(static_cast<pid_t>(std::atol(pidText)));
    qputenv(variable, QByteArray(address).trimmed());
}

} // namespace

void startPrivateSessionBus()
{
    startPrivateBus("DBUS_SESSION_BUS_ADDRESS");
}

void startPrivateBuses()
{
    startPrivateBus("DBUS_SESSION_BUS_ADDRESS");
    startPrivateBus("DBUS_SYSTEM_BUS_ADDRESS");
}

void startPrivateDisplayWithWindowManager()
{
    if (!qEnvironmentVariableIsEmpty("LULLTIDE_TEST_CHILD"))
        return;
    // Xvfb picks a free display itself and writes its number to the given descriptor.
    FILE* server = popen("Xvfb -displayfd 1 -screen 0 1280x800x24 -nolisten tcp 2>/dev/null & echo $!", "r");
    if (!server)
        qFatal("cannot start Xvfb");
    char pidText[64] = {};
    char display[64] = {};
    const bool read =
        std::fgets(pidText, sizeof pidText, server) && std::fgets(display, sizeof display, server);
    if (!read)
        qFatal("Xvfb did not tell its display");
    static pid_t serverPid = static_cast<pid_t>(std::atol(pidText));
    qputenv("DISPLAY", ":" + QByteArray(display).trimmed());
    static pid_t windowManagerPid = [] {
        FILE* openbox = popen("openbox >/dev/null 2>&1 & echo $!", "r");
        char text[64] = {};
        const bool started = openbox && std::fgets(text, sizeof text, openbox);
        if (openbox)
            pclose(openbox);
        return started ? static_cast<pid_t>(std::atol(text)) : pid_t(0);
    }();
    std::atexit([] {
        if (windowManagerPid > 0)
            ::kill(windowManagerPid, SIGTERM);
        ::kill(serverPid, SIGTERM);
    });
    // Gives the window manager a moment to take the screen.
    ::usleep(300 * 1000);
}

QString writeStandInTool(const QString& folder, const QString& name)
{
    QString record = folder + u'/' + name + QStringLiteral(".args");
    QFile script(folder + u'/' + name);
    script.open(QIODevice::WriteOnly);
    script.write(QStringLiteral("#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done > '%1'\n")
                     .arg(record)
                     .toUtf8());
    script.close();
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return record;
}

QStringList recordedArguments(const QString& record)
{
    QFile file(record);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList arguments = QString::fromUtf8(file.readAll()).split(QChar(0));
    arguments.removeLast();
    return arguments;
}

QString ProgramRun::log() const
{
    return logTextIn(home.path());
}

ProgramRun::~ProgramRun()
{
    process.terminate();
    process.waitForFinished(5000);
}

QQuickItem* findItem(QQuickItem* parent, const QString& objectName)
{
    for (QQuickItem* child : parent->childItems()) {
        if (child->objectName() == objectName)
            return child;
        if (QQuickItem* found = findItem(child, objectName))
            return found;
    }
    return nullptr;
}

namespace {

// The fields of /proc/<pid>/stat after the name, from the state on; empty when the process is
// gone. "pid (name) state ppid ...": the name may hold spaces and parentheses.
QList<QByteArray> statusFields(qint64 pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return {};
    const QByteArray line = stat.readAll();
    const qsizetype nameEnd = line.lastIndexOf(')');
    return nameEnd < 0 ? QList<QByteArray>() : line.mid(nameEnd + 2).split(' ');
}

} // namespace

QList<qint64> processTree(qint64 pid)
{
    QMultiHash<qint64, qint64> children;
    for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        bool isNumber = false;
        const qint64 child = entry.toLongLong(&isNumber);
        if (!isNumber)
            continue;
        const QList<QByteArray> fields = statusFields(child);
        if (fields.size() > 1)
            children.insert(fields.at(1).toLongLong(), child);
    }
    QList<qint64> tree{pid};
    for (qsizetype i = 0; i < tree.size(); ++i)
        tree += children.values(tree.at(i));
    return tree;
}

bool processRunning(qint64 pid)
{
    const QList<QByteArray> fields = statusFields(pid);
    if (fields.isEmpty())
        return false;
    return fields.first() != "Z" || QDir(QStringLiteral("/proc/%1/task").arg(pid))
                                            .entryList(QDir::Dirs | QDir::NoDotAndDotDot)
                                            .size() > 1;
}

bool waitForProcessesToEnd(const QList<qint64>& pids, int ms)
{
    const auto allEnded = [&] { return std::none_of(pids.begin(), pids.end(), processRunning); };
    if (QTest::qWaitFor(allEnded, ms))
        return true;
    for (qint64 pid : pids) {
        if (processRunning(pid))
            ::kill(pid_t(pid), SIGKILL);
    }
    // Killed: waited for only so that the next test meets none of them.
    static_cast<void>(QTest::qWaitFor(allEnded, 5000));
    return false;
}

QStringList visibleWindowsOf(qint64 pid, const QProcessEnvironment& environment)
{
    QStringList windows;
    for (qint64 member : processTree(pid))
        windows += searchWindows(
            {QStringLiteral("--onlyvisible"), QStringLiteral("--pid"), QString::number(member)}, environment);
    return windows;
}

bool askWindowToClose(const QString& window)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display)
        return false;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = Window(window.toULong());
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = long(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display); // flushes the request
    return true;
}

QStringList searchWindows(const QStringList& arguments, const QProcessEnvironment& environment)
{
    for (int attempt = 0;; ++attempt) {
        QProcess search;
        search.setProcessEnvironment(environment);
        search.start(QStringLiteral("xdotool"), QStringList{QStringLiteral("search")} + arguments);
        search.waitForFinished(10000);
        const QByteArray errors = search.readAllStandardError();
        // xdotool also ends with 1 when nothing matched; only an X error means "ask again".
        if (errors.contains("X Error") && attempt < 20)
            continue;
        return QString::fromUtf8(search.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    }
}

namespace {

// Windows come and go while the tree is walked: a window gone in between is no error here.
int ignoreXErrors(Display*, XErrorEvent*)
{
    return 0;
}

QString roleOf(Display* display, ::Window window)
{
    Atom type = None;
    int format = 0;
    unsigned long items = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    const Atom role = XInternAtom(display, "WM_WINDOW_ROLE", False);
    if (XGetWindowProperty(display, window, role, 0, 256, False, AnyPropertyType, &type, &format, &items,
                           &after, &data) != Success ||
        !data)
        return {};
    QString text = QString::fromLatin1(reinterpret_cast<const char*>(data), qsizetype(items));
    XFree(data);
    return text;
}

void collectWithRole(Display* display, ::Window window, const QString& role, bool onlyVisible,
                     QStringList& found)
{
    if (roleOf(display, window) == role) {
        XWindowAttributes attributes{};
        if (!onlyVisible ||
            (XGetWindowAttributes(display, window, &attributes) && attributes.map_state == IsViewable))
            found << QString::number(window);
    }
    ::Window root = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display, window, &root, &parent, &children, &count))
        return;
    for (unsigned int i = 0; i < count; ++i)
        collectWithRole(display, children[i], role, onlyVisible, found);
    if (children)
        XFree(children);
}

} // namespace

QStringList windowsWithRole(const QString& role, bool onlyVisible, const QProcessEnvironment& environment)
{
    Display* display = XOpenDisplay(environment.value(QStringLiteral("DISPLAY")).toLocal8Bit().constData());
    if (!display)
        return {};
    const auto previous = XSetErrorHandler(ignoreXErrors);
    QStringList found;
    collectWithRole(display, DefaultRootWindow(display), role, onlyVisible, found);
    XSync(display, False);
    XSetErrorHandler(previous);
    XCloseDisplay(display);
    return found;
}

QProcessEnvironment environmentWithHome(const QString& root)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), root);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), root + QStringLiteral("/.config"));
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), root + QStringLiteral("/.cache"));
    environment.insert(QStringLiteral("XDG_DATA_HOME"), root + QStringLiteral("/.local/share"));
    return environment;
}

QProcessEnvironment waylandClientWithHome(const QString& root, const QString& runtime, const QString& socket)
{
    QProcessEnvironment environment = environmentWithHome(root);
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), socket);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

ChildResult runChild(const QByteArray& mode, const QProcessEnvironment& environment, int timeoutMs)
{
    QProcessEnvironment childEnvironment = environment;
    childEnvironment.insert(QStringLiteral("LULLTIDE_TEST_CHILD"), QString::fromUtf8(mode));
    QProcess child;
    child.setProcessEnvironment(childEnvironment);
    child.start(QCoreApplication::applicationFilePath(), {});
    ChildResult result;
    if (!child.waitForFinished(timeoutMs)) {
        child.kill();
        child.waitForFinished();
    }
    result.crashed = child.exitStatus() == QProcess::CrashExit;
    result.exitCode = child.exitCode();
    result.standardOutput = QString::fromUtf8(child.readAllStandardOutput());
    result.standardError = QString::fromUtf8(child.readAllStandardError());
    return result;
}

bool waitForEnd(QProcess& process, int ms)
{
    if (process.state() == QProcess::NotRunning || process.waitForFinished(ms))
        return true;
    QProcess gdb;
    gdb.start(QStringLiteral("gdb"),
              {QStringLiteral("-batch"), QStringLiteral("-p"), QString::number(process.processId()),
               QStringLiteral("-ex"), QStringLiteral("thread apply all bt")});
    gdb.waitForFinished(60000);
    qWarning().noquote() << "the program did not end within" << ms << "ms; its threads:\n"
                         << QString::fromLocal8Bit(gdb.readAllStandardOutput() + gdb.readAllStandardError());
    return false;
}

const void* currentXlibErrorHandler()
{
    const XErrorHandler handler = XSetErrorHandler(nullptr);
    XSetErrorHandler(handler);
    return reinterpret_cast<const void*>(handler);
}

AccessibilityBus::AccessibilityBus()
{
    launcher.start(QStringLiteral("/usr/libexec/at-spi-bus-launcher"),
                   {QStringLiteral("--launch-immediately")});
}

AccessibilityBus::~AccessibilityBus()
{
    launcher.terminate();
    launcher.waitForFinished(5000);
}

bool AccessibilityBus::started()
{
    return launcher.waitForStarted() &&
           QTest::qWaitFor(
               [] {
                   return QDBusConnection::sessionBus().interface()->isServiceRegistered(
                       QStringLiteral("org.a11y.Bus"));
               },
               10000);
}

QString atspi(const QStringList& arguments)
{
    QProcess walk;
    walk.start(
        QStringLiteral("/usr/bin/python3"),
        QStringList{QStringLiteral(TESTS_SOURCE_DIR "/support/atspi-tree.py"), QStringLiteral("Lulltide")} +
            arguments);
    walk.waitForFinished(30000);
    return QString::fromUtf8(walk.readAllStandardOutput());
}

} // namespace TestSupport
