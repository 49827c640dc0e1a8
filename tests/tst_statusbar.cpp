// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/StandInNotificationServer.h"
#include "support/StandInWatcher.h"
#include "support/TestHoldSource.h"
#include "support/TestMain.h"

#include "app/AppDelegate.h"
#include "appinfo/AppInfo.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/BreakGate.h"
#include "cycle/CycleControl.h"
#include "cycle/PromptState.h"
#include "cycle/SystemEventActions.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "logging/Logger.h"
#include "preferences/PrefState.h"
#include "preferences/SettingsStore.h"
#include "settings/AboutDialog.h"
#include "statusbar/BadgeIcon.h"
#include "statusbar/DBusMenu.h"
#include "statusbar/DBusMenuTypes.h"
#include "statusbar/Feedback.h"
#include "statusbar/PanelHost.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusItem.h"
#include "statusbar/StatusNotifierItem.h"
#include "statusbar/StatusNotifierTypes.h"
#include "statusbar/StatusPopupMenu.h"
#include "statusbar/TrayIcon.h"
#include "updates/UpdateDialog.h"

#include <QCursor>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>
#include <QSvgRenderer>
#include <QSystemTrayIcon>
#include <QTemporaryDir>

namespace {

const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString menuPath = QStringLiteral("/MenuBar");

// Collects the signals the panel receives from an item.
class SignalRecorder : public QObject {
    Q_OBJECT

public:
    QList<QDBusMessage> messages;

    int count(const QString& member) const
    {
        return int(std::count_if(messages.begin(), messages.end(),
                                 [&](const QDBusMessage& m) { return m.member() == member; }));
    }
    QDBusMessage last(const QString& member) const
    {
        for (auto it = messages.rbegin(); it != messages.rend(); ++it) {
            if (it->member() == member)
                return *it;
        }
        return {};
    }

public slots:
    void record(const QDBusMessage& message) { messages.append(message); }
};

// The child program that stands in for GNOME Shell: a process named "gnome-shell" that owns the
// watcher name, as the AppIndicator extension's does.
int watcherChild(const QByteArray& mode)
{
    if (mode != "watcher")
        return 2;
    StandInWatcher watcher(QDBusConnection::sessionBus());
    if (!watcher.start())
        return 3;
    QObject::connect(&watcher, &StandInWatcher::itemRegistered, [](const QString& sender) {
        std::printf("registered %s\n", qPrintable(sender));
        std::fflush(stdout);
    });
    return QCoreApplication::exec();
}

} // namespace

class StatusBarTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;
    QDBusConnection panel =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("panel"));
    StandInWatcher* watcher = nullptr;
    SignalRecorder* recorder = nullptr;
    QTemporaryDir tools; // stand-ins for xdg-email and xdg-open
    QByteArray originalPath = qgetenv("PATH");

    static StatusItem& item() { return StatusBarController::item(); }
    static QString itemService() { return QDBusConnection::sessionBus().baseService(); }

    // Calls the item as a panel does, over the bus, without blocking the item (it lives in
    // this thread).
    QDBusMessage call(const QString& service, const QString& path, const QString& interface,
                      const QString& method, const QVariantList& arguments = {})
    {
        QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, method);
        message.setArguments(arguments);
        QDBusPendingCall pending = panel.asyncCall(message, 5000);
        QDBusPendingCallWatcher done(pending);
        QEventLoop loop;
        connect(&done, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        if (!pending.isFinished())
            loop.exec();
        return pending.reply();
    }

    QDBusMessage callItem(const QString& method, const QVariantList& arguments = {})
    {
        return call(itemService(), itemPath, itemInterface, method, arguments);
    }
    QDBusMessage callMenu(const QString& method, const QVariantList& arguments = {})
    {
        return call(itemService(), menuPath, menuInterface, method, arguments);
    }

    QVariant property(const QString& name, const QString& service = QString())
    {
        const QDBusMessage reply = call(service.isEmpty() ? itemService() : service, itemPath,
                                        QStringLiteral("org.freedesktop.DBus.Properties"),
                                        QStringLiteral("Get"), {itemInterface, name});
        if (reply.type() != QDBusMessage::ReplyMessage)
            return {};
        return reply.arguments().value(0).value<QDBusVariant>().variant();
    }

    QString label() { return property(QStringLiteral("XAyatanaLabel")).toString(); }

    SniIconPixmapList pixmaps()
    {
        return qdbus_cast<SniIconPixmapList>(property(QStringLiteral("IconPixmap")).value<QDBusArgument>());
    }

    // Starts this test program as a panel's watcher under the name `program` (a link to it), and
    // waits until it has taken our item.
    void startWatcherChild(QProcess& child, const QString& program)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LULLTIDE_TEST_CHILD", "watcher");
        child.setProcessEnvironment(environment);
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(program, {});
        QVERIFY(child.waitForStarted());
        QByteArray output;
        QTRY_VERIFY_WITH_TIMEOUT(
            (output += child.readAllStandardOutput()).contains("registered " + itemService().toUtf8()),
            10000);
    }

    DBusMenuLayoutItem layout()
    {
        const QDBusMessage reply = callMenu(QStringLiteral("GetLayout"), {0, -1, QStringList()});
        return qdbus_cast<DBusMenuLayoutItem>(reply.arguments().value(1).value<QDBusArgument>());
    }

    QVariantMap entry(int id)
    {
        for (const DBusMenuLayoutItem& child : layout().children) {
            if (child.id == id)
                return child.properties;
        }
        return {};
    }

    void click(int id)
    {
        const QDBusMessage reply =
            callMenu(QStringLiteral("Event"),
                     {id, QStringLiteral("clicked"), QVariant::fromValue(QDBusVariant(QString())), 0u});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    }

    void listen(const QString& service, const QString& path, const QString& interface, const QString& signal)
    {
        QVERIFY(panel.connect(service, path, interface, signal, recorder, SLOT(record(QDBusMessage))));
    }

    // A fresh work period of full length (25:00) with the countdown at the start.
    void restartWork()
    {
        AppState::setManualPause(false);
        QCoreApplication::processEvents();
        // Signals the item sent before this answer reach the panel before it.
        callMenu(QStringLiteral("AboutToShow"), {0});
        recorder->messages.clear();
    }

    static QList<AboutDialog*> aboutDialogs()
    {
        QList<AboutDialog*> dialogs;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* dialog = qobject_cast<AboutDialog*>(widget))
                dialogs << dialog;
        }
        return dialogs;
    }

    static int logCount(const QString& text) { return int(TestSupport::logText().count(text)); }

    // Where the first-run notice tests keep the settings of one installation across starts.
    QTemporaryDir installation;

    static QProcessEnvironment firstRunEnvironment(const QString& home)
    {
        QProcessEnvironment environment = TestSupport::environmentWithHome(home);
        environment.insert("LC_ALL", "C.UTF-8");
        environment.remove("LANGUAGE");
        return environment;
    }

    // Starts the real program in `home` with the update check off, as a fresh installation.
    // `graceMs`: how long a panel may take to show the item before the notice (the program's
    // own ten seconds when negative).
    static void startProgram(QProcess& app, const QString& home, int graceMs = -1)
    {
        QDir().mkpath(home + "/.config/lulltide");
        QSettings conf(home + "/.config/lulltide/lulltide.conf", QSettings::IniFormat);
        if (!conf.contains("auto_check_update"))
            conf.setValue("auto_check_update", false);
        conf.sync();
        QProcessEnvironment environment = firstRunEnvironment(home);
        if (graceMs >= 0)
            environment.insert("LULLTIDE_PANEL_GRACE_MS", QString::number(graceMs));
        app.setProcessEnvironment(environment);
        app.setProcessChannelMode(QProcess::ForwardedChannels);
        app.start(LULLTIDE_BINARY, {});
        QVERIFY(app.waitForStarted());
    }

    static void quitProgram(QProcess& app, const QString& home)
    {
        QProcess quit;
        quit.setProcessEnvironment(firstRunEnvironment(home));
        quit.start(LULLTIDE_BINARY, {"--quit"});
        QVERIFY(quit.waitForFinished(15000));
        QVERIFY(app.waitForFinished(10000));
        QCOMPARE(app.exitCode(), 0);
    }

    static QVariant storedSetting(const QString& home, const QString& key)
    {
        return QSettings(home + "/.config/lulltide/lulltide.conf", QSettings::IniFormat).value(key);
    }

    // The program answers on the bus: whatever it sent before has reached this process.
    void pingProgram()
    {
        QTRY_VERIFY_WITH_TIMEOUT(
            QDBusConnection::sessionBus().interface()->isServiceRegistered("org.lulltide.Lulltide"), 10000);
        const QDBusMessage reply =
            call("org.lulltide.Lulltide", "/org/lulltide/Lulltide", "org.freedesktop.DBus.Peer", "Ping");
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
    }

    // The names of the program's visible windows, as the X server lists them.
    static QStringList visibleWindowNames(const QProcess& app)
    {
        QStringList names;
        for (const QString& window : TestSupport::visibleWindowsOf(app.processId())) {
            QProcess name;
            name.start("xdotool", {"getwindowname", window});
            name.waitForFinished(10000);
            names << QString::fromUtf8(name.readAllStandardOutput()).trimmed();
        }
        return names;
    }

