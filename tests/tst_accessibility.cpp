// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QImage>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <cmath>
#include <cstring>

// The break as a screen reader's user meets it: the real program on a display of its own with a
// window manager, its accessibility bus on a private session bus, read with Debian's pyatspi
// (tests/support/atspi-tree.py) as orca reads it; and the break screen's contrast, from what the
// X server shows.
class AccessibilityTest : public QObject {
    Q_OBJECT

    using Instance = TestSupport::ProgramRun;

    // A break three seconds after the start, with a prompt of our own.
    static QByteArray breakSoon(int breakSeconds)
    {
        return "work_time=0.05\ncustom_break_prompt=true\nbreak_prompt_text=Stand up and "
               "stretch\nbreak_time=" +
               QByteArray::number(breakSeconds) + '\n';
    }

    static void start(Instance& instance, const QByteArray& settings, const QStringList& arguments = {},
                      const QStringList& variables = {})
    {
        QVERIFY(QDir().mkpath(instance.home.path() + "/.config/lulltide"));
        QFile conf(instance.home.path() + "/.config/lulltide/lulltide.conf");
        QVERIFY(conf.open(QIODevice::WriteOnly));
        conf.write("[General]\nauto_check_update=false\n" + settings);
        conf.close();
        QProcessEnvironment env = TestSupport::environmentWithHome(instance.home.path());
        env.insert("LC_ALL", "C.UTF-8");
        env.remove("LANGUAGE");
        env.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        for (const QString& variable : variables)
            env.insert(variable.section('=', 0, 0), variable.section('=', 1));
        instance.process.setProcessEnvironment(env);
        instance.process.start(LULLTIDE_BINARY, arguments);
        QVERIFY(instance.process.waitForStarted());
    }

    static QString status()
    {
        static QTemporaryDir clientHome;
        QProcess client;
        client.setProcessEnvironment(TestSupport::environmentWithHome(clientHome.path()));
        client.start(LULLTIDE_BINARY, {"--status"});
        client.waitForFinished(15000);
        return QString::fromUtf8(client.readAllStandardOutput()).trimmed();
    }

    // What a screen reader is told, line by line ("event|role|name|description"), from its start.
    struct Listener {
        QProcess process;
        QStringList lines;
        Listener()
        {
            process.start("/usr/bin/python3",
                          {TESTS_SOURCE_DIR "/support/atspi-tree.py", "Lulltide", "--events"});
        }
        ~Listener()
        {
            process.kill();
            process.waitForFinished(5000);
        }
        QStringList read()
        {
            process.waitForReadyRead(100);
            while (process.canReadLine())
                lines << QString::fromUtf8(process.readLine()).trimmed();
            return lines;
        }
        bool heard(const QString& line) { return read().contains(line); }
        // Everything heard, for a failure's message.
        QByteArray all() { return read().join('\n').toUtf8(); }
        qsizetype count(const QString& line) { return read().count(line); }
    };

    // Enter, as often as it takes: keys count once the break has had the focus a moment.
    static bool enterEnds()
    {
        QProcess::execute("xdotool", {"key", "Return"});
        return status().startsWith("working ");
    }

    static QImage screenshot()
    {
        const QString file = QDir::current().filePath("accessibility-shot.png");
        QProcess::execute("import", {"-window", "root", file});
        return QImage(file).convertToFormat(QImage::Format_RGB32);
    }

    static double luminance(QColor color)
    {
        const auto channel = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) +
               0.0722 * channel(color.blueF());
    }

    static double contrast(QColor a, QColor b)
    {
        const double la = luminance(a);
        const double lb = luminance(b);
        return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
    }

    // The colour most pixels of the rectangle have, leaving out those in `except`.
    static QRgb commonest(const QImage& image, const QRect& area, const QList<QRgb>& except = {})
    {
        QHash<QRgb, int> counts;
        for (int y = area.top(); y <= area.bottom(); ++y) {
            for (int x = area.left(); x <= area.right(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                if (!except.contains(pixel))
                    ++counts[pixel];
            }
        }
        QRgb best = 0;
        int most = 0;
        for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
            if (it.value() > most) {
                most = it.value();
                best = it.key();
            }
        }
        return best;
    }

    // The bounding box of the Skip button's blue in the screenshot.
    static QRect blueArea(const QImage& image)
    {
        QRect box;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.blue() > c.red() + 120)
                    box = box.united(QRect(x, y, 1, 1));
            }
        }
        return box;
    }

