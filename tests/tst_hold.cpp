// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/StandInPowerManagement.h"
#include "support/TestMain.h"

#include "hold/DBusPropertyHoldSource.h"
#include "hold/FullScreenHoldSource.h"
#include "hold/GSettingsHoldSource.h"
#include "hold/HoldConditions.h"
#include "hold/PowerInhibitHoldSource.h"
#include "hold/XfconfHoldSource.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QWidget>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

namespace {

// Sends org.freedesktop.DBus.Properties.PropertiesChanged as a real service does.
void announce(const QDBusConnection& bus, const QString& path, const QString& interface, const QString& name,
              const QVariant& value)
{
    QDBusMessage signal = QDBusMessage::createSignal(path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                     QStringLiteral("PropertiesChanged"));
    signal << interface << QVariantMap{{name, value}} << QStringList();
    bus.send(signal);
}

// GNOME's session manager, as far as holding goes: the InhibitedActions flags.
class StandInSessionManager : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.gnome.SessionManager")
    Q_PROPERTY(uint InhibitedActions READ inhibitedActions)

public:
    explicit StandInSessionManager(const QDBusConnection& bus) : m_bus(bus) {}
    bool start()
    {
        return m_bus.registerObject("/org/gnome/SessionManager", this,
                                    QDBusConnection::ExportAllProperties) &&
               m_bus.registerService("org.gnome.SessionManager");
    }
    void stop()
    {
        m_bus.unregisterService("org.gnome.SessionManager");
        m_bus.unregisterObject("/org/gnome/SessionManager");
    }
    uint inhibitedActions() const { return m_flags; }
    void setFlags(uint flags)
    {
        m_flags = flags;
        announce(m_bus, "/org/gnome/SessionManager", "org.gnome.SessionManager", "InhibitedActions", flags);
    }

private:
    QDBusConnection m_bus;
    uint m_flags = 0;
};

// KDE Plasma's notification server, as far as Do Not Disturb goes.
class StandInPlasmaNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
    Q_PROPERTY(bool Inhibited READ inhibited)

public:
    explicit StandInPlasmaNotifications(const QDBusConnection& bus) : m_bus(bus) {}
    bool start()
    {
        return m_bus.registerObject("/org/freedesktop/Notifications", this,
                                    QDBusConnection::ExportAllProperties) &&
               m_bus.registerService("org.freedesktop.Notifications");
    }
    void stop()
    {
        m_bus.unregisterService("org.freedesktop.Notifications");
        m_bus.unregisterObject("/org/freedesktop/Notifications");
    }
    bool inhibited() const { return m_inhibited; }
    void setInhibited(bool inhibited)
    {
        m_inhibited = inhibited;
        announce(m_bus, "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "Inhibited",
                 inhibited);
    }

private:
    QDBusConnection m_bus;
    bool m_inhibited = false;
};

// xfconfd, as far as xfce4-notifyd's /do-not-disturb goes.
class StandInXfconf : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.xfce.Xfconf")

public:
    explicit StandInXfconf(const QDBusConnection& bus) : m_bus(bus) {}
    bool start()
    {
        return m_bus.registerObject("/org/xfce/Xfconf", this, QDBusConnection::ExportScriptableContents) &&
               m_bus.registerService("org.xfce.Xfconf");
    }
    void set(const QString& channel, const QString& property, const QVariant& value)
    {
        m_values.insert(channel + property, value);
        emit PropertyChanged(channel, property, QDBusVariant(value));
    }
    void remove(const QString& channel, const QString& property)
    {
        m_values.remove(channel + property);
        emit PropertyRemoved(channel, property);
    }

public slots:
    Q_SCRIPTABLE QDBusVariant GetProperty(const QString& channel, const QString& property)
    {
        return QDBusVariant(m_values.value(channel + property));
    }

signals:
    Q_SCRIPTABLE void PropertyChanged(const QString& channel, const QString& property,
                                      const QDBusVariant& value);
    Q_SCRIPTABLE void PropertyRemoved(const QString& channel, const QString& property);

private:
    QDBusConnection m_bus;
    QVariantMap m_values;
};

// A condition set by hand, for the aggregate.
class ManualCondition : public HoldSource {
public:
    explicit ManualCondition(QString reason) : m_reason(std::move(reason)) {}
    bool holding() const override { return m_holding; }
    QString reason() const override { return m_holding ? m_reason : QString(); }
    void set(bool holding)
    {
        m_holding = holding;
        emit holdingChanged();
    }

private:
    QString m_reason;
    bool m_holding = false;
};