private slots:
    void initTestCase()
    {
        DBusMenuTypes::registerMetaTypes();
        StatusNotifierTypes::registerMetaTypes();
        QVERIFY(panel.isConnected());
        recorder = new SignalRecorder;
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        BreakGate::setHoldSourceFactory([] { return std::make_unique<TestHoldSource>(); });
        // No panel yet: the program starts before the desktop's panel, as it can at login.
        AppDelegate delegate;
        delegate.applicationDidFinishLaunching();
        listen(itemService(), itemPath, itemInterface, QString());
        listen(itemService(), menuPath, menuInterface, QString());
    }

    void withoutANotificationServerTheMissingPanelIsLoggedOnceAndTheProgramRunsOn()
    {
        // No watcher, no tray and no notification server on the bus since the start.
        QVERIFY(!QSystemTrayIcon::isSystemTrayAvailable());
        QCOMPARE(logCount("no StatusNotifierWatcher on the session bus and no system tray: nothing in the "
                          "panel shows Lulltide"),
                 1);
        QCOMPARE(logCount("the panel shows a tray icon"), 0);
        // After the few seconds a panel gets to start.
        QTRY_COMPARE_WITH_TIMEOUT(logCount("no desktop notification can tell where Lulltide is: "
                                           "org.freedesktop.DBus.Error.ServiceUnknown"),
                                  1, 40000);
        // Told at the next start that finds a server.
        QVERIFY(!SettingsStore::settings().value("told_no_panel").toBool());
        // The item is there as before (the tests below use it).
        QVERIFY(item().findChild<TrayIcon*>());
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(logCount("no desktop notification can tell where Lulltide is"), 1);
    }

    void withoutAWatcherTheItemIsATrayIconWithTheSameMenu()
    {
        auto* tray = item().findChild<TrayIcon*>();
        QVERIFY(tray);
        auto* menu = tray->menu();
        QVERIFY(menu);
        QStringList texts;
        for (QAction* action : menu->actions())
            texts << (action->isSeparator() ? "---" : action->text());
        QCOMPARE(texts, QStringList({"Lulltide - v1.0.0(1)", "---", "- Stop -", "Settings...", "---",
                                     "Check for Updates...", "Feedback...", "About...", "Quit"}));
        QCOMPARE(menu->actions().at(2)->shortcut(), QKeySequence("Ctrl+P"));
        QCOMPARE(menu->actions().at(3)->shortcut(), QKeySequence("Ctrl+,"));
        QVERIFY(!menu->actions().at(0)->isEnabled());
        QVERIFY(menu->actions().at(8)->isEnabled());
    }

    void trayIconToolTipFollowsTheCountdown()
    {
        auto* tray = item().findChild<TrayIcon*>();
        QVERIFY(tray);
        QCOMPARE(tray->trayIcon()->toolTip(), "Lulltide\n25:00");
        QVERIFY(!tray->trayIcon()->icon().isNull());
        ticks->tick();
        QCOMPARE(tray->trayIcon()->toolTip(), "Lulltide\n24:59");
        // Nobody holds the item on the bus: it sends no change signals there.
        callMenu("AboutToShow", {0});
        QCOMPARE(recorder->count("XAyatanaNewLabel"), 0);
        QCOMPARE(recorder->count("NewToolTip"), 0);
    }

    void trayMenuPauseEntryFollowsThePause()
    {
        auto* menu = item().findChild<TrayIcon*>()->menu();
        menu->actions().at(2)->trigger();
        QTRY_VERIFY(AppState::manualPause());
        QCOMPARE(menu->actions().at(2)->text(), "- Wrok -");
        menu->actions().at(2)->trigger();
        QTRY_VERIFY(!AppState::manualPause());
        QCOMPARE(menu->actions().at(2)->text(), "- Stop -");
    }

    void aPanelThatAppearsLaterTakesTheItemFromTheTrayIcon()
    {
        watcher = new StandInWatcher(panel);
        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems(), QStringList{itemService() + "/StatusNotifierItem"});
        QTRY_VERIFY(!item().findChild<TrayIcon*>());
    }

    void whenThePanelsWatcherGoesTheTrayIconComesBackAndLeavesAgainWithTheNextPanel()
    {
        QVERIFY(!item().findChild<TrayIcon*>());
        // The later tests need the panel back, whatever happens here.
        const auto panelBack = qScopeGuard([this] { watcher->start(); });
        watcher->stop();
        TrayIcon* tray = nullptr;
        QTRY_VERIFY((tray = item().findChild<TrayIcon*>()));
        QVERIFY(tray->trayIcon()->isVisible());
        QCOMPARE(tray->trayIcon()->toolTip(), "Lulltide\n" + AppState::workState().timeString());
        // Xvfb has no tray: the log says that nothing in the panel shows the item now.
        QCOMPARE(logCount("the StatusNotifierWatcher left the session bus and no system tray: nothing in "
                          "the panel shows Lulltide"),
                 1);

        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems(), QStringList{itemService() + "/StatusNotifierItem"});
        QTRY_VERIFY(!item().findChild<TrayIcon*>());

        // A panel that goes again brings the tray icon back again, without a second log line.
        watcher->stop();
        QTRY_VERIFY(item().findChild<TrayIcon*>());
        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems().size(), 1);
        QTRY_VERIFY(!item().findChild<TrayIcon*>());
        QCOMPARE(logCount("the StatusNotifierWatcher left the session bus"), 1);
    }

    void itemOffersEveryPropertyPanelsRead()
    {
        const QDBusMessage reply =
            call(itemService(), itemPath, "org.freedesktop.DBus.Properties", "GetAll", {itemInterface});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        const QVariantMap all = qdbus_cast<QVariantMap>(reply.arguments().value(0).value<QDBusArgument>());
        for (const char* name :
             {"Category", "Id", "Title", "Status", "WindowId", "IconThemePath", "IconName", "IconPixmap",
              "OverlayIconName", "OverlayIconPixmap", "AttentionIconName", "AttentionIconPixmap",
              "AttentionMovieName", "ToolTip", "ItemIsMenu", "Menu", "XAyatanaLabel", "XAyatanaLabelGuide"})
            QVERIFY2(all.contains(name), name);
        QCOMPARE(all.value("Id").toString(), "org.lulltide.Lulltide");
        QCOMPARE(all.value("Category").toString(), "ApplicationStatus");
        QCOMPARE(all.value("Status").toString(), "Active");
        QCOMPARE(all.value("Title").toString(), "Lulltide");
        QCOMPARE(all.value("ItemIsMenu").toBool(), true);
        QCOMPARE(all.value("Menu").value<QDBusObjectPath>().path(), menuPath);
        QCOMPARE(all.value("XAyatanaLabelGuide").toString(), "00:00");
        // The menu the item names answers on its path.
        QCOMPARE(call(itemService(), menuPath, "org.freedesktop.DBus.Properties", "Get",
                      {menuInterface, "Version"})
                     .type(),
                 QDBusMessage::ReplyMessage);
    }

    void labelIsTheCountdownAndChangesOncePerSecond()
    {
        restartWork();
        QCOMPARE(label(), "25:00");
        ticks->tick();
        QTRY_COMPARE(recorder->count("XAyatanaNewLabel"), 1);
        QCOMPARE(recorder->last("XAyatanaNewLabel").arguments(), QVariantList({"24:59", "00:00"}));
        QCOMPARE(label(), "24:59");
        ticks->tick();
        QTRY_COMPARE(recorder->count("XAyatanaNewLabel"), 2);
        QCOMPARE(label(), "24:58");
    }

    void toolTipCarriesTheNameAndTheCountdown()
    {
        restartWork();
        ticks->tick();
        QTRY_VERIFY(recorder->count("NewToolTip") >= 1);
        const SniToolTip tip = qdbus_cast<SniToolTip>(property("ToolTip").value<QDBusArgument>());
        QCOMPARE(tip.title, "Lulltide");
        QCOMPARE(tip.text, "24:59");
    }

    SniToolTip toolTipOverTheBus()
    {
        return qdbus_cast<SniToolTip>(property("ToolTip").value<QDBusArgument>());
    }

    void pausedTheBadgeShowsAPauseSignAndTheLabelSaysPaused()
    {
        restartWork();
        const QByteArray counting = pixmaps().first().bytes;
        CycleControl::pause();
        QTRY_COMPARE(toolTipOverTheBus().text, "Paused");
        // No frozen minutes: the sign in their place, the word in the label.
        QCOMPARE(label(), "Paused");
        QCOMPARE(property("IconName").toString(), QString());
        const QImage sign = BadgeIcon::drawPaused(item().imagePath(), 16);
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(sign).bytes);
        QVERIFY(pixmaps().first().bytes != counting);
        QCOMPARE(recorder->last("XAyatanaNewLabel").arguments().value(0).toString(), "Paused");
        restartWork();
        QTRY_COMPARE(toolTipOverTheBus().text, "25:00");
        QCOMPARE(label(), "25:00");
        QCOMPARE(pixmaps().first().bytes, counting);
    }

    void stoppedByIdlenessTheBadgeShowsAPauseSignAndTheLabelSaysStopped()
    {
        restartWork();
        AppState::setStopCause(AppState::StopCause::Idle);
        AppState::setWorking(false);
        QTRY_COMPARE(label(), "Stopped");
        const QImage sign = BadgeIcon::drawPaused(item().imagePath(), 16);
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(sign).bytes);
        restartWork();
        QTRY_COMPARE(label(), "25:00");
    }

    void aPeriodCountingWhileTheCycleIsMarkedStoppedShowsItsCountdown()
    {
        // After a new day's greeting at an unlock the work period counts with the cycle still
        // marked stopped: that is no standstill.
        restartWork();
        ticks->tick(5);
        AppState::setStopCause(AppState::StopCause::Idle);
        AppState::setWorking(false);
        QTRY_COMPARE(label(), "Stopped");
        TicktackController::work(1500);
        QTRY_COMPARE(label(), "25:00");
        const QImage badged = BadgeIcon::draw(item().imagePath(), 16, "25");
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(badged).bytes);
        restartWork();
    }

    void pausedWithShowTimeOffTheIconAloneCarriesThePauseSign()
    {
        restartWork();
        AppState::prefState().setShowTime(false);
        const auto timeBack = qScopeGuard([] { AppState::prefState().setShowTime(true); });
        CycleControl::pause();
        QTRY_COMPARE(toolTipOverTheBus().text, "Paused");
        QCOMPARE(label(), QString());
        const QImage sign = BadgeIcon::drawPaused(item().imagePath(), 16);
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(sign).bytes);
        restartWork();
    }

    void theIconStaysRecognisableUnderTheBadgeAtSixteenAndTwentyTwoPixels_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("badge");
        for (int size : {16, 22}) {
            for (const char* badge : {"24", "88", "+3", "2h", "pause"})
                QTest::addRow("%d px, %s", size, badge) << size << QString::fromLatin1(badge);
        }
    }
    void theIconStaysRecognisableUnderTheBadgeAtSixteenAndTwentyTwoPixels()
    {
        QFETCH(int, size);
        QFETCH(QString, badge);
        const QString svg = item().imagePath();
        const QImage badged = badge == "pause" ? BadgeIcon::drawPaused(svg, size) : BadgeIcon::draw(svg, size, badge);
        // The wooden fish drawn alone where the badged icon puts it: at least 10 px wide, and
        // at least 80 % of its visible pixels are untouched by the badge.
        const QRect area = BadgeIcon::imageArea(size);
        QVERIFY2(area.width() >= 10, qPrintable(QString::number(area.width())));
        QImage alone(size, size, QImage::Format_ARGB32_Premultiplied);
        alone.fill(Qt::transparent);
        QPainter painter(&alone);
        painter.setRenderHint(QPainter::Antialiasing);
        QSvgRenderer(svg).render(&painter, QRectF(area));
        painter.end();
        int visible = 0;
        int untouched = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                if (qAlpha(alone.pixel(x, y)) < 128)
                    continue;
                ++visible;
                untouched += alone.pixel(x, y) == badged.pixel(x, y);
            }
        }
        QVERIFY(visible > 0);
        QVERIFY2(untouched * 100 >= visible * 80,
                 qPrintable(QStringLiteral("%1 of %2 pixels of the image left").arg(untouched).arg(visible)));
    }

    void theBadgeDrawsNoImageWhenItHasNone()
    {
        QVERIFY(BadgeIcon::draw(QStringLiteral("/nonexistent.svg"), 16, "24").isNull());
        QVERIFY(BadgeIcon::drawPaused(QStringLiteral("/nonexistent.svg"), 16).isNull());
    }

    void heldTheItemReadOverTheBusShowsTheWaitAndWhy()
    {
        restartWork();
        AppState::prefState().setHoldBreaks(true);
        auto off = qScopeGuard([] { AppState::prefState().setHoldBreaks(false); });
        QVERIFY(TestHoldSource::current);
        TestHoldSource::current->set(true);
        while (!AppState::workState().timesUp())
            ticks->tick();
        ticks->tick(3);
        QTRY_COMPARE(toolTipOverTheBus().text,
                     "Break waiting +00:03: A video call is on\nIt comes at " +
                         TicktackController::clockTimeIn(AppState::breakGate().holdSecondsLeft()) +
                         " at the latest.");
        QTRY_COMPARE(label(), "+00:03");
        // A panel without labels gets the wait as a badge.
        const QImage badged = BadgeIcon::draw(item().imagePath(), 16, "+0");
        QTRY_COMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(badged).bytes);
    }

    void stoppedByTheLockOrIdlenessTheTooltipReadOverTheBusSaysWhy()
    {
        restartWork();
        SystemEventActions::didLockScreenShow();
        QTRY_COMPARE(toolTipOverTheBus().text, "Stopped while the screen is locked");
        SystemEventActions::didLockScreenDismiss();
        QTRY_COMPARE(toolTipOverTheBus().text, "25:00");
        AppState::setStopCause(AppState::StopCause::Idle);
        AppState::setWorking(false);
        QTRY_COMPARE(toolTipOverTheBus().text, "Stopped: no activity");
        restartWork();
    }

    void onAPanelWithoutLabelsTheIconCarriesTheMinutesAsABadge()
    {
        restartWork();
        QCOMPARE(property("IconName").toString(), QString()); // so the host draws the pixmaps
        const SniIconPixmapList images = pixmaps();
        QList<int> sizes;
        for (const SniIconPixmap& image : images) {
            QCOMPARE(image.width, image.height);
            QCOMPARE(image.bytes.size(), image.width * image.height * 4);
            sizes << image.width;
        }
        QCOMPARE(sizes, QList<int>({16, 22, 24, 32, 48}));
        // What the panel gets is the badged "25", not the plain image.
        const QImage badged = BadgeIcon::draw(item().imagePath(), 16, "25");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(images.first().bytes, SniIconPixmap::fromImage(badged).bytes);
        QVERIFY(images.first().bytes != SniIconPixmap::fromImage(plain).bytes);
    }

    void badgeIsRedrawnWhenTheWholeMinutesChangeAndNotInBetween()
    {
        restartWork(); // 25:00
        const QByteArray at25 = pixmaps().first().bytes;
        ticks->tick(); // 24:59
        QTRY_COMPARE(recorder->count("NewIcon"), 1);
        const QByteArray at24 = pixmaps().first().bytes;
        QVERIFY(at24 != at25);
        ticks->tick(59); // 24:00
        QTest::qWait(50);
        QCOMPARE(recorder->count("NewIcon"), 1);
        QCOMPARE(pixmaps().first().bytes, at24);
        ticks->tick(); // 23:59
        QTRY_COMPARE(recorder->count("NewIcon"), 2);
        QVERIFY(pixmaps().first().bytes != at24);
    }

    void badgeTextIsTheWholeMinutesLeft_data()
    {
        QTest::addColumn<QString>("countdown");
        QTest::addColumn<QString>("badge");
        QTest::newRow("full period") << "25:00"
                                     << "25";
        QTest::newRow("one second in") << "24:59"
                                       << "24";
        QTest::newRow("last minute") << "00:59"
                                     << "0";
        QTest::newRow("one hour") << "0100:00"
                                  << "60";
        QTest::newRow("99 minutes") << "0139:59"
                                    << "99";
        QTest::newRow("whole hours from 100 minutes") << "0140:00"
                                                      << "1h";
        QTest::newRow("two and a half hours") << "0230:00"
                                              << "2h";
        QTest::newRow("no countdown") << ""
                                      << "";
    }
    void badgeTextIsTheWholeMinutesLeft()
    {
        QFETCH(QString, countdown);
        QFETCH(QString, badge);
        QCOMPARE(BadgeIcon::badgeText(countdown), badge);
    }

    void withShowTimeOffTheItemShowsThePlainIconAndNoLabelWhateverTheCountdownDoes()
    {
        restartWork();
        AppState::prefState().setShowTime(false);
        QTRY_COMPARE(label(), QString());
        QCOMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);
        const int icons = recorder->count("NewIcon");
        ticks->tick(61);
        QTest::qWait(50);
        QCOMPARE(label(), QString());
        QCOMPARE(recorder->count("NewIcon"), icons);
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);
    }

    void switchingShowTimeOnShowsTheCurrentCountdownAtOnce()
    {
        AppState::prefState().setShowTime(true); // 23:59 after the ticks above
        QCOMPARE(label(), "23:59");
        QCOMPARE(property("IconName").toString(), QString());
        QTRY_VERIFY(recorder->count("XAyatanaNewLabel") >= 1);
        QCOMPARE(recorder->last("XAyatanaNewLabel").arguments().value(0).toString(), "23:59");
    }

    void whenTheWorkPeriodEndsTheLabelEmptiesEvenWithShowTimeOnAndTheBreakStarts()
    {
        AppState::prefState().setWorkTimeString("0.05"); // three seconds
        restartWork();
        QCOMPARE(label(), "00:03");
        ticks->tick(3);
        QCOMPARE(AppState::workState().timesUp(), true);
        QCOMPARE(label(), QString());
        QCOMPARE(property("IconName").toString(),
                 "org.lulltide.Lulltide-muyu");                 // no badge without a countdown
        QCOMPARE(AppState::breakState().timeString(), "05:00"); // the break screen counts down
    }

    void switchingShowTimeOnAfterThePeriodEndedKeepsTheLabelEmpty()
    {
        AppState::prefState().setShowTime(false);
        AppState::prefState().setShowTime(true);
        QCOMPARE(label(), QString());
        AppState::promptState().skip();
        AppState::prefState().setWorkTimeString("25");
        restartWork();
        QCOMPARE(label(), "25:00");
    }

    void aMissingImageLeavesAnItemWithItsTitleOnly()
    {
        const QString image = item().imagePath();
        QCOMPARE(image, ":/icons/muyu.svg");
        item().setImagePath(QString());
        QCOMPARE(property("IconName").toString(), QString());
        QVERIFY(pixmaps().isEmpty());
        QCOMPARE(label(), "25:00");
        item().setImagePath(image);
        QCOMPARE(pixmaps().size(), 5);
    }

    void menuLayoutHoldsTheNineEntriesInOrder()
    {
        const DBusMenuLayoutItem root = layout();
        QCOMPARE(root.id, 0);
        QCOMPARE(root.properties.value("children-display").toString(), "submenu");
        QStringList labels;
        for (const DBusMenuLayoutItem& child : root.children) {
            QVERIFY(child.children.isEmpty());
            labels << (child.properties.value("type").toString() == "separator"
                           ? "---"
                           : child.properties.value("label").toString());
        }
        QCOMPARE(labels, QStringList({"Lulltide - v1.0.0(1)", "---", "- Stop -", "Settings...", "---",
                                      "Check for Updates...", "Feedback...", "About...", "Quit"}));
    }

    void menuEntriesCarryIconsShortcutsAndWordsForScreenReaders_data()
    {
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("icon");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("key");
        QTest::newRow("pause") << 3 << "media-playback-stop"
                               << "Pause the breaks"
                               << "p";
        QTest::newRow("settings") << 4 << "preferences-system"
                                  << "Open the settings"
                                  << "comma";
        QTest::newRow("updates") << 6 << "system-software-update"
                                 << "Look for a newer version"
                                 << "";
        QTest::newRow("feedback") << 7 << "mail-send"
                                  << "Write to the makers of Lulltide"
                                  << "";
        QTest::newRow("about") << 8 << "help-about"
                               << "About Lulltide"
                               << "";
        QTest::newRow("quit") << 9 << "application-exit"
                              << "Quit Lulltide"
                              << "q";
    }
    void menuEntriesCarryIconsShortcutsAndWordsForScreenReaders()
    {
        QFETCH(int, id);
        QFETCH(QString, icon);
        QFETCH(QString, description);
        QFETCH(QString, key);
        const QVariantMap properties = entry(id);
        QCOMPARE(properties.value("icon-name").toString(), icon);
        QCOMPARE(properties.value("accessible-desc").toString(), description);
        if (key.isEmpty()) {
            QVERIFY(!properties.contains("shortcut"));
        } else {
            const auto shortcut =
                qdbus_cast<DBusMenuShortcut>(properties.value("shortcut").value<QDBusArgument>());
            QCOMPARE(shortcut, DBusMenuShortcut({QStringList{"Control", key}}));
        }
    }

    void onlyTheHeaderIsDisabled()
    {
        for (const DBusMenuLayoutItem& child : layout().children) {
            if (child.properties.value("type").toString() == "separator")
                continue;
            QCOMPARE(child.properties.value("enabled").toBool(), child.id != 1);
        }
    }

    void entriesAreReadableOneByOneAndInGroups()
    {
        const QDBusMessage one = callMenu("GetProperty", {4, QString("label")});
        QCOMPARE(one.arguments().value(0).value<QDBusVariant>().variant().toString(), "Settings...");
        const QDBusMessage group =
            callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>{3, 9}), QStringList{"label"}});
        const auto entries =
            qdbus_cast<DBusMenuItemPropertiesList>(group.arguments().value(0).value<QDBusArgument>());
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries.at(0).properties, QVariantMap({{"label", "- Stop -"}}));
        QCOMPARE(entries.at(1).properties, QVariantMap({{"label", "Quit"}}));
        QCOMPARE(callMenu("AboutToShow", {0}).arguments().value(0).toBool(), false);
    }

    void unknownEntriesAreRefused()
    {
        QCOMPARE(callMenu("GetLayout", {42, -1, QStringList()}).errorName(),
                 "com.canonical.dbusmenu.Error.UnknownId");
        QCOMPARE(
            callMenu("Event", {42, QString("clicked"), QVariant::fromValue(QDBusVariant(0)), 0u}).errorName(),
            "com.canonical.dbusmenu.Error.UnknownId");
    }

    void repeatedAndUnknownIdsAreAnsweredOnceEachOrLeftOut()
    {
        const QDBusMessage group =
            callMenu("GetGroupProperties",
                     {QVariant::fromValue(QList<int>{3, 3, 9, 42, -1, 0, 3, 9}), QStringList{"label"}});
        QCOMPARE(group.type(), QDBusMessage::ReplyMessage);
        const auto entries =
            qdbus_cast<DBusMenuItemPropertiesList>(group.arguments().value(0).value<QDBusArgument>());
        QList<int> ids;
        for (const DBusMenuItemProperties& entry : entries)
            ids << entry.id;
        QCOMPARE(ids, QList<int>({3, 9, 0}));

        QDBusMessage shown =
            callMenu("AboutToShowGroup", {QVariant::fromValue(QList<int>{42, 3, 42, 43, 42})});
        QCOMPARE(shown.type(), QDBusMessage::ReplyMessage);
        QCOMPARE(qdbus_cast<QList<int>>(shown.arguments().value(1)), QList<int>({42, 43}));
    }

    void requestsLargerThanAnyMenuNeedsAreRefusedWithAnError()
    {
        const QString limits = "org.freedesktop.DBus.Error.LimitsExceeded";
        QList<int> ids(1001, 3);
        QStringList names(1001, "label");
        QCOMPARE(callMenu("GetGroupProperties", {QVariant::fromValue(ids), QStringList()}).errorName(),
                 limits);
        QCOMPARE(callMenu("GetGroupProperties", {QVariant::fromValue(QList<int>{3}), names}).errorName(),
                 limits);
        QCOMPARE(callMenu("GetLayout", {0, -1, names}).errorName(), limits);
        QCOMPARE(callMenu("AboutToShowGroup", {QVariant::fromValue(ids)}).errorName(), limits);
        DBusMenuEventList events(1001, DBusMenuEvent{42, "hovered", QDBusVariant(0), 0});
        QCOMPARE(callMenu("EventGroup", {QVariant::fromValue(events)}).errorName(), limits);
        // Up to the limit is answered.
        ids.removeLast();
        QCOMPARE(callMenu("GetGroupProperties", {QVariant::fromValue(ids), QStringList()}).type(),
                 QDBusMessage::ReplyMessage);
        // A long property name is not echoed whole.
        const QDBusMessage property = callMenu("GetProperty", {3, QString(100000, u'x')});
        QCOMPARE(property.errorName(), "com.canonical.dbusmenu.Error.UnknownProperty");
        QVERIFY2(property.errorMessage().size() < 200,
                 qPrintable(QString::number(property.errorMessage().size())));
    }

    void anActivationTokenIsKeptOnlyWhenItLooksLikeOne()
    {
        qunsetenv("XDG_ACTIVATION_TOKEN");
        QCOMPARE(callItem("ProvideXdgActivationToken", {QString(1000000, u'x')}).type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(callItem("ProvideXdgActivationToken", {QString("a\nLD_PRELOAD=x")}).type(),
                 QDBusMessage::ReplyMessage);
        QVERIFY(!qEnvironmentVariableIsSet("XDG_ACTIVATION_TOKEN"));
        QCOMPARE(callItem("ProvideXdgActivationToken", {QString("kwin-42_token")}).type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(qgetenv("XDG_ACTIVATION_TOKEN"), "kwin-42_token");
        qunsetenv("XDG_ACTIVATION_TOKEN");
    }

    void aClickRepeatedInOneEventGroupRunsItsActionOnce()
    {
        restartWork();
        const DBusMenuEvent click{3, "clicked", QDBusVariant(QString()), 0};
        QCOMPARE(callMenu("EventGroup", {QVariant::fromValue(DBusMenuEventList{click, click})}).type(),
                 QDBusMessage::ReplyMessage);
        QTRY_VERIFY(AppState::manualPause());
        // Both clicks, had they been queued, would have run by the answer to a later call.
        callMenu("AboutToShow", {0});
        QCoreApplication::processEvents();
        QVERIFY(AppState::manualPause());
        AppState::setManualPause(false);
    }

    void clickingThePauseEntryRetitlesItToWrokAndBack()
    {
        restartWork();
        click(3);
        QTRY_VERIFY(AppState::manualPause());
        QVERIFY(!ticks->running());
        QTRY_COMPARE(recorder->count("ItemsPropertiesUpdated"), 1); // title and image in one signal
        auto updated = qdbus_cast<DBusMenuItemPropertiesList>(
            recorder->last("ItemsPropertiesUpdated").arguments().value(0).value<QDBusArgument>());
        QCOMPARE(updated.size(), 1);
        QCOMPARE(updated.at(0).id, 3);
        QCOMPARE(updated.at(0).properties.value("label").toString(), "- Wrok -");
        QCOMPARE(updated.at(0).properties.value("icon-name").toString(), "media-playback-start");
        QCOMPARE(updated.at(0).properties.value("accessible-desc").toString(), "Start the breaks again");
        QCOMPARE(entry(3).value("label").toString(), "- Wrok -");

        click(3);
        QTRY_VERIFY(!AppState::manualPause());
        QTRY_COMPARE(recorder->count("ItemsPropertiesUpdated"), 2);
        updated = qdbus_cast<DBusMenuItemPropertiesList>(
            recorder->last("ItemsPropertiesUpdated").arguments().value(0).value<QDBusArgument>());
        QCOMPARE(updated.at(0).properties.value("label").toString(), "- Stop -");
        QVERIFY(ticks->running());
        QCOMPARE(label(), "25:00");
    }

    void menuIdsStayWithTheirEntriesWhenPostponingIsSwitchedOn()
    {
        QMap<int, QString> before;
        for (const DBusMenuLayoutItem& child : layout().children)
            before.insert(child.id, child.properties.value("label").toString());
        AppState::prefState().setAllowPostpone(true);
        auto off = qScopeGuard([] { AppState::prefState().setAllowPostpone(false); });
        QMap<int, QString> after;
        for (const DBusMenuLayoutItem& child : layout().children)
            after.insert(child.id, child.properties.value("label").toString());
        QCOMPARE(after.size(), before.size() + 1);
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QCOMPARE(after.value(it.key()), it.value());
        const int postponeId = after.key("Postpone Break");
        QVERIFY(!before.contains(postponeId));
        // Gone again, its id names nothing.
        AppState::prefState().setAllowPostpone(false);
        QCOMPARE(callMenu("GetProperty", {postponeId, QStringLiteral("label")}).errorName(),
                 "com.canonical.dbusmenu.Error.UnknownId");
        QCOMPARE(entry(4).value("label").toString(), "Settings...");
    }

    void pausingAnnouncesEveryEntryItChanges()
    {
        AppState::prefState().setAllowPostpone(true);
        auto off = qScopeGuard([] { AppState::prefState().setAllowPostpone(false); });
        restartWork();
        // A break nearer than the postpone: the entry is offered.
        TicktackController::work(60);
        int postponeId = 0;
        for (const DBusMenuLayoutItem& child : layout().children) {
            if (child.properties.value("label").toString() == "Postpone Break")
                postponeId = child.id;
        }
        QVERIFY(postponeId > 0);
        QTRY_COMPARE(entry(postponeId).value("enabled").toBool(), true);
        const int updates = recorder->count("ItemsPropertiesUpdated");
        click(3);
        QTRY_VERIFY(AppState::manualPause());
        QTRY_COMPARE(recorder->count("ItemsPropertiesUpdated"), updates + 1);
        const auto updated = qdbus_cast<DBusMenuItemPropertiesList>(
            recorder->last("ItemsPropertiesUpdated").arguments().value(0).value<QDBusArgument>());
        QMap<int, QVariantMap> byId;
        for (const auto& item : updated)
            byId.insert(item.id, item.properties);
        QCOMPARE(byId.value(3).value("label").toString(), "- Wrok -");
        QVERIFY(byId.contains(postponeId));
        QCOMPARE(byId.value(postponeId).value("enabled").toBool(), false);
        click(3);
        QTRY_VERIFY(!AppState::manualPause());
    }

    void aClickReturnsAtOnceAndItsActionRunsAfterwards()
    {
        restartWork();
        auto* menu = item().findChild<DBusMenu*>();
        QVERIFY(menu);
        menu->Event(3, "clicked", QDBusVariant(QString()), 0);
        QCOMPARE(AppState::manualPause(), false); // not yet: the panel has its answer first
        QTRY_COMPARE(AppState::manualPause(), true);
        AppState::setManualPause(false);
    }

    void theMiddleButtonPausesAndResumes()
    {
        restartWork();
        QCOMPARE(callItem("SecondaryActivate", {0, 0}).type(), QDBusMessage::ReplyMessage);
        QTRY_VERIFY(AppState::manualPause());
        callItem("SecondaryActivate", {0, 0});
        QTRY_VERIFY(!AppState::manualPause());
    }

    static QList<QWindow*> visibleBreakWindows()
    {
        QList<QWindow*> windows;
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == "breakWindow" && window->isVisible())
                windows << window;
        }
        return windows;
    }

    // A break on the screen, two seconds into its countdown; `forced` makes it a long break
    // without a Skip button.
    void startBreak(bool forced)
    {
        AppState::prefState().setForceLongBreak(forced);
        AppState::prefState().setShortBreakTimesString(forced ? "1" : "4");
        AppState::prefState().setWorkTimeString("0.05"); // three seconds
        restartWork();
        ticks->tick(3);
        AppState::prefState().setWorkTimeString("25");
        QVERIFY(WindowController::isBreakShown());
        QTRY_VERIFY(!visibleBreakWindows().isEmpty());
        QCOMPARE(AppState::promptState().showSkipButton(), !forced);
        ticks->tick(2);
        QVERIFY(AppState::breakState().timeString() != "00:00");
    }

    // A pause (menu entry, middle click) during a break, then the same again to resume.
    void pauseAndResumeDuringABreak(const std::function<void()>& pauseOrResume)
    {
        QFETCH(bool, forced);
        startBreak(forced);
        pauseOrResume();
        QTRY_VERIFY(AppState::manualPause());
        QVERIFY(!ticks->running());
        QTRY_VERIFY(visibleBreakWindows().isEmpty());
        QVERIFY(!WindowController::isBreakShown());

        pauseOrResume();
        QTRY_VERIFY(!AppState::manualPause());
        QVERIFY(ticks->running());
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QCOMPARE(label(), "25:00");
        QVERIFY(visibleBreakWindows().isEmpty());
        QVERIFY(!WindowController::isBreakShown());
        AppState::prefState().setForceLongBreak(false);
        AppState::prefState().setShortBreakTimesString("4");
    }

    void thePauseEntryDuringABreakClosesTheBreakScreenAndResumeStartsWorkWithoutIt_data()
    {
        QTest::addColumn<bool>("forced");
        QTest::newRow("short break") << false;
        QTest::newRow("forced long break") << true;
    }
    void thePauseEntryDuringABreakClosesTheBreakScreenAndResumeStartsWorkWithoutIt()
    {
        pauseAndResumeDuringABreak([this] { click(3); });
    }

    void theMiddleButtonDuringABreakClosesTheBreakScreenAndResumeStartsWorkWithoutIt_data()
    {
        thePauseEntryDuringABreakClosesTheBreakScreenAndResumeStartsWorkWithoutIt_data();
    }
    void theMiddleButtonDuringABreakClosesTheBreakScreenAndResumeStartsWorkWithoutIt()
    {
        pauseAndResumeDuringABreak([this] {
            QCOMPARE(callItem("SecondaryActivate", {0, 0}).type(), QDBusMessage::ReplyMessage);
        });
    }

    void aPanelThatAsksForTheMenuGetsItAtThePointer()
    {
        QCOMPARE(callItem("ContextMenu", {200, 150}).type(), QDBusMessage::ReplyMessage);
        StatusPopupMenu* popup = nullptr;
        QTRY_VERIFY((popup = qobject_cast<StatusPopupMenu*>(QApplication::activePopupWidget())));
        QCOMPARE(popup->actions().size(), 9);
        QCOMPARE(popup->actions().at(2)->text(), "- Stop -");
        popup->close();
        QCOMPARE(callItem("Scroll", {120, QString("vertical")}).type(), QDBusMessage::ReplyMessage);
        QCOMPARE(AppState::manualPause(), false);
    }

    void settingsOpensTheSettingsWindow()
    {
        click(4);
        QWindow* settings = nullptr;
        QTRY_VERIFY((settings = [] {
            for (QWindow* window : QGuiApplication::allWindows())
                if (window->objectName() == "settingsWindow" && window->isVisible())
                    return window;
            return static_cast<QWindow*>(nullptr);
        }()));
        QCOMPARE(settings->title(), "Settings");
        settings->close();
    }

    void theUpdateEntryChecksForUpdatesInTheUpdateDialog()
    {
        const QByteArray savedFeed = qgetenv("LULLTIDE_FEED_URL");
        qputenv("LULLTIDE_FEED_URL", "http://updates.example/appcast.xml"); // refused before any network
        click(6);
        UpdateDialog* dialog = nullptr;
        QTRY_VERIFY((dialog = [] {
            for (QWidget* widget : QApplication::topLevelWidgets())
                if (auto* found = qobject_cast<UpdateDialog*>(widget); found && found->isVisible())
                    return found;
            return static_cast<UpdateDialog*>(nullptr);
        }()));
        QTRY_COMPARE(dialog->findChild<QLabel*>("updateHeadline")->text(),
                     "Lulltide could not check for updates.");
        dialog->hide();
        qputenv("LULLTIDE_FEED_URL", savedFeed);
    }

    void feedbackHandsSubjectBodyTodaysLogAndTheAddressToXdgEmail()
    {
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-email");
        qputenv("PATH", tools.path().toUtf8() + ":" + originalPath);
        click(7);
        QTRY_VERIFY(QFile::exists(record));
        QTRY_COMPARE(TestSupport::recordedArguments(record).size(), 7);
        const QString body =
            "Please use Chinese or English in your mail, if you can.\n\n\n\n\n\n\n\nApp version: v1.0.0(1)"
            "\ndevice model: " +
            AppInfo::model() + "\nsystem version: " + AppInfo::osVersion() + "\n";
        QCOMPARE(TestSupport::recordedArguments(record),
                 QStringList({"--subject", "Lulltide Feedback", "--body", body, "--attach",
                              *Logger::logfilePath(), "feedback@lulltide.org"}));
        QVERIFY(QFile::exists(*Logger::logfilePath()));
        qputenv("PATH", originalPath);
    }

    void withoutXdgEmailFeedbackDoesNothingAtAll()
    {
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-email-elsewhere");
        const QString logBefore = TestSupport::logText();
        qputenv("PATH", QDir::tempPath().toUtf8() + "/no-such-folder");
        Feedback::compose();
        click(7);
        QTest::qWait(300);
        qputenv("PATH", originalPath);
        QVERIFY(!QFile::exists(record));
        QCOMPARE(TestSupport::logText(), logBefore);
    }

    void aboutShowsIconNameVersionReleaseNotesAndCopyrightInOneDialog()
    {
        click(8);
        QTRY_COMPARE(aboutDialogs().size(), 1);
        AboutDialog* dialog = aboutDialogs().first();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        QCOMPARE(dialog->findChild<QLabel*>("aboutName")->text(), "Lulltide");
        QCOMPARE(dialog->findChild<QLabel*>("aboutVersion")->text(), "Version 1.0.0 (1)");
        QVERIFY(!dialog->findChild<QLabel*>("aboutIcon")->pixmap().isNull());
        auto* notes = dialog->findChild<QLabel*>("aboutReleaseNotes");
        QCOMPARE(notes->text(), "<a href=\"https://lulltide.org/release_note/\">Release Notes</a>");
        QVERIFY(notes->font().bold());
        QVERIFY(notes->font().pointSizeF() < dialog->font().pointSizeF());
        QCOMPARE(dialog->findChild<QLabel*>("aboutCopyright")->text(), AppInfo::copyright());

        // Asked again it comes to the front; no second dialog.
        dialog->showMinimized();
        click(8);
        QTRY_VERIFY(dialog->isVisible() && !dialog->isMinimized());
        QCOMPARE(aboutDialogs().size(), 1);
    }

    void releaseNotesLinkOpensTheBrowser()
    {
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-open");
        qputenv("PATH", tools.path().toUtf8() + ":" + originalPath);
        AboutDialog* dialog = AboutDialog::showShared();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        auto* notes = dialog->findChild<QLabel*>("aboutReleaseNotes");
        QTest::mouseClick(notes, Qt::LeftButton, {}, notes->rect().center());
        QTRY_COMPARE(TestSupport::recordedArguments(record),
                     QStringList{"https://lulltide.org/release_note/"});
        qputenv("PATH", originalPath);
        dialog->close();
    }

    void itemRegistersAgainWhenThePanelRestarts()
    {
        watcher->stop();
        QVERIFY(watcher->registeredItems().isEmpty());
        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems(), QStringList{itemService() + "/StatusNotifierItem"});
    }

    void aPanelThatDrawsTheLabelGetsThePlainIcon()
    {
        restartWork();
        QCOMPARE(property("IconName").toString(), QString()); // badge for this panel
        watcher->stop();

        // A watcher process named as GNOME Shell is.
        const QString shell = tools.filePath("gnome-shell");
        QVERIFY(QFile::link(QCoreApplication::applicationFilePath(), shell));
        QProcess gnomeShell;
        startWatcherChild(gnomeShell, shell);
        QCOMPARE(PanelHost::processName(quint32(gnomeShell.processId())), "gnome-shell");
        QTRY_COMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        QCOMPARE(label(), "25:00");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);

        gnomeShell.terminate();
        QVERIFY(gnomeShell.waitForFinished(5000));
        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems().size(), 1);
        QTRY_COMPARE(property("IconName").toString(), QString()); // the badge is back
    }

    void matesNotificationAreaGetsTheLabelAndThePanelIsNamedOnceInTheLog()
    {
        restartWork();
        QCOMPARE(property("IconName").toString(), QString()); // badge for the stand-in watcher
        const auto panelBack = qScopeGuard([this] { watcher->start(); });
        watcher->stop();

        // A watcher process named as MATE's panel is: its notification area lives inside it.
        const QString matePanel = tools.filePath("mate-panel");
        QVERIFY(QFile::link(QCoreApplication::applicationFilePath(), matePanel));
        QProcess mate;
        startWatcherChild(mate, matePanel);
        QCOMPARE(PanelHost::processName(quint32(mate.processId())), "mate-panel");
        QTRY_COMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        QCOMPARE(label(), "25:00");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);
        QCOMPARE(
            logCount("the panel's watcher is mate-panel: the countdown shows as a label beside the icon"), 1);

        mate.terminate();
        QVERIFY(mate.waitForFinished(5000));
        QVERIFY(watcher->start());
        QTRY_COMPARE(watcher->registeredItems().size(), 1);
        QTRY_COMPARE(property("IconName").toString(), QString());
        QCOMPARE(logCount("the panel's watcher is mate-panel"), 1);
        QVERIFY(logCount(": the countdown shows as a badge on the icon") >= 1);
    }

    void aClickGivenInsideThePanelsAppletOpensTheMenuAtThePointerAndAScreenEdgePointThere()
    {
        // The pointer on an item of a panel along the bottom edge of the 1280x800 screen.
        const QPoint pointer(700, 790);
        QCursor::setPos(pointer);
        QTRY_COMPARE(QCursor::pos(), pointer);

        // MATE's notification area gives the click inside its applet.
        QCOMPARE(callItem("Activate", {5, 5}).type(), QDBusMessage::ReplyMessage);
        StatusPopupMenu* popup = nullptr;
        QTRY_VERIFY((popup = qobject_cast<StatusPopupMenu*>(QApplication::activePopupWidget())));
        QTRY_VERIFY(popup->isVisible());
        QCOMPARE(popup->geometry().left(), pointer.x());
        // Above the panel, which reaches at least as far above the point as below it, and a row.
        QCOMPARE(popup->geometry().bottom(), 799 - (2 * (799 - pointer.y()) + 2));
        popup->close();

        // A panel that gives a point of the screen's edge near the pointer gets the menu there.
        const QPoint edge(660, 780);
        QCOMPARE(callItem("Activate", {edge.x(), edge.y()}).type(), QDBusMessage::ReplyMessage);
        QTRY_VERIFY((popup = qobject_cast<StatusPopupMenu*>(QApplication::activePopupWidget())));
        QTRY_VERIFY(popup->isVisible());
        QCOMPARE(popup->geometry().left(), edge.x());
        QCOMPARE(popup->geometry().bottom(), 799 - (2 * (799 - edge.y()) + 2));
        popup->close();
    }

    void kdesClickPointOpensTheMenuAbovePlasmasPanelWithoutCoveringIt()
    {
        // Plasma's default panel is 44 px high along the bottom; it gives the middle of the item.
        const QPoint click(1063, 778);
        QCursor::setPos(click);
        QTRY_COMPARE(QCursor::pos(), click);
        QCOMPARE(callItem("ContextMenu", {click.x(), click.y()}).type(), QDBusMessage::ReplyMessage);
        StatusPopupMenu* popup = nullptr;
        QTRY_VERIFY((popup = qobject_cast<StatusPopupMenu*>(QApplication::activePopupWidget())));
        QTRY_VERIFY(popup->isVisible());
        const QRect panel(0, 800 - 44, 1280, 44);
        QVERIFY2(!popup->geometry().intersects(panel), qPrintable(QStringLiteral("menu at %1,%2 %3x%4")
                                                                       .arg(popup->geometry().x())
                                                                       .arg(popup->geometry().y())
                                                                       .arg(popup->width())
                                                                       .arg(popup->height())));
        QVERIFY(popup->geometry().bottom() >= panel.top() - 2); // beside it, not far off
        QVERIFY(QRect(0, 0, 1280, 800).contains(popup->geometry()));
        popup->close();
    }

    void aMenuNearAScreenEdgeOpensAwayFromItBesideThePanel_data()
    {
        QTest::addColumn<QPoint>("point");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QPoint>("topLeft");
        const QRect screen(0, 0, 1280, 800);
        const QSize menu(200, 300);
        // Panels that reserve their strip: the menu opens where the free area begins.
        QTest::newRow("bottom panel, reserved") << QPoint(1063, 790) << QRect(0, 0, 1280, 756)
                                                << QPoint(1063, 756 - menu.height());
        QTest::newRow("top panel, reserved") << QPoint(300, 5) << QRect(0, 32, 1280, 768) << QPoint(300, 32);
        QTest::newRow("left panel, reserved") << QPoint(10, 400) << QRect(48, 0, 1232, 800) << QPoint(48, 400);
        QTest::newRow("right panel, reserved")
            << QPoint(1270, 400) << QRect(0, 0, 1232, 800) << QPoint(1232 - menu.width(), 400);
        // The item at the end of a reserved bottom panel, in the corner: still the bottom panel.
        QTest::newRow("bottom right corner, reserved")
            << QPoint(1278, 790) << QRect(0, 0, 1280, 756) << QPoint(1280 - menu.width(), 756 - menu.height());
        // Nothing reserved: the panel reaches as far again as the point lies from the edge, and a row.
        QTest::newRow("bottom panel, KDE's point") << QPoint(1063, 778) << screen
                                                   << QPoint(1063, 800 - 44 - menu.height());
        QTest::newRow("top panel") << QPoint(300, 12) << screen << QPoint(300, 26);
        QTest::newRow("right panel") << QPoint(1260, 400) << screen << QPoint(1280 - 40 - menu.width(), 400);
        QTest::newRow("bottom left corner") << QPoint(3, 790) << screen << QPoint(3, 800 - 20 - menu.height());
        QTest::newRow("mid-screen, as given") << QPoint(600, 300) << screen << QPoint(600, 300);
        QTest::newRow("mid-screen near the bottom, kept on the screen")
            << QPoint(1200, 600) << screen << QPoint(1280 - menu.width(), 800 - menu.height());
        QTest::newRow("no free area known") << QPoint(1063, 778) << QRect() << QPoint(1063, 800 - 44 - menu.height());
    }
    void aMenuNearAScreenEdgeOpensAwayFromItBesideThePanel()
    {
        QFETCH(QPoint, point);
        QFETCH(QRect, available);
        QFETCH(QPoint, topLeft);
        QCOMPARE(PanelHost::menuTopLeft(point, QSize(200, 300), QRect(0, 0, 1280, 800), available), topLeft);
    }

    void onTheSecondScreenTheMenuStaysOnItAbovePanel()
    {
        const QRect second(1280, 0, 1920, 1080);
        QCOMPARE(PanelHost::menuTopLeft(QPoint(3190, 1070), QSize(200, 300), second, second),
                 QPoint(3200 - 200, 1080 - 20 - 300));
    }

    void theMenuOpensAtThePanelsPointOnlyWhenItIsOnAScreenEdgeNearThePointer_data()
    {
        QTest::addColumn<QPoint>("given");
        QTest::addColumn<QPoint>("pointer");
        QTest::addColumn<QPoint>("menu");
        const QPoint topRight(1250, 10);
        const QPoint bottom(700, 790);
        QTest::newRow("the pointer itself") << topRight << topRight << topRight;
        QTest::newRow("the item's corner beside the pointer")
            << QPoint(1230, 0) << topRight << QPoint(1230, 0);
        QTest::newRow("bottom panel") << QPoint(660, 780) << bottom << QPoint(660, 780);
        QTest::newRow("inside the applet, top-left") << QPoint(5, 5) << bottom << bottom;
        QTest::newRow("inside the applet of a top panel") << QPoint(120, 12) << topRight << topRight;
        QTest::newRow("nothing given") << QPoint(0, 0) << topRight << topRight;
        QTest::newRow("mid-screen beside the pointer")
            << QPoint(600, 400) << QPoint(610, 410) << QPoint(610, 410);
        QTest::newRow("off every screen") << QPoint(-20, 790) << QPoint(10, 790) << QPoint(10, 790);
        QTest::newRow("right panel of the second screen")
            << QPoint(3190, 500) << QPoint(3180, 520) << QPoint(3190, 500);
    }
    void theMenuOpensAtThePanelsPointOnlyWhenItIsOnAScreenEdgeNearThePointer()
    {
        QFETCH(QPoint, given);
        QFETCH(QPoint, pointer);
        QFETCH(QPoint, menu);
        const QList<QRect> screens{QRect(0, 0, 1280, 800), QRect(1280, 0, 1920, 1080)};
        QCOMPARE(PanelHost::menuPosition(given, pointer, screens), menu);
    }

    void mateNotificationAreaIsNamedWholeAndShowsTheLabelWithoutABadge()
    {
        QTemporaryDir tools;
        // A watcher process named as MATE's notification area is; the kernel cuts that name to
        // "notification-ar".
        const QString applet = tools.filePath("notification-area-applet");
        QVERIFY(QFile::link(QCoreApplication::applicationFilePath(), applet));
        const auto panelBack = qScopeGuard([this] { watcher->start(); });
        watcher->stop();
        QProcess mate;
        startWatcherChild(mate, applet);
        QFile comm(QStringLiteral("/proc/%1/comm").arg(mate.processId()));
        QVERIFY(comm.open(QIODevice::ReadOnly));
        QCOMPARE(comm.readAll().trimmed(), "notification-ar");
        QCOMPARE(PanelHost::processName(quint32(mate.processId())), "notification-area-applet");
        // The label alone: no badge drawn over the icon.
        QTRY_COMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);
        mate.terminate();
        QVERIFY(mate.waitForFinished(5000));
    }

    void onALabelPanelPausedTheLabelSaysPausedBesideThePlainIcon()
    {
        restartWork();
        QTemporaryDir tools;
        const QString shell = tools.filePath("gnome-shell");
        QVERIFY(QFile::link(QCoreApplication::applicationFilePath(), shell));
        const auto panelBack = qScopeGuard([this] { watcher->start(); });
        watcher->stop();
        QProcess gnomeShell;
        startWatcherChild(gnomeShell, shell);
        QTRY_COMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        CycleControl::pause();
        QTRY_COMPARE(label(), "Paused");
        // The label says it; the icon keeps its colours and no badge beside the word.
        QCOMPARE(property("IconName").toString(), "org.lulltide.Lulltide-muyu");
        const QImage plain = BadgeIcon::draw(item().imagePath(), 16, {});
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(plain).bytes);
        // Without the label the icon says it.
        AppState::prefState().setShowTime(false);
        QTRY_COMPARE(property("IconName").toString(), QString());
        const QImage sign = BadgeIcon::drawPaused(item().imagePath(), 16);
        QCOMPARE(pixmaps().first().bytes, SniIconPixmap::fromImage(sign).bytes);
        AppState::prefState().setShowTime(true);
        restartWork();
        QTRY_COMPARE(label(), "25:00");
        gnomeShell.terminate();
        QVERIFY(gnomeShell.waitForFinished(5000));
    }

    void knownLabelPanelsAreFewAndNamedByTheirWatcherProcess()
    {
        QVERIFY(PanelHost::drawsLabel("gnome-shell"));
        QVERIFY(PanelHost::drawsLabel("indicator-appli"));
        QVERIFY(PanelHost::drawsLabel("ayatana-indicat"));
        QVERIFY(PanelHost::drawsLabel("mate-panel"));
        QVERIFY(PanelHost::drawsLabel("notification-area-applet"));
        // What the kernel's short name of it says, too.
        QVERIFY(PanelHost::drawsLabel("notification-ar"));
        QVERIFY(!PanelHost::drawsLabel("plasmashell"));
        QVERIFY(!PanelHost::drawsLabel("xfce4-panel"));
        QVERIFY(!PanelHost::drawsLabel("waybar"));
        QVERIFY(!PanelHost::drawsLabel(""));
    }

    void pixmapsAreStraightArgbInNetworkByteOrder()
    {
        QImage image(1, 1, QImage::Format_ARGB32);
        image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0x80));
        QCOMPARE(SniIconPixmap::fromImage(image).bytes, QByteArray("\x80\x11\x22\x33", 4));
    }

    void aMenuRequestForMillionsOfIdsIsRefusedAtOnceAndTheProgramKeepsItsName()
    {
        TestSupport::ProgramRun run;
        QDir().mkpath(run.home.path() + "/.config/lulltide");
        QFile conf(run.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n");
        conf.close();
        run.process.setProcessEnvironment(TestSupport::environmentWithHome(run.home.path()));
        run.process.start(LULLTIDE_BINARY, {});
        QVERIFY(run.process.waitForStarted());
        const QString name = "org.lulltide.Lulltide";
        QTRY_VERIFY_WITH_TIMEOUT(panel.interface()->isServiceRegistered(name), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(run.log().contains("sandbox home path: "), 10000);
        const QString owner = panel.interface()->serviceOwner(name);

        // Three million ids of real entries: an answer per id would be larger than the bus carries.
        QDBusMessage huge =
            QDBusMessage::createMethodCall(name, menuPath, menuInterface, "GetGroupProperties");
        QList<int> ids(3000000);
        for (qsizetype i = 0; i < ids.size(); ++i)
            ids[i] = int(i % 10);
        huge << QVariant::fromValue(ids) << QStringList();
        QElapsedTimer took;
        took.start();
        const QDBusMessage reply = panel.call(huge, QDBus::Block, 30000);
        const qint64 elapsed = took.elapsed();
        QCOMPARE(reply.errorName(), "org.freedesktop.DBus.Error.LimitsExceeded");
        QVERIFY2(elapsed < 15000, qPrintable(QString::number(elapsed)));

        // Still the one instance, on the bus with everything it exported.
        QCOMPARE(run.process.state(), QProcess::Running);
        QCOMPARE(panel.interface()->serviceOwner(name).value(), owner);
        QCOMPARE(call(name, "/org/lulltide/Lulltide", "org.freedesktop.DBus.Properties", "Get",
                      {"org.lulltide.Lulltide", "Working"})
                     .type(),
                 QDBusMessage::ReplyMessage);
        QCOMPARE(call(name, menuPath, menuInterface, "GetLayout", {0, -1, QStringList()}).type(),
                 QDBusMessage::ReplyMessage);
    }

    void theRunningProgramShowsBothInterfacesCountsDownAndItsQuitEntryEndsIt()
    {
        QTemporaryDir home;
        watcher->clear();
        QProcess app;
        app.setProcessEnvironment(TestSupport::environmentWithHome(home.path()));
        app.start(LULLTIDE_BINARY, {});
        QVERIFY(app.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(!watcher->senders().isEmpty(), 10000);
        const QString service = watcher->senders().first();

        for (const auto& [path, interface] :
             {std::pair{itemPath, itemInterface}, std::pair{menuPath, menuInterface}}) {
            QProcess introspect;
            introspect.start("gdbus", {"introspect", "--session", "--dest", service, "--object-path", path});
            QVERIFY(introspect.waitForFinished(10000));
            QVERIFY2(introspect.readAllStandardOutput().contains("interface " + interface.toUtf8() + " {"),
                     qPrintable(interface));
        }

        // The real one-second timer moves the label: within the first minute of the period (a
        // loaded machine, or a sanitizer build, takes a few seconds to get here).
        const QString first = property("XAyatanaLabel", service).toString();
        QVERIFY2(first >= "24:00" && first <= "25:00", qPrintable(first));
        QTRY_VERIFY_WITH_TIMEOUT(property("XAyatanaLabel", service).toString() < first, 15000);

        const QDBusMessage reply = call(service, menuPath, menuInterface, "Event",
                                        {9, QString("clicked"), QVariant::fromValue(QDBusVariant(0)), 0u});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(TestSupport::waitForEnd(app, 30000));
        QCOMPARE(app.exitStatus(), QProcess::NormalExit);
        QCOMPARE(app.exitCode(), 0);
    }

    void withNoPanelAtAllTheFirstStartSendsOneNoticeWithASettingsAction()
    {
        watcher->stop();
        StandInNotificationServer server(panel, {"actions", "body"});
        QVERIFY(server.start());
        QProcess app;
        startProgram(app, installation.path());
        QTRY_COMPARE_WITH_TIMEOUT(server.received().size(), 1, 40000);
        const StandInNotificationServer::Received notice = server.received().first();
        QCOMPARE(notice.appName, "Lulltide");
        QCOMPARE(notice.replacesId, 0u);
        QCOMPARE(notice.summary, "Lulltide is running");
        QVERIFY2(notice.body.contains(QRegularExpression("^The next break comes at \\d{1,2}:\\d\\d\\.\n")),
                 qPrintable(notice.body));
        QVERIFY(notice.body.contains("application menu"));
        QVERIFY(notice.body.contains("\"AppIndicator and KStatusNotifierItem Support\""));
        QCOMPARE(notice.actions, QStringList({"settings", "Settings"}));
        QCOMPARE(notice.hints.value("desktop-entry").toString(), "org.lulltide.Lulltide");

        // Sent once, and remembered for the next start.
        QTRY_COMPARE_WITH_TIMEOUT(storedSetting(installation.path(), "told_no_panel").toString(), "true",
                                  10000);
        QTRY_VERIFY(TestSupport::logTextIn(installation.path())
                        .contains("no StatusNotifierWatcher on the session bus and no system tray: nothing "
                                  "in the panel shows Lulltide"));
        pingProgram();
        QCOMPARE(server.calls(), QStringList({"GetCapabilities", "Notify"}));

        // Its button opens the settings window.
        QVERIFY(visibleWindowNames(app).isEmpty());
        server.invokeAction(notice.id + 1, "settings"); // someone else's notification
        server.invokeAction(notice.id, "settings");
        QTRY_COMPARE_WITH_TIMEOUT(visibleWindowNames(app), QStringList{"Settings"}, 10000);

        quitProgram(app, installation.path());
        QVERIFY(watcher->start());
    }

    void theSecondStartOfTheSameInstallationSendsNoNotice()
    {
        watcher->stop();
        StandInNotificationServer server(panel, {"actions", "body"});
        QVERIFY(server.start());
        QCOMPARE(storedSetting(installation.path(), "told_no_panel").toString(), "true");
        QProcess app;
        // No grace: a notice it would send goes out before it answers the ping below.
        startProgram(app, installation.path(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(TestSupport::logTextIn(installation.path())
                                      .count("no StatusNotifierWatcher on the session bus and no system "
                                             "tray: nothing in the panel shows Lulltide"),
                                  2, 15000);
        pingProgram();
        pingProgram();
        QCoreApplication::processEvents();
        QCOMPARE(server.calls(), QStringList());
        quitProgram(app, installation.path());
        QVERIFY(watcher->start());
    }

    void aServerWithoutActionsGetsTheNoticeWithoutTheSettingsButton()
    {
        watcher->stop();
        StandInNotificationServer server(panel, {"body"});
        QVERIFY(server.start());
        QTemporaryDir home;
        QProcess app;
        startProgram(app, home.path());
        QTRY_COMPARE_WITH_TIMEOUT(server.received().size(), 1, 40000);
        QCOMPARE(server.received().first().summary, "Lulltide is running");
        QCOMPARE(server.received().first().actions, QStringList());
        QTRY_COMPARE_WITH_TIMEOUT(storedSetting(home.path(), "told_no_panel").toString(), "true", 10000);
        quitProgram(app, home.path());
        QVERIFY(watcher->start());
    }

    void aPanelThatStartsJustAfterTheProgramTakesTheItemWithoutANotice()
    {
        watcher->stop();
        StandInNotificationServer server(panel, {"actions", "body"});
        QVERIFY(server.start());
        QTemporaryDir home;
        QProcess app;
        startProgram(app, home.path());
        QTRY_VERIFY_WITH_TIMEOUT(TestSupport::logTextIn(home.path())
                                     .contains("no StatusNotifierWatcher on the session bus and no system "
                                               "tray: nothing in the panel shows Lulltide"),
                                 15000);
        // The panel comes up at login a moment later.
        QVERIFY(watcher->start());
        QTRY_VERIFY_WITH_TIMEOUT(
            TestSupport::logTextIn(home.path()).contains("a panel took the item in time: no notice needed"),
            15000);
        pingProgram();
        QCOMPARE(server.calls(), QStringList());
        QCOMPARE(storedSetting(home.path(), "told_no_panel"), QVariant());
        quitProgram(app, home.path());
    }

    void withAWatcherThereIsNoNoticeAndALaterLossIsToldAgain()
    {
        StandInNotificationServer server(panel, {"actions", "body"});
        QVERIFY(server.start());
        // An installation that was told before, on a desktop that has a panel now.
        QTemporaryDir home;
        QDir().mkpath(home.path() + "/.config/lulltide");
        QSettings(home.path() + "/.config/lulltide/lulltide.conf", QSettings::IniFormat)
            .setValue("told_no_panel", true);
        QProcess app;
        // No grace: a notice it would send goes out before it answers the ping below.
        startProgram(app, home.path(), 0);
        // The panel shows the item: the next start without one tells again.
        QTRY_COMPARE_WITH_TIMEOUT(storedSetting(home.path(), "told_no_panel").toString(), "false", 15000);
        pingProgram();
        pingProgram();
        QCoreApplication::processEvents();
        QCOMPARE(server.calls(), QStringList());
        quitProgram(app, home.path());
    }
};

LULLTIDE_TEST_MAIN_WITH_PRIVATE_BUS(StatusBarTest, watcherChild)

#include "tst_statusbar.moc"
