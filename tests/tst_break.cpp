// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/PromptState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "cycle/WorkItem.h"
#include "preferences/BreakStyle.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"
#include "preferences/SettingsStore.h"
#include "statusbar/StatusBarController.h"
#include "statusbar/StatusItem.h"

#include <QPointer>
#include <QPropertyAnimation>
#include <QQuickItem>
#include <QQuickWindow>
#include <QScopeGuard>
#include <QScreen>
#include <QSettings>

using namespace std::chrono_literals;

// Runs on Qt's offscreen platform with two screens side by side (support/screens.json):
// DP-1 1280×800 at (0, 0), the primary, and HDMI-1 1024×768 at (1280, 0).
class BreakTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    static PrefState& prefs() { return AppState::prefState(); }
    static PromptState& prompt() { return AppState::promptState(); }

    static QList<QQuickWindow*> breakWindows()
    {
        QList<QQuickWindow*> windows;
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (auto* quick = qobject_cast<QQuickWindow*>(window);
                quick && window->objectName() == "breakWindow")
                windows << quick;
        }
        return windows;
    }
    static QQuickWindow* breakWindow(const QString& screenKey)
    {
        for (QQuickWindow* window : breakWindows()) {
            if (window->property("screenKey").toString() == screenKey)
                return window;
        }
        return nullptr;
    }
    static QQuickItem* child(QQuickWindow* window, const char* name)
    {
        return window->findChild<QQuickItem*>(name);
    }
    static int visibleBreakWindows()
    {
        int count = 0;
        for (QQuickWindow* window : breakWindows())
            count += window->isVisible();
        return count;
    }
    static int logCount(const QString& message)
    {
        int count = 0;
        for (const QString& line : TestSupport::logLines())
            count += line.endsWith(" : " + message);
        return count;
    }

    // Ends the running work period, which opens a break through the status item.
    void finishWork()
    {
        QVERIFY(ticks->running());
        while (!AppState::workState().timesUp())
            ticks->tick();
    }
    void finishBreak()
    {
        while (!AppState::breakState().timesUp())
            ticks->tick();
    }
    bool isLongBreak() const { return AppState::breakState().timeString() == "15:00"; }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        StatusBarController::item(); // the subscription that opens breaks
        QCOMPARE(QGuiApplication::screens().size(), 2);
    }

    void init()
    {
        SettingsStore::settings().clear();
        prompt().resetShortBreakTimes();
        TicktackController::work(prefs().workTime());
    }

    void cleanup() { WindowController::closeBreak(); }

    // Styles and their sentences.

    void breakStyleFromRawValueTwoOrMinusOneIsNone()
    {
        QVERIFY(!BreakStyle::fromRawValue(2));
        QVERIFY(!BreakStyle::fromRawValue(-1));
        QCOMPARE(BreakStyle::fromRawValue(0)->value(), BreakStyle::relaxation);
        QCOMPARE(BreakStyle::fromRawValue(1)->value(), BreakStyle::struggle);
    }

    void eachStyleHasItsNameAndTenSentencesInOrder()
    {
        const BreakStyle relaxation(BreakStyle::relaxation);
        const BreakStyle struggle(BreakStyle::struggle);
        QCOMPARE(relaxation.desc(), "Relaxation");
        QCOMPARE(struggle.desc(), "Struggle");
        QCOMPARE(relaxation.prompts().size(), 10);
        QCOMPARE(struggle.prompts().size(), 10);
        QCOMPARE(relaxation.prompts().first(), "今天心情放假，工作也跟着轻松一下。");
        QCOMPARE(relaxation.prompts().last(), "谁说工作要认真，今天我要放松一下。");
        QCOMPARE(struggle.prompts().first(), "精益求精，全力以赴，无愧于自己的努力。");
        QCOMPARE(struggle.prompts().last(), "严谨治事，用心经营，工作中的每一份认真都是成功的基石。");
        QVERIFY(relaxation == BreakStyle(BreakStyle::relaxation));
        QVERIFY(!(relaxation == struggle));
    }

    void everySentenceOfBothStylesIsItsExactText_data()
    {
        QTest::addColumn<BreakStyle::Value>("style");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("relaxation 1")
            << BreakStyle::relaxation << 0 << QStringLiteral("今天心情放假，工作也跟着轻松一下。");
        QTest::newRow("relaxation 2")
            << BreakStyle::relaxation << 1 << QStringLiteral("世界那么大，工作那么小，今天就随意点吧。");
        QTest::newRow("relaxation 3")
            << BreakStyle::relaxation << 2 << QStringLiteral("认真工作好累，今天就偷个懒吧。");
        QTest::newRow("relaxation 4")
            << BreakStyle::relaxation << 3 << QStringLiteral("认真工作是好事，但今天我选择开开小差。");
        QTest::newRow("relaxation 5")
            << BreakStyle::relaxation << 4 << QStringLiteral("今天我是自由自在的小懒猫，不想太认真。");
        QTest::newRow("relaxation 6")
            << BreakStyle::relaxation << 5 << QStringLiteral("工作再认真，也得给自己点轻松的时间。");
        QTest::newRow("relaxation 7")
            << BreakStyle::relaxation << 6 << QStringLiteral("慢慢来，工作不急，我要慢悠悠地躺着。");
        QTest::newRow("relaxation 8")
            << BreakStyle::relaxation << 7 << QStringLiteral("工作是认真的，但今天我选择放个假。");
        QTest::newRow("relaxation 9")
            << BreakStyle::relaxation << 8 << QStringLiteral("偷偷告诉你，今天的工作我只做了一半。");
        QTest::newRow("relaxation 10")
            << BreakStyle::relaxation << 9 << QStringLiteral("谁说工作要认真，今天我要放松一下。");
        QTest::newRow("struggle 1") << BreakStyle::struggle << 0
                                    << QStringLiteral("精益求精，全力以赴，无愧于自己的努力。");
        QTest::newRow("struggle 2") << BreakStyle::struggle << 1
                                    << QStringLiteral("一丝不苟，恪尽职守，全心全意投入工作。");
        QTest::newRow("struggle 3") << BreakStyle::struggle << 2
                                    << QStringLiteral("脚踏实地，认真钻研，每一份努力都值得尊重。");
        QTest::newRow("struggle 4") << BreakStyle::struggle << 3
                                    << QStringLiteral("敬业拼搏，兢兢业业，把每一天都当作展示实力的机会。");
        QTest::newRow("struggle 5") << BreakStyle::struggle << 4
                                    << QStringLiteral("不懈追求卓越，不间断进取，只有努力才能铸就成功。");
        QTest::newRow("struggle 6") << BreakStyle::struggle << 5
                                    << QStringLiteral("工作是责任，也是荣誉，全神贯注，全情投入。");
        QTest::newRow("struggle 7") << BreakStyle::struggle << 6
                                    << QStringLiteral("不计较付出，只追求结果，每一步都决定着未来的高度。");
        QTest::newRow("struggle 8") << BreakStyle::struggle << 7
                                    << QStringLiteral("刻苦努力，认真琢磨，精益求精才能走向巅峰。");
        QTest::newRow("struggle 9") << BreakStyle::struggle << 8
                                    << QStringLiteral("每一个细节都值得重视，每一份工作都值得认真对待。");
        QTest::newRow("struggle 10") << BreakStyle::struggle << 9
                                     << QStringLiteral(
                                            "严谨治事，用心经营，工作中的每一份认真都是成功的基石。");
    }

    void everySentenceOfBothStylesIsItsExactText()
    {
        QFETCH(BreakStyle::Value, style);
        QFETCH(int, position);
        QFETCH(QString, sentence);
        const QStringList prompts = BreakStyle(style).prompts();
        QCOMPARE(prompts.size(), 10);
        QCOMPARE(prompts.at(position), sentence);
    }

    void freshInstallationUsesTheRelaxationList()
    {
        QCOMPARE(prefs().styleState()->breakStyle().value(), BreakStyle::relaxation);
        const QStringList relaxation = BreakStyle(BreakStyle::relaxation).prompts();
        for (int i = 0; i < 3; ++i) {
            finishWork();
            QVERIFY2(relaxation.contains(prompt().prompt()), qPrintable(prompt().prompt()));
            finishBreak();
        }
    }

    void storingOneUnderBreakStyleSwitchesToTheStruggleListAtTheNextBreak()
    {
        // Written behind the store's back, as another writer of the settings would.
        SettingsStore::settings().setValue("break_style", 1);
        QCOMPARE(prefs().styleState()->breakStyle().value(), BreakStyle::struggle);
        finishWork();
        QVERIFY2(BreakStyle(BreakStyle::struggle).prompts().contains(prompt().prompt()),
                 qPrintable(prompt().prompt()));
    }

    void storedStyleThatNamesNoStyleReadsAsRelaxation()
    {
        SettingsStore::settings().setValue("break_style", 7);
        QCOMPARE(prefs().styleState()->breakStyle().value(), BreakStyle::relaxation);
        SettingsStore::settings().setValue("break_style", "struggle");
        QCOMPARE(prefs().styleState()->breakStyle().value(), BreakStyle::relaxation);
        prefs().styleState()->setBreakStyle(BreakStyle::struggle);
        QCOMPARE(SettingsStore::settings().value("break_style").toInt(), 1);
    }

    // The rotation of short and long breaks.

    void rotationOfThreeGoesShortShortLongShortShortLong()
    {
        prefs().setShortBreakTimesString("3");
        QList<bool> longBreaks;
        for (int i = 0; i < 6; ++i) {
            finishWork();
            longBreaks << isLongBreak();
            QCOMPARE(prompt().prompt() == prefs().longBreakPrompt(), isLongBreak());
            QTRY_COMPARE(breakWindow("DP-1")->title(), isLongBreak() ? "Long break" : "Short break");
            finishBreak();
        }
        QCOMPARE(longBreaks, QList<bool>({false, false, true, false, false, true}));
    }

    void rotationOfOneMakesEveryBreakLong()
    {
        prefs().setShortBreakTimesString("1");
        for (int i = 0; i < 3; ++i) {
            finishWork();
            QVERIFY(isLongBreak());
            QCOMPARE(prompt().prompt(), prefs().longBreakPrompt());
            finishBreak();
        }
    }

    void afterResetTheNextBreakIsTheFirstOfARotation()
    {
        prefs().setShortBreakTimesString("2");
        finishWork(); // first: short
        QVERIFY(!isLongBreak());
        QCOMPARE(prompt().shortBreakTimes(), 1);
        finishBreak();
        prompt().resetShortBreakTimes();
        QCOMPARE(prompt().shortBreakTimes(), 0);
        finishWork(); // first of a new rotation again: short
        QVERIFY(!isLongBreak());
        finishBreak();
        finishWork();
        QVERIFY(isLongBreak());
    }

    void longBreakIgnoresTheCustomLongPromptSwitch()
    {
        prefs().setShortBreakTimesString("1");
        prefs().setCustomLongBreakPrompt(false);
        prefs().setLongBreakPrompt("mine\\nto keep");
        finishWork();
        QCOMPARE(prompt().prompt(), "mine\\nto keep");
    }

    void forcedLongBreakHasNoSkipButtonUnforcedHasOneShortAlwaysHas()
    {
        prefs().setShortBreakTimesString("2");
        prefs().setForceLongBreak(true);
        finishWork(); // short
        QVERIFY(prompt().showSkipButton());
        finishBreak();
        finishWork(); // long, forced
        QVERIFY(isLongBreak());
        QVERIFY(!prompt().showSkipButton());
        for (QQuickWindow* window : breakWindows())
            QVERIFY(!child(window, "skipButton")->isVisible());
        finishBreak();
        prefs().setForceLongBreak(false);
        finishWork(); // short
        QVERIFY(prompt().showSkipButton());
        finishBreak();
        finishWork(); // long, not forced
        QVERIFY(isLongBreak());
        QVERIFY(prompt().showSkipButton());
        for (QQuickWindow* window : breakWindows())
            QVERIFY(child(window, "skipButton")->isVisible());
    }

    void shortBreakPromptComesFromTheStyleUnlessTheCustomPromptIsOn()
    {
        prefs().setBreakPrompt("my own");
        prefs().setCustomBreakPrompt(false);
        finishWork();
        QVERIFY(BreakStyle().prompts().contains(prompt().prompt()));
        finishBreak();
        prefs().setCustomBreakPrompt(true);
        for (int i = 0; i < 2; ++i) {
            finishWork();
            QCOMPARE(prompt().prompt(), "my own");
            finishBreak();
        }
    }

    void shortBreakPromptIsDrawnAtRandomFromTheWholeList()
    {
        prefs().setShortBreakTimesString("1000");
        const QStringList sentences = BreakStyle().prompts();
        QSet<QString> seen;
        for (int i = 0; i < 60; ++i) {
            finishWork();
            QVERIFY(sentences.contains(prompt().prompt()));
            seen.insert(prompt().prompt());
            finishBreak();
        }
        // Sixty fair draws from ten leave fewer than six unseen with overwhelming likelihood.
        QVERIFY2(seen.size() >= 6, qPrintable(QString::number(seen.size())));
    }

    void shortBreakLastsTheBreakTimeAndLongTheLongBreakTime()
    {
        prefs().setShortBreakTimesString("2");
        prefs().setBreakTimeString("45");
        prefs().setLongBreakTimeString("2");
        finishWork();
        QCOMPARE(AppState::breakState().timeString(), "00:45");
        finishBreak();
        finishWork();
        QCOMPARE(AppState::breakState().timeString(), "02:00");
    }

    void breakCancelsThePendingIdleItem()
    {
        auto idle = WorkItem::schedule(300s, [] {});
        AppState::setMouseMoveEventItem(idle);
        finishWork();
        QVERIFY(idle->isCancelled());
        QCOMPARE(AppState::mouseMoveEventItem(), idle); // cancelled, left in place
        AppState::setMouseMoveEventItem(nullptr);
    }

    void shortBreakTimesOfZeroEndsTheProcessAtTheFirstBreak()
    {
        QTemporaryDir home;
        const auto child =
            TestSupport::runChild("zero-rotation", TestSupport::environmentWithHome(home.path()));
        QVERIFY(child.crashed);
        QVERIFY2(child.standardError.contains("short_break_times is 0"), qPrintable(child.standardError));
        QVERIFY(!child.standardOutput.contains("survived"));
    }

    void newDayBreakLastsTenSecondsAndKeepsTheSkipButtonState()
    {
        prefs().setShortBreakTimesString("1");
        prefs().setForceLongBreak(true);
        finishWork(); // a forced long break: no Skip
        finishBreak();
        const qint64 rotation = prompt().shortBreakTimes();

        prompt().showNewDay();
        QCOMPARE(prompt().prompt(), "今天, 我又来上班了 \n 这一次 \n属于我的鱼都要摸回来");
        QCOMPARE(prompt().prompt().toUtf8().size(), 70);
        QCOMPARE(AppState::breakState().timeString(), "00:10");
        QCOMPARE(prompt().showSkipButton(), false);
        QCOMPARE(prompt().shortBreakTimes(), rotation);
        QCOMPARE(visibleBreakWindows(), 2);

        ticks->tick(10);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "25:00");
    }

    // The break view.

    void endOfTheBreakCountdownClosesTheWindowsAndStartsWorkAsSkipDoes()
    {
        finishWork();
        QCOMPARE(visibleBreakWindows(), 2);
        const int skips = logCount("skip break view");
        const int workStarts = logCount("ticktack timer start 1500.0");
        finishBreak();
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(AppState::workState().timeString(), "25:00");
        QVERIFY(!AppState::workState().timesUp());
        QVERIFY(ticks->running());
        // Each screen's view runs its skip action once; the last work period started wins.
        QCOMPARE(logCount("skip break view"), skips + 2);
        QCOMPARE(logCount("ticktack timer start 1500.0"), workStarts + 2);
        ticks->tick();
        QCOMPARE(AppState::workState().timeString(), "24:59");
    }

    void skipButtonClosesTheWindowsAndStartsAWorkPeriod()
    {
        prefs().setWorkTimeString("10");
        TicktackController::work(prefs().workTime());
        finishWork();
        QQuickWindow* primary = breakWindow("DP-1");
        QVERIFY(QTest::qWaitForWindowExposed(primary));
        QQuickItem* skip = child(primary, "skipButton");
        QVERIFY(skip->isVisible());
        QCOMPARE(skip->property("text").toString(), "Skip");
        const int skips = logCount("skip break view");

        const QPoint centre = skip->mapToScene(QPointF(skip->width() / 2, skip->height() / 2)).toPoint();
        QTest::mouseClick(primary, Qt::LeftButton, {}, centre);
        QCOMPARE(visibleBreakWindows(), 0);
        QCOMPARE(logCount("skip break view"), skips + 1);
        QCOMPARE(AppState::workState().timeString(), "10:00");
        QVERIFY(ticks->running());
    }

    void keyPressedAsTheBreakAppearsDoesNotSkipButEnterOnTheFocusedSkipDoesSoonAfter()
    {
        finishWork();
        QQuickWindow* primary = breakWindow("DP-1");
        QQuickItem* view = child(primary, "breakView");
        // "As the break appears" lasts as long as this test needs, however slow the machine.
        view->setProperty("keysArmAfter", 3600 * 1000);
        QVERIFY(QTest::qWaitForWindowExposed(primary));
        // Skip has the focus from the start, so a person need not look for it.
        QTRY_VERIFY(child(primary, "skipButton")->hasActiveFocus());
        QMetaObject::invokeMethod(view, "takeFocus"); // the long wait from now, had it begun before
        QVERIFY(!view->property("keysArmed").toBool());
        QTest::keyClick(primary, Qt::Key_Space);
        QTest::keyClick(primary, Qt::Key_Return);
        QCOMPARE(visibleBreakWindows(), 2);
        // A moment on, keys count.
        view->setProperty("keysArmAfter", 500);
        QMetaObject::invokeMethod(view, "takeFocus");
        QTRY_VERIFY(view->property("keysArmed").toBool());
        QTest::keyClick(primary, Qt::Key_Return);
        QCOMPARE(visibleBreakWindows(), 0);
    }

    void whenKdeAsksForInstantAnimationsTheBreakAppearsWithoutItsFade()
    {
        const QString globals = qEnvironmentVariable("XDG_CONFIG_HOME") + "/kdeglobals";
        QFile file(globals);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[KDE]\nAnimationDurationFactor=0\n");
        file.close();
        const auto removeFile = qScopeGuard([&] { QFile::remove(globals); });
        finishWork();
        QQuickWindow* primary = breakWindow("DP-1");
        QCOMPARE(primary->opacity(), 1.0);
        QVERIFY(!primary->findChild<QPropertyAnimation*>("fade"));
        prompt().skip();

        // Without the wish, the same window fades in from nothing.
        QFile::remove(globals);
        finishWork();
        QVERIFY(primary->opacity() < 1.0);
        QVERIFY(primary->findChild<QPropertyAnimation*>("fade"));
    }

    void promptWithBackslashNIsShownOnTwoLines()
    {
        prefs().setCustomBreakPrompt(true);
        prefs().setBreakPrompt("first line\\nsecond line");
        finishWork();
        QQuickWindow* primary = breakWindow("DP-1");
        QQuickItem* text = child(primary, "promptText");
        QCOMPARE(text->property("text").toString(), "first line\nsecond line");
        QVERIFY(QTest::qWaitForWindowExposed(primary));
        QTRY_COMPARE(text->property("lineCount").toInt(), 2);
        QCOMPARE(prompt().prompt(), "first line\\nsecond line"); // the state keeps the stored form
    }

    void breakViewShowsTheBreakCountdown()
    {
        finishWork();
        QQuickItem* countdown = child(breakWindow("HDMI-1"), "breakCountdown");
        QCOMPARE(countdown->property("text").toString(), "05:00");
        ticks->tick();
        QCOMPARE(countdown->property("text").toString(), "04:59");
    }

    // The windows.

    void twoScreensGetTwoWindowsNamedAfterTheBreakCoveringEachScreen()
    {
        finishWork();
        QCOMPARE(visibleBreakWindows(), 2);
        QQuickWindow* left = breakWindow("DP-1");
        QQuickWindow* right = breakWindow("HDMI-1");
        QVERIFY(left && right);
        QCOMPARE(left->geometry(), QRect(0, 0, 1280, 800));
        QCOMPARE(right->geometry(), QRect(1280, 0, 1024, 768));
        QCOMPARE(left->screen()->name(), "DP-1");
        QCOMPARE(right->screen()->name(), "HDMI-1");
        for (QQuickWindow* window : {left, right}) {
            QCOMPARE(window->title(), "Short break");
            QVERIFY(window->flags() & Qt::FramelessWindowHint);
            QVERIFY(window->flags() & Qt::WindowStaysOnTopHint);
            QCOMPARE(window->color(), QColor(0xAA, 0xAA, 0xAA));
            QQuickItem* view = child(window, "breakView");
            QVERIFY(view);
            QCOMPARE(view->size(), QSizeF(window->size()));
        }
    }

    void breakWindowsFadeInOverOneSecond()
    {
        finishWork();
        for (QQuickWindow* window : breakWindows()) {
            auto* fade = window->findChild<QPropertyAnimation*>("fade");
            QVERIFY(fade);
            QCOMPARE(fade->duration(), 1000);
            QCOMPARE(fade->startValue().toDouble(), 0.0);
            QCOMPARE(fade->endValue().toDouble(), 1.0);
            QVERIFY(window->opacity() < 0.5);
        }
        QTest::qWait(400);
        QQuickWindow* primary = breakWindow("DP-1");
        QVERIFY(primary->opacity() > 0.1 && primary->opacity() < 0.9);
        QTRY_COMPARE_WITH_TIMEOUT(primary->opacity(), 1.0, 2000);
    }

    void breakClosedWhileFadingInLeavesNoAnimationRunning()
    {
        finishWork();
        QQuickWindow* primary = breakWindow("DP-1");
        QVERIFY(primary->findChild<QPropertyAnimation*>("fade"));
        WindowController::closeBreak();
        for (QQuickWindow* window : breakWindows()) {
            for (const QPropertyAnimation* animation : window->findChildren<QPropertyAnimation*>())
                QCOMPARE(animation->state(), QAbstractAnimation::Stopped);
        }
    }

    void primaryScreensBreakWindowTakesTheFocus()
    {
        finishWork();
        QTRY_COMPARE(QGuiApplication::focusWindow(), breakWindow("DP-1"));
    }

    void secondBreakReusesTheSameWindows()
    {
        finishWork();
        const QList<QQuickWindow*> first = breakWindows();
        const int windows = QGuiApplication::allWindows().size();
        finishBreak();
        finishWork();
        QCOMPARE(breakWindows(), first);
        QCOMPARE(QGuiApplication::allWindows().size(), windows);
        QCOMPARE(visibleBreakWindows(), 2);
    }

    void closedBreakWindowStaysInTheWindowList()
    {
        finishWork();
        QQuickWindow* window = breakWindow("HDMI-1");
        finishBreak();
        QVERIFY(!window->isVisible());
        QVERIFY(QGuiApplication::allWindows().contains(window));
        QCOMPARE(breakWindow("HDMI-1"), window);
    }

    void closedBreakWindowKeepsItsViewAndFrameForTheNextBreak()
    {
        finishWork();
        QQuickWindow* window = breakWindow("HDMI-1");
        const QPointer<QQuickItem> countdown = child(window, "breakCountdown");
        QVERIFY(countdown);
        finishBreak();
        QVERIFY(!window->isVisible());
        QCOMPARE(window->geometry(), QRect(1280, 0, 1024, 768));
        finishWork();
        QVERIFY(window->isVisible());
        QCOMPARE(child(window, "breakCountdown"), countdown.data());
        QCOMPARE(countdown->property("text").toString(), "05:00");
    }

    void screenWithoutANameIsDisplayZero()
    {
        QCOMPARE(WindowController::displayIdentifier(nullptr), "0");
        QCOMPARE(WindowController::displayIdentifier(QGuiApplication::screens().at(1)), "HDMI-1");
    }

    void screensWithoutANameOrWithOneNameTwiceGetAWindowEach()
    {
        // Two screens without a name and two of one name, as some Wayland compositors have them.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LULLTIDE_TEST_KEEP_PLATFORM", "1");
        environment.insert("QT_QPA_PLATFORM",
                           "offscreen:configfile=" TESTS_SOURCE_DIR "/support/screens-unnamed.json");
        const auto child = TestSupport::runChild("unnamed-screens", environment);
        QVERIFY2(!child.crashed, qPrintable(child.standardError));
        const QStringList expected{
            "screen 0: window \"0\" shown, covering it",
            "screen 1: window \"0 (2)\" shown, covering it",
            "screen 2: window \"DP-1\" shown, covering it",
            "screen 3: window \"DP-1 (2)\" shown, covering it",
            "after the break: 4 windows, 0 shown",
            "next break: 4 windows, 4 shown",
        };
        QCOMPARE(child.standardOutput.split('\n', Qt::SkipEmptyParts), expected);
    }

    // Last: it leaves a window of no screen behind.
    void closingWithAScreenThatNeverShowedABreakCreatesItsWindowAndClosesIt()
    {
        finishWork();
        // The window of HDMI-1 now stands for a screen that has gone away; HDMI-1 is "new".
        QQuickWindow* detached = breakWindow("HDMI-1");
        detached->setProperty("screenKey", "gone");
        const int windows = breakWindows().size();
        finishBreak();
        QCOMPARE(breakWindows().size(), windows + 1);
        QQuickWindow* fresh = breakWindow("HDMI-1");
        if (!fresh)
            QFAIL("no break window for HDMI-1");
        QVERIFY(fresh != detached);
        QVERIFY(!fresh->isVisible());
        QCOMPARE(fresh->geometry(), QRect(1280, 0, 1024, 768));
        // The window of the screen that went away does not outlast the break either.
        QVERIFY(!detached->isVisible());
    }

    // The status item's part in the cycle.

    void whenWorkIsUpTheTitleEmptiesAndTheBreakScreenOpens()
    {
        StatusItem& item = StatusBarController::item();
        QCOMPARE(item.title(), "25:00");
        finishWork();
        QCOMPARE(item.title(), QString());
        QCOMPARE(visibleBreakWindows(), 2);
        QCOMPARE(AppState::breakState().timeString(), "05:00");
        finishBreak();
        QCOMPARE(item.title(), "25:00");
    }

    void withShowTimeOffTheTitleStaysEmpty()
    {
        prefs().setShowTime(false);
        StatusItem& item = StatusBarController::item();
        QCOMPARE(item.title(), QString());
        ticks->tick(3);
        QCOMPARE(item.title(), QString());
        prefs().setShowTime(true);
        QCOMPARE(item.title(), "24:57");
    }
};