QString run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(10000);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

} // namespace

// On an X server of its own with openbox, and a session bus of its own where stand-ins speak
// the desktop services' real interfaces from a second connection.
class HoldTest : public QObject {
    Q_OBJECT

    QDBusConnection desktop =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("desktop"));

    static DBusPropertyHoldSource* sessionManagerSource()
    {
        auto* source = new DBusPropertyHoldSource(QDBusConnection::sessionBus(),
                                                  {"org.gnome.SessionManager", "/org/gnome/SessionManager",
                                                   "org.gnome.SessionManager", "InhibitedActions",
                                                   [](const QVariant& value) {
                                                       return value.typeId() == QMetaType::UInt &&
                                                              (value.toUInt() & 8) != 0;
                                                   }},
                                                  "an application keeps the session awake");
        source->start();
        return source;
    }

    // Another program's window, active: this test program run again as a child that shows one
    // plain window titled `name` until it is killed.
    QProcess* otherProgramWindow(const QString& name)
    {
        auto* program = new QProcess(this);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LULLTIDE_TEST_CHILD", "window");
        environment.insert("LULLTIDE_TEST_WINDOW", name);
        program->setProcessEnvironment(environment);
        program->start(QCoreApplication::applicationFilePath(), {});
        return program;
    }
    static bool activeWindowNamed(const QString& name)
    {
        return run("xdotool", {"getactivewindow", "getwindowname"}) == name;
    }
    // Asks the window manager, as a player's full-screen button does, until the window is full
    // screen: a request sent while the window manager is still taking the new window on is lost.
    static void makeFullScreen(const QString& name)
    {
        for (int attempt = 0; attempt < 20; ++attempt) {
            run("wmctrl", {"-r", name, "-b", "add,fullscreen"});
            if (QTest::qWaitFor(
                    [&name] {
                        return run("xprop", {"-name", name, "_NET_WM_STATE"})
                            .contains("_NET_WM_STATE_FULLSCREEN");
                    },
                    500))
                return;
        }
    }

    // Signals heard on the hold sources' own connection.
    int m_signals = 0;

public slots:
    void countSignal() { ++m_signals; }