private slots:
    void aScreenReaderFindsTheBreakItsTextsAndSkipWhosePressEndsIt()
    {
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        Instance instance;
        start(instance, breakSoon(300));
        QString found;
        const auto breakFound = [&] {
            found = TestSupport::atspi({});
            return found.contains("push button 'Skip'");
        };
        QTRY_VERIFY2_WITH_TIMEOUT(breakFound(), qPrintable(found), 30000);
        // frame and alert named after the break > (what it tells as it goes,) the prompt, the
        // countdown and Skip.
        const QRegularExpression tree(
            "\n  frame 'Short break'\n    alert 'Short break'\n      notification ''\n"
            "      label 'Stand up and stretch'\n"
            "      label '0[45]:\\d\\d'\n      push button 'Skip'");
        QVERIFY2(tree.match(found).hasMatch(), qPrintable(found));
        // Postpone is off: a hidden button is not there for the reader either.
        QVERIFY2(!found.contains("Postpone"), qPrintable(found));

        const QString pressed = TestSupport::atspi({"--do", "push button", "Skip", "Press"});
        QVERIFY2(pressed.startsWith("Press True"), qPrintable(pressed));
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("working "), 10000);
    }

    void theBreakIsAnnouncedAsItOpensAMinuteBeforeItsEndAndAtItsEndNotEverySecond()
    {
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        Listener listener;
        QTRY_VERIFY_WITH_TIMEOUT(listener.heard("listening"), 20000);
        Instance instance;
        start(instance, breakSoon(62));

        // The break takes the focus as it opens: the reader says where it is and what it is.
        const QString opening = "Short break, 62 seconds: Stand up and stretch";
        QTRY_VERIFY2_WITH_TIMEOUT(listener.heard("focus:|0|push button|Skip|" + opening),
                                  listener.all().constData(), 30000);
        QVERIFY2(!listener.read()
                      .filter(QRegularExpression("^window:activate\\|0\\|frame\\|Short break\\|"))
                      .isEmpty(),
                 listener.all().constData());
        // A minute before the end a notification shows, which readers speak wherever the focus is.
        const QString shown = "object:state-changed:showing|1|notification|";
        QTRY_VERIFY2_WITH_TIMEOUT(listener.heard(shown + "One minute left|"), listener.all().constData(),
                                  15000);
        QCOMPARE(status().left(6), QString("break "));
        // Ended by the reader's user: the end is told before the windows go.
        QVERIFY(TestSupport::atspi({"--do", "push button", "Skip", "Press"}).startsWith("Press True"));
        QTRY_VERIFY2_WITH_TIMEOUT(listener.heard(shown + "The break is over|"), listener.all().constData(),
                                  10000);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("working "), 10000);
        // Each said once or so. The countdown's seconds change only the name of its label, which
        // readers leave unsaid; they reach no focus, description or notification.
        QCOMPARE(listener.count(shown + "One minute left|"), 1);
        QVERIFY2(listener.read().filter(shown).size() <= 3, listener.all().constData());
        const QStringList seconds = listener.read().filter(QRegularExpression("\\d\\d:\\d\\d"));
        QVERIFY2(seconds.size() >= 2, listener.all().constData()); // the label's name did change
        for (const QString& line : seconds)
            QVERIFY2(line.startsWith("object:property-change:accessible-name|0|label|"), qPrintable(line));
    }

    void orcaSaysTheBreakAsItOpensAMinuteBeforeItsEndAndAtItsEnd()
    {
        if (!QFile::exists("/usr/bin/orca"))
            QSKIP("orca is not installed");
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        QTemporaryDir scratch;
        const QString log = scratch.filePath("orca.log");
        QProcess orca;
        orca.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        orca.start("/usr/bin/python3", {TESTS_SOURCE_DIR "/support/orca-speech.py", log});
        const auto guard = qScopeGuard([&] {
            orca.terminate();
            if (!orca.waitForFinished(5000))
                orca.kill();
        });
        // What orca would say, in order.
        const auto said = [&] {
            QFile file(log);
            QStringList lines;
            if (file.open(QIODevice::ReadOnly)) {
                const QRegularExpression speech("SPEECH OUTPUT: '(.*)' ?\\{'established'");
                for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
                    const QRegularExpressionMatch match = speech.match(line);
                    if (match.hasMatch())
                        lines << match.captured(1).trimmed();
                }
            }
            return lines;
        };
        // Listening once its event manager is on.
        const auto listening = [&] {
            QFile file(log);
            return file.open(QIODevice::ReadOnly) && file.readAll().contains("EVENT MANAGER: Activated");
        };
        QTRY_VERIFY_WITH_TIMEOUT(listening(), 30000);
        Instance instance;
        start(instance, breakSoon(62));
        QTRY_VERIFY2_WITH_TIMEOUT(said().contains("Short break, 62 seconds: Stand up and stretch."),
                                  qPrintable(said().join('\n')), 30000);
        QVERIFY2(said().contains("alert Short break."), qPrintable(said().join('\n')));
        // The window is named after the break, not after its monitor.
        QVERIFY2(!said().filter(QRegularExpression("^Short break frame")).isEmpty(),
                 qPrintable(said().join('\n')));
        QVERIFY2(said().contains("Skip push button."), qPrintable(said().join('\n')));
        QTRY_VERIFY2_WITH_TIMEOUT(said().contains("notification One minute left."),
                                  qPrintable(said().join('\n')), 15000);
        QTRY_VERIFY_WITH_TIMEOUT(enterEnds(), 15000);
        QTRY_VERIFY2_WITH_TIMEOUT(said().contains("notification The break is over."),
                                  qPrintable(said().join('\n')), 10000);
        // The countdown is said at most once, with the alert as it opens: never second by second.
        QVERIFY2(said().filter(QRegularExpression("\\d\\d:\\d\\d")).size() <= 1,
                 qPrintable(said().join('\n')));
        qInfo("orca said: %s", qPrintable(said().join(" / ")));
    }

    void enterRightAfterABreakOpensSkipsIt()
    {
        Instance instance;
        start(instance, breakSoon(300));
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 30000);
        // No Tab first: Skip has the focus. Keys are taken once the break has been up half a
        // second, so Enter goes again until the break is over.
        QTRY_VERIFY_WITH_TIMEOUT(enterEnds(), 15000);
    }

    void theSettingsWindowsControlsAreNamedAndReachedWithTabAndArrowsOnEveryTab()
    {
        TestSupport::AccessibilityBus accessibility;
        QVERIFY(accessibility.started());
        Listener listener;
        QTRY_VERIFY_WITH_TIMEOUT(listener.heard("listening"), 20000);
        Instance instance;
        start(instance, {}, {"--settings"});
        QTRY_VERIFY2_WITH_TIMEOUT(listener.heard("window:activate|0|frame|Settings|Settings"),
                                  listener.all().constData(), 30000);

        // The focus as the reader is told of it: "role|name".
        const auto focused = [&] {
            const QStringList focus = listener.read().filter(QRegularExpression("^focus:\\|"));
            return focus.isEmpty() ? QString() : focus.last().section('|', 2, 3);
        };
        // Presses a key and waits until the focus moved.
        const auto press = [&](const char* key) {
            const qsizetype before = listener.read().filter(QRegularExpression("^focus:\\|")).size();
            QProcess::execute("xdotool", {"key", key});
            return QTest::qWaitFor(
                [&] { return listener.read().filter(QRegularExpression("^focus:\\|")).size() > before; },
                5000);
        };
        QVERIFY(press("Tab"));
        QCOMPARE(focused(), QString("page tab|General"));

        QMap<QString, QStringList> reached; // tab → the controls Tab reached on it
        const QStringList tabs{"General", "Workflow", "Style", "Timing", "History", "About"};
        for (const QString& tab : tabs) {
            if (tab != tabs.first()) {
                QVERIFY(press("Right"));
                QCOMPARE(focused(), "page tab|" + tab);
            }
            // Round the tab's controls and back to its tab.
            for (int step = 0; step < 40; ++step) {
                QVERIFY2(press("Tab"), qPrintable(tab + ": " + reached[tab].join(", ")));
                if (focused() == "page tab|" + tab)
                    break;
                reached[tab] << focused();
            }
            QCOMPARE(focused(), "page tab|" + tab);
            QVERIFY2(!reached[tab].isEmpty(), qPrintable(tab));
            for (const QString& control : reached[tab])
                QVERIFY2(!control.section('|', 0, 0).isEmpty() && !control.section('|', 1).isEmpty(),
                         qPrintable(tab + ": " + control));
            qInfo("%s: %lld controls reached with Tab, each with a role and a name: %s", qPrintable(tab),
                  static_cast<long long>(reached[tab].size()), qPrintable(reached[tab].join(", ")));
        }
        // As the README tells them, with the settings as they come.
        const QMap<QString, qsizetype> counts{{"General", 4}, {"Workflow", 10}, {"Style", 2},
                                              {"Timing", 3},  {"History", 4},   {"About", 1}};
        for (const QString& tab : tabs)
            QCOMPARE(reached[tab].size(), counts[tab]);
        QVERIFY(reached["General"].contains("check box|Launch at login"));
        QVERIFY(reached["About"].contains("link|Release Notes"));
        QVERIFY(!reached["Style"].filter(QRegularExpression("^list item\\|.+")).isEmpty());
        QVERIFY2(!reached["History"].filter(QRegularExpression("^list item\\|.+taken, .+ skipped")).isEmpty(),
                 qPrintable(reached["History"].join(", ")));

        // The focused tab shows it: when the focus goes from the tab to the link below, the
        // screen changes in two places apart, the tab's mark going and the link's coming.
        // (Each shot once the window has drawn what the focus asks for: two shots alike.)
        const auto settled = [] {
            QImage before = screenshot();
            for (int tries = 0; tries < 50; ++tries) {
                QImage after = screenshot();
                if (after == before)
                    return after;
                before = after;
            }
            return before;
        };
        const QImage markedTab = settled();
        QVERIFY(press("Tab"));
        QCOMPARE(focused(), QString("link|Release Notes"));
        QList<int> changedRows;
        const auto twoPlacesChanged = [&] {
            const QImage markedLink = settled();
            changedRows.clear();
            for (int y = 0; y < markedTab.height(); ++y) {
                if (std::memcmp(markedTab.constScanLine(y), markedLink.constScanLine(y),
                                markedTab.bytesPerLine()) != 0)
                    changedRows << y;
            }
            return !changedRows.isEmpty() &&
                   changedRows.last() - changedRows.first() + 1 > changedRows.size() + 20;
        };
        QTRY_VERIFY2_WITH_TIMEOUT(twoPlacesChanged(),
                                  qPrintable(QString("%1 rows changed").arg(changedRows.size())), 10000);
    }

    void whenTheDesktopAsksForLessAnimationTheBreakAppearsWithoutItsFade_data()
    {
        QTest::addColumn<QString>("desktop");
        QTest::newRow("GNOME's enable-animations off") << "gnome";
        QTest::newRow("KDE's animation speed instant") << "kde";
    }

    void whenTheDesktopAsksForLessAnimationTheBreakAppearsWithoutItsFade()
    {
        QFETCH(QString, desktop);
        Instance instance;
        const QString config = instance.home.path() + "/.config";
        QVERIFY(QDir().mkpath(config));
        QStringList variables;
        if (desktop == "gnome") {
            // GSettings in a file of the test's own, as GNOME's dconf would hold it.
            variables << "GSETTINGS_BACKEND=keyfile"
                      << "XDG_CURRENT_DESKTOP=GNOME";
            QProcess gsettings;
            QProcessEnvironment env = TestSupport::environmentWithHome(instance.home.path());
            env.insert("GSETTINGS_BACKEND", "keyfile");
            gsettings.setProcessEnvironment(env);
            gsettings.start("gsettings",
                            {"set", "org.gnome.desktop.interface", "enable-animations", "false"});
            QVERIFY(gsettings.waitForFinished(15000));
            QCOMPARE(gsettings.exitCode(), 0);
        } else {
            QFile globals(config + "/kdeglobals");
            QVERIFY(globals.open(QIODevice::WriteOnly));
            globals.write("[KDE]\nAnimationDurationFactor=0\n");
        }
        start(instance, breakSoon(300), {}, variables);
        QStringList windows;
        QTRY_VERIFY_WITH_TIMEOUT(
            !(windows = TestSupport::visibleWindowsOf(instance.process.processId())).isEmpty(), 30000);
        // Never given an opacity: a fade sets one, from nothing up, and leaves it at full.
        for (const QString& window : windows) {
            QProcess opacity;
            opacity.start("xprop", {"-id", window, "_NET_WM_WINDOW_OPACITY"});
            QVERIFY(opacity.waitForFinished(10000));
            const QString value = QString::fromUtf8(opacity.readAllStandardOutput()).trimmed();
            QVERIFY2(value.endsWith("not found."), qPrintable(value));
        }
        QTRY_VERIFY_WITH_TIMEOUT(
            instance.log().contains(
                "the break appears without its fade: the desktop asks for less animation"),
            10000);
    }

    void theBreakScreensTextsAndFocusRingStandOutFourAndAHalfToOne_data()
    {
        QTest::addColumn<QStringList>("theme");
        QTest::addColumn<QRgb>("background");
        QTest::newRow("light") << QStringList{} << qRgb(255, 255, 255);
        // A dark GTK theme, carried over by Qt's gtk3 platform theme.
        QTest::newRow("dark") << QStringList{"QT_QPA_PLATFORMTHEME=gtk3", "GTK_THEME=Adwaita:dark"}
                              << qRgb(0, 0, 0);
    }

    void theBreakScreensTextsAndFocusRingStandOutFourAndAHalfToOne()
    {
        QFETCH(QStringList, theme);
        QFETCH(QRgb, background);
        Instance instance;
        start(instance, breakSoon(300), {}, theme);
        QTRY_VERIFY_WITH_TIMEOUT(status().startsWith("break "), 30000);
        QImage shot;
        QRect button;
        const auto drawn = [&] {
            shot = screenshot();
            button = blueArea(shot);
            // Drawn whole, the fade-in over: the button's blue is at full strength.
            return !shot.isNull() && button.width() > 20 && commonest(shot, button) == qRgb(0x00, 0x70, 0xE8);
        };
        QTRY_VERIFY_WITH_TIMEOUT(drawn(), 15000);
        shot.save(
            QDir::current().filePath(QString("accessibility-break-%1.png").arg(QTest::currentDataTag())));
        QCOMPARE(shot.pixel(5, 5), background);

        // The prompt: the commonest colour above the countdown, the background left aside.
        const QRgb prompt = commonest(shot, QRect(0, 0, shot.width(), button.top() - 200), {background});
        const double promptContrast = contrast(QColor(prompt), QColor(background));
        QVERIFY2(promptContrast >= 4.5, qPrintable(QString::number(promptContrast)));

        // Skip's label on its blue.
        const QRgb fill = commonest(shot, button);
        const double labelContrast = contrast(QColor(fill), Qt::white);
        QVERIFY2(labelContrast >= 4.5, qPrintable(QString::number(labelContrast)));

        // Skip has the focus: its ring, outside the blue, in the text colour.
        const QRgb ring =
            commonest(shot, button.adjusted(-6, -6, 6, 6), {background, fill, qRgb(255, 255, 255)});
        const double ringContrast = contrast(QColor(ring), QColor(background));
        QVERIFY2(ringContrast >= 4.5, qPrintable(QString::number(ringContrast)));
        qInfo("contrast (%s): prompt %.2f:1, Skip's label %.2f:1, focus ring %.2f:1", QTest::currentDataTag(),
              promptContrast, labelContrast, ringContrast);
    }
};

namespace {

void startPrivateWorld()
{
    TestSupport::startPrivateSessionBus();
    TestSupport::startPrivateDisplayWithWindowManager();
}

} // namespace

int main(int argc, char* argv[])
{
    return TestSupport::runTests<AccessibilityTest>(argc, argv, nullptr, startPrivateWorld);
}

#include "tst_accessibility.moc"