static void useTwoOffscreenScreens()
{
    if (qEnvironmentVariableIsEmpty("LULLTIDE_TEST_KEEP_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" TESTS_SOURCE_DIR "/support/screens.json");
    qputenv("QT_QUICK_BACKEND", "software");
}

// What became of the break windows of the screens, one line each.
static void tellBreakWindows(const QString& when)
{
    int windows = 0;
    int shown = 0;
    for (QWindow* window : QGuiApplication::allWindows()) {
        if (window->objectName() == "breakWindow") {
            ++windows;
            shown += window->isVisible();
        }
    }
    std::printf("%s: %d windows, %d shown\n", qPrintable(when), windows, shown);
}

static int childMain(const QByteArray& mode)
{
    if (mode == "unnamed-screens") {
        WindowController::showBreak();
        const QList<QScreen*> screens = QGuiApplication::screens();
        for (int i = 0; i < screens.size(); ++i) {
            for (QWindow* window : QGuiApplication::allWindows()) {
                if (window->objectName() != "breakWindow" || window->screen() != screens.at(i))
                    continue;
                std::printf("screen %d: window \"%s\" %s, %s\n", i,
                            qPrintable(window->property("screenKey").toString()),
                            window->isVisible() ? "shown" : "hidden",
                            window->geometry() == screens.at(i)->geometry() ? "covering it" : "elsewhere");
            }
        }
        WindowController::closeBreak();
        tellBreakWindows("after the break");
        WindowController::showBreak();
        tellBreakWindows("next break");
        return 0;
    }
    if (mode == "zero-rotation") {
        AppState::prefState().setShortBreakTimesString("0");
        AppState::promptState().showBreak();
    }
    std::puts("survived");
    return 0;
}

int main(int argc, char* argv[])
{
    return TestSupport::runTests<BreakTest>(argc, argv, childMain, useTwoOffscreenScreens);
}
#include "tst_break.moc"