private slots:
    void initTestCase() { QVERIFY(desktop.isConnected()); }

    void anotherProgramsFullScreenWindowHoldsUntilItLeavesFullScreen()
    {
        FullScreenHoldSource source;
        QVERIFY(source.start());
        QVERIFY(!source.holding());
        QProcess* program = otherProgramWindow("slides");
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("slides"), 10000);
        QSignalSpy changes(&source, &HoldSource::holdingChanged);
        makeFullScreen("slides");
        QTRY_VERIFY_WITH_TIMEOUT(source.holding(), 10000);
        QCOMPARE(source.reason(), "another program is full screen");
        QCOMPARE(changes.size(), 1);
        run("wmctrl", {"-r", "slides", "-b", "remove,fullscreen"});
        QTRY_VERIFY_WITH_TIMEOUT(!source.holding(), 10000);
        QCOMPARE(source.reason(), QString());
        program->kill();
        program->waitForFinished();
    }

    void aFullScreenWindowThatStopsBeingActiveNoLongerHolds()
    {
        FullScreenHoldSource source;
        QVERIFY(source.start());
        QProcess* film = otherProgramWindow("film");
        QProcess* editor = nullptr;
        const auto closeBoth = qScopeGuard([&] {
            for (QProcess* program : {film, editor}) {
                if (program) {
                    program->kill();
                    program->waitForFinished();
                }
            }
        });
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("film"), 10000);
        makeFullScreen("film");
        QTRY_VERIFY_WITH_TIMEOUT(source.holding(), 10000);
        editor = otherProgramWindow("editor");
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("editor"), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(!source.holding(), 10000);
    }

    void ourOwnFullScreenWindowDoesNotHold()
    {
        FullScreenHoldSource source;
        QVERIFY(source.start());
        QSignalSpy changes(&source, &HoldSource::holdingChanged);
        QWidget ours;
        ours.setWindowTitle("ours");
        ours.showFullScreen();
        QVERIFY(QTest::qWaitForWindowExposed(&ours));
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("ours"), 10000);
        // Another program full screen next proves the source was listening all along: the source
        // reads the X server's events in order, so by the time it holds for the game it has seen
        // our window active and full screen, and had it held then, it would have told twice more.
        QProcess* program = otherProgramWindow("game");
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("game"), 10000);
        makeFullScreen("game");
        QTRY_VERIFY_WITH_TIMEOUT(source.holding(), 10000);
        QCOMPARE(changes.size(), 1);
        program->kill();
        program->waitForFinished();
        ours.activateWindow();
        QTRY_VERIFY_WITH_TIMEOUT(activeWindowNamed("ours"), 10000);
        QTRY_VERIFY(!source.holding());
    }

    void gnomeSessionManagerIdleInhibitorHoldsAndFollowsTheService()
    {
        std::unique_ptr<DBusPropertyHoldSource> source(sessionManagerSource());
        QVERIFY(!source->holding()); // no session manager yet
        StandInSessionManager manager(desktop);
        manager.setFlags(8);
        QVERIFY(manager.start());
        QTRY_VERIFY(source->holding()); // read when it appeared
        QCOMPARE(source->reason(), "an application keeps the session awake");
        manager.setFlags(4); // suspend only: not idleness
        QTRY_VERIFY(!source->holding());
        manager.setFlags(8 | 4);
        QTRY_VERIFY(source->holding());
        manager.stop(); // the session manager went: nothing holds
        QTRY_VERIFY(!source->holding());
    }

    void aPropertyOfTheWrongTypeHoldsNothing()
    {
        std::unique_ptr<DBusPropertyHoldSource> source(sessionManagerSource());
        StandInSessionManager manager(desktop);
        manager.setFlags(8);
        QVERIFY(manager.start());
        QTRY_VERIFY(source->holding()); // the answer to the first question is in
        announce(desktop, "/org/gnome/SessionManager", "org.gnome.SessionManager", "InhibitedActions",
                 QStringLiteral("8"));
        QTRY_VERIFY(!source->holding());
        manager.stop();
    }

    void powerManagementInhibitHoldsWhileAnApplicationInhibits()
    {
        StandInPowerManagement power(desktop);
        QVERIFY(power.start());
        power.setInhibit(true);
        PowerInhibitHoldSource source(QDBusConnection::sessionBus());
        source.start();
        QTRY_VERIFY(source.holding()); // asked at start
        QCOMPARE(source.reason(), "an application keeps the session awake");
        power.setInhibit(false);
        QTRY_VERIFY(!source.holding());
        power.setInhibit(true);
        QTRY_VERIFY(source.holding());
        desktop.unregisterService("org.freedesktop.PowerManagement");
        QTRY_VERIFY(!source.holding());
        desktop.unregisterObject("/org/freedesktop/PowerManagement/Inhibit");
    }

    void anAnswerThatArrivesAfterTheServiceWentHoldsNothing()
    {
        StandInPowerManagement power(desktop);
        QVERIFY(power.start());
        power.setInhibit(true);
        power.holdAnswers();
        PowerInhibitHoldSource source(QDBusConnection::sessionBus());
        source.start();
        QTRY_COMPARE(power.heldQuestions(), 1);
        desktop.unregisterService("org.freedesktop.PowerManagement");
        // The late answer, then a signal sent after it on the same connection: once the signal
        // is in, so is the answer.
        QVERIFY(QDBusConnection::sessionBus().connect(QString(), "/org/freedesktop/PowerManagement/Inhibit",
                                                      "org.freedesktop.PowerManagement.Inhibit",
                                                      "HasInhibitChanged", this, SLOT(countSignal())));
        auto disconnect = qScopeGuard([&] {
            QDBusConnection::sessionBus().disconnect(QString(), "/org/freedesktop/PowerManagement/Inhibit",
                                                     "org.freedesktop.PowerManagement.Inhibit",
                                                     "HasInhibitChanged", this, SLOT(countSignal()));
        });
        m_signals = 0;
        power.answerHeld();
        power.setInhibit(true);
        QTRY_COMPARE(m_signals, 1);
        QVERIFY(!source.holding());
        desktop.unregisterObject("/org/freedesktop/PowerManagement/Inhibit");
    }

    void startingASourceWaitsForNoAnswerFromTheBus()
    {
        // A bus of our own, then stopped: a question that waits for its answer would hang here
        // until the bus library gives up, 25 seconds on.
        QProcess daemon;
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        QVERIFY(daemon.waitForReadyRead(20000));
        const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
        QDBusConnection bus = QDBusConnection::connectToBus(address, "stopped-bus");
        auto cleanUp = qScopeGuard([&] {
            ::kill(pid_t(daemon.processId()), SIGCONT);
            QDBusConnection::disconnectFromBus("stopped-bus");
            daemon.terminate();
            daemon.waitForFinished();
        });
        QVERIFY(bus.isConnected());
        QCOMPARE(::kill(pid_t(daemon.processId()), SIGSTOP), 0);
        std::mutex mutex;
        std::condition_variable returned;
        bool startReturned = false;
        bool resumedByTheWatchdog = false;
        std::thread watchdog([&] {
            std::unique_lock lock(mutex);
            if (!returned.wait_for(lock, std::chrono::seconds(15), [&] { return startReturned; })) {
                resumedByTheWatchdog = true;
                ::kill(pid_t(daemon.processId()), SIGCONT);
            }
        });
        {
            PowerInhibitHoldSource source(bus);
            source.start();
            QVERIFY(!source.holding());
        }
        {
            std::lock_guard lock(mutex);
            startReturned = true;
        }
        returned.notify_one();
        watchdog.join();
        // Back before the watchdog had to wake the bus.
        QVERIFY(!resumedByTheWatchdog);
    }

    void aSignalFromAnyoneButTheServicesOwnerIsIgnored()
    {
        StandInPowerManagement power(desktop);
        QVERIFY(power.start());
        PowerInhibitHoldSource source(QDBusConnection::sessionBus());
        source.start();
        QDBusConnection impostor =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("impostor"));
        auto cleanUp = qScopeGuard([this] {
            QDBusConnection::disconnectFromBus(QStringLiteral("impostor"));
            desktop.unregisterService("org.freedesktop.PowerManagement");
            desktop.unregisterObject("/org/freedesktop/PowerManagement/Inhibit");
        });
        QVERIFY(impostor.isConnected());
        // The source knows the owner once the owner's first word is heard.
        power.setInhibit(true);
        QTRY_VERIFY(source.holding());
        power.setInhibit(false);
        QTRY_VERIFY(!source.holding());

        QDBusMessage lie =
            QDBusMessage::createSignal("/org/freedesktop/PowerManagement/Inhibit",
                                       "org.freedesktop.PowerManagement.Inhibit", "HasInhibitChanged");
        lie << true;
        QVERIFY(impostor.send(lie));
        // The impostor's answer to a ping comes after its signal: once it is in, so is the signal.
        const QDBusMessage ping =
            QDBusMessage::createMethodCall(impostor.baseService(), "/", "org.freedesktop.DBus.Peer", "Ping");
        QCOMPARE(QDBusConnection::sessionBus().call(ping).type(), QDBusMessage::ReplyMessage);
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
        QVERIFY(!source.holding());
    }

    void theFullScreenSourceGivesTheXlibErrorHandlerBack()
    {
        const void* before = TestSupport::currentXlibErrorHandler();
        {
            FullScreenHoldSource source;
            QVERIFY(source.start());
            QVERIFY(TestSupport::currentXlibErrorHandler() != before);
        }
        QCOMPARE(TestSupport::currentXlibErrorHandler(), before);
    }

    void plasmaDoNotDisturbHoldsWhileNotificationsAreInhibited()
    {
        DBusPropertyHoldSource source(
            QDBusConnection::sessionBus(),
            {"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
             "org.freedesktop.Notifications", "Inhibited",
             [](const QVariant& value) { return value.typeId() == QMetaType::Bool && value.toBool(); }},
            "Do Not Disturb is on");
        source.start();
        StandInPlasmaNotifications plasma(desktop);
        QVERIFY(plasma.start());
        plasma.setInhibited(true);
        QTRY_VERIFY(source.holding());
        QCOMPARE(source.reason(), "Do Not Disturb is on");
        plasma.setInhibited(false);
        QTRY_VERIFY(!source.holding());
        plasma.stop();
    }

    void xfceDoNotDisturbHoldsWhileXfconfSaysSo()
    {
        StandInXfconf xfconf(desktop);
        QVERIFY(xfconf.start());
        xfconf.set("xfce4-notifyd", "/do-not-disturb", true);
        XfconfHoldSource source(QDBusConnection::sessionBus());
        source.start();
        QTRY_VERIFY(source.holding());
        QCOMPARE(source.reason(), "Do Not Disturb is on");
        // Another channel's property of the same name is not ours.
        xfconf.set("xfce4-panel", "/do-not-disturb", false);
        xfconf.set("xfce4-notifyd", "/do-not-disturb", false);
        QTRY_VERIFY(!source.holding());
        xfconf.set("xfce4-notifyd", "/do-not-disturb", true);
        QTRY_VERIFY(source.holding());
        xfconf.remove("xfce4-notifyd", "/do-not-disturb");
        QTRY_VERIFY(!source.holding());
        desktop.unregisterService("org.xfce.Xfconf");
        desktop.unregisterObject("/org/xfce/Xfconf");
    }

    void gnomeDoNotDisturbHoldsWhileBannersAreOff()
    {
        GSettingsHoldSource source("org.gnome.desktop.notifications", "show-banners", false,
                                   "Do Not Disturb is on");
        QVERIFY2(source.start(), "the schema org.gnome.desktop.notifications is installed");
        QVERIFY(!source.holding());
        // Set as GNOME's Settings does, from another process, through the same keyfile.
        run("gsettings", {"set", "org.gnome.desktop.notifications", "show-banners", "false"});
        QTRY_VERIFY_WITH_TIMEOUT(source.holding(), 10000);
        QCOMPARE(source.reason(), "Do Not Disturb is on");
        run("gsettings", {"set", "org.gnome.desktop.notifications", "show-banners", "true"});
        QTRY_VERIFY_WITH_TIMEOUT(!source.holding(), 10000);
    }

    void aMissingSchemaMakesNoSource()
    {
        GSettingsHoldSource source("org.example.NotInstalled", "show-banners", false, {});
        QVERIFY(!source.start());
    }

    void theConditionsHoldWhileAnyHoldsWithTheFirstOnesReason()
    {
        auto* presenting = new ManualCondition("another program is full screen");
        auto* quiet = new ManualCondition("Do Not Disturb is on");
        HoldConditions conditions({presenting, quiet});
        QSignalSpy changes(&conditions, &HoldSource::holdingChanged);
        QVERIFY(!conditions.holding());
        quiet->set(true);
        QVERIFY(conditions.holding());
        QCOMPARE(conditions.reason(), "Do Not Disturb is on");
        presenting->set(true);
        QCOMPARE(conditions.reason(), "another program is full screen");
        presenting->set(false);
        QVERIFY(conditions.holding());
        quiet->set(false);
        QVERIFY(!conditions.holding());
        QCOMPARE(conditions.reason(), QString());
        QCOMPARE(changes.size(), 4);
    }

    void theDesktopsConditionsAreMadeAndHoldNothingOnAQuietDesktop()
    {
        const auto conditions = HoldConditions::make();
        QVERIFY(conditions);
        // Six on X11 with the GNOME schema installed: full screen, two inhibitors, three kinds of
        // Do Not Disturb.
        QCOMPARE(conditions->findChildren<HoldSource*>().size(), 6);
        StandInPowerManagement power(desktop);
        QVERIFY(power.start());
        power.setInhibit(true);
        QTRY_VERIFY(conditions->holding());
        desktop.unregisterService("org.freedesktop.PowerManagement");
        QTRY_VERIFY(!conditions->holding());
        desktop.unregisterObject("/org/freedesktop/PowerManagement/Inhibit");
    }
};

static void beforeApplication()
{
    TestSupport::startPrivateSessionBus();
    TestSupport::startPrivateDisplayWithWindowManager();
    // GNOME's settings in a file of the test's own (under the temporary XDG_CONFIG_HOME).
    qputenv("GSETTINGS_BACKEND", "keyfile");
}

// The child: another program with one window, shown until it is killed.
static int childMain(const QByteArray& mode)
{
    if (mode != "window")
        return 2;
    QWidget window;
    window.setWindowTitle(qEnvironmentVariable("LULLTIDE_TEST_WINDOW"));
    window.resize(400, 300);
    window.show();
    return QApplication::exec();
}

int main(int argc, char* argv[])
{
    return TestSupport::runTests<HoldTest>(argc, argv, childMain, beforeApplication);
}
#include "tst_hold.moc"
