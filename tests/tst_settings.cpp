// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "appinfo/AppInfo.h"
#include "break/IconFont.h"
#include "break/QmlEngine.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "history/HistoryStore.h"
#include "preferences/BreakStyle.h"
#include "preferences/PrefState.h"
#include "preferences/PrefStyleState.h"
#include "settings/SettingsWindow.h"

#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSettings>
#include <QStyleHints>
#include <QTemporaryDir>

namespace {

// Registers a font that is not there, or data that is no font: both end the process.
int childMain(const QByteArray& mode)
{
    if (mode == "missing-font")
        IconFont::registerFont(QStringLiteral(":/no-such-font"));
    if (mode == "broken-font") {
        QTemporaryDir dir;
        QFile file(dir.filePath("iconfont"));
        file.open(QIODevice::WriteOnly);
        file.write("not a font at all");
        file.close();
        IconFont::registerFont(file.fileName());
    }
    return 0;
}

} // namespace

class SettingsTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    static PrefState& prefs() { return AppState::prefState(); }

    static QQuickWindow* window()
    {
        for (QWindow* window : QGuiApplication::allWindows()) {
            if (window->objectName() == "settingsWindow")
                return qobject_cast<QQuickWindow*>(window);
        }
        return nullptr;
    }

    static void findAllIn(QQuickItem* parent, const QString& name, QList<QQuickItem*>& found)
    {
        for (QQuickItem* child : parent->childItems()) {
            if (child->objectName() == name)
                found << child;
            findAllIn(child, name, found);
        }
    }

    static QQuickItem* find(const char* name)
    {
        QQuickItem* item = TestSupport::findItem(window()->contentItem(), name);
        if (!item)
            qWarning() << "no item named" << name;
        return item;
    }

    static void click(QQuickItem* item)
    {
        QVERIFY(item);
        const QPoint point = item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
        // A second click on the same spot would be a double click: the events' time stamps,
        // which QTest makes up, must lie further apart.
        static QPoint lastPoint;
        const int delay =
            point == lastPoint ? QGuiApplication::styleHints()->mouseDoubleClickInterval() + 10 : -1;
        QTest::mouseClick(window(), Qt::LeftButton, {}, point, delay);
        lastPoint = point;
    }

    static void openTab(const char* name)
    {
        click(find(name));
        QTRY_COMPARE(
            find("tabs")->property("currentIndex").toInt(),
            QStringList({"generalTab", "workflowTab", "styleTab", "timingTab", "historyTab", "aboutTab"})
                .indexOf(name));
    }

    // Types into a field as a person does: click, select all, type.
    static void typeInto(const char* name, const QString& text)
    {
        QQuickItem* field = find(name);
        click(field);
        QTRY_VERIFY(field->hasActiveFocus());
        QTest::keyClick(window(), Qt::Key_A, Qt::ControlModifier);
        if (text.isEmpty())
            QTest::keyClick(window(), Qt::Key_Backspace);
        else
            typeText(text);
    }

    static void typeText(const QString& text)
    {
        for (const QChar character : text)
            QTest::sendKeyEvent(QTest::Click, window(), Qt::Key_unknown, QString(character), Qt::NoModifier);
    }

    // Picks the entry at `index` of a picker with the keyboard, as a person may.
    static void pick(const char* name, int index)
    {
        QQuickItem* combo = find(name);
        click(combo); // opens the list
        // The list opens with an animation, which a loaded machine draws slowly.
        QTRY_VERIFY_WITH_TIMEOUT(combo->property("popup").value<QObject*>()->property("opened").toBool(),
                                 30000);
        const int from = combo->property("highlightedIndex").toInt();
        for (int i = from; i < index; ++i)
            QTest::keyClick(window(), Qt::Key_Down);
        for (int i = from; i > index; --i)
            QTest::keyClick(window(), Qt::Key_Up);
        QTest::keyClick(window(), Qt::Key_Return);
        QTRY_VERIFY_WITH_TIMEOUT(!combo->property("popup").value<QObject*>()->property("opened").toBool(),
                                 30000);
    }

    static QVariant stored(const char* key)
    {
        QSettings file(QDir::homePath() + "/.config/lulltide/lulltide.conf", QSettings::IniFormat);
        return file.value(key);
    }

    static QStringList listedPrompts()
    {
        QStringList texts;
        QQuickItem* list = find("promptList");
        QMetaObject::invokeMethod(list, "forceLayout");
        QList<QQuickItem*> rows;
        findAllIn(list, "promptText", rows);
        std::sort(rows.begin(), rows.end(), [](QQuickItem* a, QQuickItem* b) {
            return a->mapToScene({0, 0}).y() < b->mapToScene({0, 0}).y();
        });
        for (QQuickItem* row : rows)
            texts << row->property("text").toString();
        return texts;
    }

private slots:
    void initTestCase()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
        QCOMPARE(IconFont::registrations(), 0);
        SettingsWindow::show();
        QVERIFY(window());
        QVERIFY(QTest::qWaitForWindowExposed(window()));
    }

    void theWindowIsTitledSettingsAndOpensOnTheFirstTabWithNewTabsBeforeAbout()
    {
        QCOMPARE(window()->title(), "Settings");
        QCOMPARE(find("tabs")->property("currentIndex").toInt(), 0);
        // The tab bar's own order, as a person sees it.
        QStringList labels;
        QQuickItem* bar = find("tabs");
        for (int i = 0; i < bar->property("count").toInt(); ++i) {
            QQuickItem* tab = nullptr;
            QVERIFY(QMetaObject::invokeMethod(bar, "itemAt", Q_RETURN_ARG(QQuickItem*, tab), Q_ARG(int, i)));
            labels << tab->property("text").toString();
        }
        QCOMPARE(labels, QStringList({"General", "Workflow", "Style", "Timing", "History", "About"}));
    }

    void theWindowCannotBeMadeSmallerThan480By400()
    {
        QCOMPARE(window()->minimumSize(), QSize(480, 400));
        window()->resize(300, 200);
        QTRY_VERIFY(window()->width() >= 480 && window()->height() >= 400);
        window()->resize(700, 600); // larger is fine
        QTRY_COMPARE(window()->size(), QSize(700, 600));
    }

    void bothActionNamesOpenTheOneWindow()
    {
        QQuickWindow* first = window();
        first->hide();
        QVERIFY(SettingsWindow::sendAction("showPreferencesWindow:"));
        QTRY_VERIFY(first->isVisible());
        QVERIFY(SettingsWindow::sendAction("showSettingsWindow:"));
        QVERIFY(!SettingsWindow::sendAction("showSomethingElse:"));
        int windows = 0;
        for (QWindow* w : QGuiApplication::allWindows())
            windows += w->objectName() == "settingsWindow" ? 1 : 0;
        QCOMPARE(windows, 1);
        QCOMPARE(window(), first);
    }

    void generalSwitchesWriteTheirSettingsAtOnce()
    {
        openTab("generalTab");
        click(find("launchAtLogin"));
        QTRY_COMPARE(prefs().launchAtLogin(), true);
        QCOMPARE(stored("launch_at_login").toBool(), true);
        QVERIFY(QFile::exists(QDir::homePath() + "/.config/autostart/org.lulltide.Lulltide.desktop"));
        click(find("launchAtLogin"));
        QTRY_COMPARE(prefs().launchAtLogin(), false);
        QVERIFY(!QFile::exists(QDir::homePath() + "/.config/autostart/org.lulltide.Lulltide.desktop"));

        click(find("showTime"));
        QTRY_COMPARE(prefs().showTime(), false);
        QCOMPARE(stored("show_time_in_status_bar").toBool(), false);
        click(find("showTime"));
        QTRY_COMPARE(prefs().showTime(), true);

        click(find("autoCheckUpdate"));
        QTRY_COMPARE(prefs().autoCheckUpdate(), false);
        QCOMPARE(stored("auto_check_update").toBool(), false);
    }

    void aStyleChosenInTheGeneralTabShowsInTheStyleTabWithItsPrompts()
    {
        openTab("generalTab");
        QCOMPARE(find("generalBreakStyle")->property("currentText").toString(), "Relaxation");
        pick("generalBreakStyle", 1);
        QTRY_COMPARE(prefs().styleState()->breakStyleRawValue(), 1);
        QCOMPARE(stored("break_style").toInt(), 1);

        openTab("styleTab");
        QCOMPARE(find("styleBreakStyle")->property("currentIndex").toInt(), 1);
        QTRY_COMPARE(listedPrompts(), BreakStyle(BreakStyle::struggle).prompts());

        // And back from the Style tab: the General picker follows.
        pick("styleBreakStyle", 0);
        QTRY_COMPARE(prefs().styleState()->breakStyleRawValue(), 0);
        QTRY_COMPARE(listedPrompts(), BreakStyle(BreakStyle::relaxation).prompts());
        QCOMPARE(find("generalBreakStyle")->property("currentIndex").toInt(), 0);
    }

    void promptsAreListedAsStored()
    {
        openTab("styleTab");
        for (int style : {0, 1}) {
            prefs().styleState()->setBreakStyleRawValue(style);
            QTRY_COMPARE(listedPrompts(), prefs().styleState()->prompts());
        }
    }

    void eachStyleListsTenDistinctSentences()
    {
        openTab("styleTab");
        for (int style : {0, 1}) {
            prefs().styleState()->setBreakStyleRawValue(style);
            const QStringList sentences = prefs().styleState()->prompts();
            QCOMPARE(QSet<QString>(sentences.begin(), sentences.end()).size(), 10);
            // Each sentence is its own row: none shares another's place in the list.
            QTRY_COMPARE(listedPrompts(), sentences);
        }
    }

    void aPromptWithBackslashNIsListedAsStored()
    {
        // The Style pane on a list of our own, in a window of its own.
        QQuickWindow paneWindow;
        paneWindow.resize(560, 500);
        auto* pane = qobject_cast<QQuickItem*>(
            QmlEngine::create("PrefStyleView", {{"styleState", QVariant::fromValue(prefs().styleState())}}));
        QVERIFY(pane);
        pane->setParent(&paneWindow);
        pane->setParentItem(paneWindow.contentItem());
        pane->setSize(paneWindow.size());
        QQuickItem* list = TestSupport::findItem(pane, "promptList");
        QVERIFY(list);
        const QStringList custom{"first line\\nsecond line", "one line"};
        list->setProperty("model", custom);
        paneWindow.show();
        QVERIFY(QTest::qWaitForWindowExposed(&paneWindow));

        const auto listedRows = [list] {
            QList<QQuickItem*> rows;
            findAllIn(list, "promptText", rows);
            std::sort(rows.begin(), rows.end(), [](QQuickItem* a, QQuickItem* b) {
                return a->mapToScene({0, 0}).y() < b->mapToScene({0, 0}).y();
            });
            return rows;
        };
        QTRY_COMPARE(listedRows().size(), 2);
        const QList<QQuickItem*> rows = listedRows();
        QCOMPARE(rows.at(0)->property("text").toString(), "first line\\nsecond line");
        QCOMPARE(rows.at(0)->property("lineCount").toInt(), 1);
        QCOMPARE(rows.at(1)->property("text").toString(), "one line");
    }

    void emptyingTheWorkFieldStoresNothingAndTheNextPeriodLasts1500Seconds()
    {
        openTab("workflowTab");
        QCOMPARE(find("workTimeField")->property("placeholderText").toString(), "25");
        typeInto("workTimeField", "");
        QTRY_COMPARE(prefs().workTimeString(), QString());
        QCOMPARE(stored("work_time").toString(), QString());
        QCOMPARE(prefs().workTime(), 1500.0);
        AppState::setWorking(true);
        QCOMPARE(AppState::workState().timeString(), "25:00");
    }

    void fieldsWriteOnEveryKeystroke()
    {
        openTab("workflowTab");
        typeInto("workTimeField", "4");
        QTRY_COMPARE(prefs().workTimeString(), "4");
        typeText("0");
        QTRY_COMPARE(prefs().workTimeString(), "40");
        QCOMPARE(stored("work_time").toString(), "40");
        typeInto("workTimeField", "abc"); // no validation: stored as typed, read as the default
        QTRY_COMPARE(prefs().workTimeString(), "abc");
        QCOMPARE(prefs().workTime(), 1500.0);
        typeInto("workTimeField", "25");
    }

    void theTimingTabsFieldsRefuseValuesOutOfRange()
    {
        prefs().setHeadsUp(true);
        prefs().setAllowPostpone(true);
        prefs().setHoldBreaks(true);
        openTab("timingTab");
        // Each keystroke within the range is stored; the one that leaves it is not.
        typeInto("postponeMinutesField", "2000");
        QTRY_COMPARE(prefs().postponeMinutesString(), "200");
        typeInto("holdLimitMinutesField", "2000");
        QTRY_COMPARE(prefs().holdLimitMinutesString(), "200");
        typeInto("postponeLimitField", "9");
        typeInto("headsUpSecondsField", "5");
        // Values in range that follow prove the refused ones were typed and seen.
        typeInto("postponeLimitField", "3");
        QTRY_COMPARE(prefs().postponeLimitString(), "3");
        typeInto("headsUpSecondsField", "45");
        QTRY_COMPARE(prefs().headsUpSecondsString(), "45");
        typeInto("postponeMinutesField", "30");
        QTRY_COMPARE(prefs().postponeMinutesString(), "30");
        QCOMPARE(stored("postpone_limit").toString(), "3");
        prefs().setHeadsUp(false);
        prefs().setAllowPostpone(false);
        prefs().setHoldBreaks(false);
    }

    void typing1Point5InTheBreakFieldGivesABreakOf1Point5Seconds()
    {
        openTab("workflowTab");
        typeInto("breakTimeField", "1.5");
        QTRY_COMPARE(prefs().breakTimeString(), "1.5");
        QCOMPARE(prefs().breakTime(), 1.5);
        typeInto("shortBreakTimesField", "2");
        typeInto("longBreakTimeField", "20");
        QTRY_COMPARE(prefs().shortBreakTimes(), 2);
        QTRY_COMPARE(prefs().longBreakTime(), 1200.0);
        QCOMPARE(stored("long_break_time").toString(), "20");
    }

    void anEmptiedFieldShowsTheValueStoredBeforeTheEditAsItsPlaceholder_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("before");
        QTest::newRow("work") << "workTimeField"
                              << "workTimeString"
                              << "30";
        QTest::newRow("break") << "breakTimeField"
                               << "breakTimeString"
                               << "240";
        QTest::newRow("short breaks") << "shortBreakTimesField"
                                      << "shortBreakTimesString"
                                      << "3";
        QTest::newRow("long break") << "longBreakTimeField"
                                    << "longBreakTimeString"
                                    << "12";
        QTest::newRow("break prompt") << "breakPromptField"
                                      << "breakPrompt"
                                      << "走走";
        QTest::newRow("long break prompt") << "longBreakPromptField"
                                           << "longBreakPrompt"
                                           << "喝水";
    }
    // The pane scrolls when both prompt fields are shown: a person scrolls down to the lower ones.
    static QQuickItem* scrollerOf(QQuickItem* item)
    {
        while (item && !item->inherits("QQuickFlickable"))
            item = item->parentItem();
        return item;
    }

    static void scrollIntoView(QQuickItem* item)
    {
        QQuickItem* scroller = scrollerOf(item);
        QVERIFY(scroller);
        const qreal bottom = item->mapToItem(scroller, QPointF(0, item->height())).y();
        if (bottom > scroller->height())
            scroller->setProperty("contentY",
                                  scroller->property("contentY").toReal() + bottom - scroller->height() + 12);
        QTRY_VERIFY(item->mapToItem(scroller, QPointF(0, item->height())).y() <= scroller->height());
    }

    // Fields shown or hidden move the others at the next polish: a click waits for the layout.
    static void waitUntilStill(QQuickItem* item)
    {
        QPointF last(-1e9, -1e9);
        QTRY_VERIFY([&] {
            const QPointF now = item->mapToScene({0, 0});
            const bool still = now == last;
            last = now;
            return still;
        }());
    }

    void anEmptiedFieldShowsTheValueStoredBeforeTheEditAsItsPlaceholder()
    {
        QFETCH(QString, field);
        QFETCH(QString, setting);
        QFETCH(QString, before);
        openTab("workflowTab");
        prefs().setCustomBreakPrompt(true);
        prefs().setCustomLongBreakPrompt(true);
        const QByteArray name = field.toLatin1();
        QQuickItem* edited = find(name.constData());
        const auto hidePromptFields = qScopeGuard([edited] {
            prefs().setCustomBreakPrompt(false);
            prefs().setCustomLongBreakPrompt(false);
            if (QQuickItem* scroller = scrollerOf(edited))
                scroller->setProperty("contentY", 0);
            QTRY_VERIFY(!find("longBreakPromptField")->isVisible());
            waitUntilStill(find("forceLongBreak"));
        });
        QTRY_VERIFY(find("breakPromptField")->isVisible() && find("longBreakPromptField")->isVisible());
        waitUntilStill(find("longBreakPromptField"));
        scrollIntoView(edited);
        // The switch below the prompt fields moves down once the layout has taken them in.
        const auto sceneRect = [](QQuickItem* item) {
            return item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        };
        QTRY_VERIFY(!sceneRect(find("forceLongBreak")).intersects(sceneRect(edited)));
        // The edit begins in a field that another field's edit left.
        click(find(field == "workTimeField" ? "breakTimeField" : "workTimeField"));
        QVERIFY(prefs().setProperty(setting.toLatin1().constData(), before));
        QTRY_COMPARE(edited->property("text").toString(), before);

        typeInto(name.constData(), "7");
        QTRY_COMPARE(prefs().property(setting.toLatin1().constData()).toString(), "7");
        QTest::keyClick(window(), Qt::Key_Backspace);
        QTRY_COMPARE(prefs().property(setting.toLatin1().constData()).toString(), QString());
        QCOMPARE(edited->property("text").toString(), QString());
        QCOMPARE(edited->property("placeholderText").toString(), before);

        // Leaving the emptied field keeps it so; the next edit starts from what is stored then.
        click(find(field == "workTimeField" ? "breakTimeField" : "workTimeField"));
        QTRY_VERIFY(!edited->hasActiveFocus());
        QCOMPARE(edited->property("placeholderText").toString(), before);
        QVERIFY(prefs().setProperty(setting.toLatin1().constData(), before));
    }

    void customPromptSwitchShowsTheFieldWithTheStoredPromptAndHidingKeepsIt()
    {
        openTab("workflowTab");
        const QString prompt = prefs().breakPrompt();
        QQuickItem* field = find("breakPromptField");
        QVERIFY(!field->isVisible());
        click(find("customBreakPrompt"));
        QTRY_VERIFY(field->isVisible());
        QTRY_COMPARE(field->width(), 300.0);
        QCOMPARE(field->property("text").toString(), prompt);
        typeInto("breakPromptField", "站起来");
        QTRY_COMPARE(prefs().breakPrompt(), "站起来");
        click(find("customBreakPrompt"));
        QTRY_VERIFY(!field->isVisible());
        QCOMPARE(prefs().customBreakPrompt(), false);
        QCOMPARE(prefs().breakPrompt(), "站起来");
        QCOMPARE(stored("break_prompt_text").toString(), "站起来");

        QQuickItem* longField = find("longBreakPromptField");
        QVERIFY(!longField->isVisible());
        click(find("customLongBreakPrompt"));
        QTRY_VERIFY(longField->isVisible());
        QCOMPARE(longField->property("text").toString(), prefs().longBreakPrompt());
        // Off again from the keyboard: the switch has the focus since the click.
        QTRY_VERIFY(find("customLongBreakPrompt")->hasActiveFocus());
        QTest::keyClick(window(), Qt::Key_Space);
        QTRY_VERIFY(!longField->isVisible());
    }

    void workflowSwitchesWriteTheirSettings()
    {
        openTab("workflowTab");
        click(find("forceLongBreak"));
        QTRY_COMPARE(prefs().forceLongBreak(), true);
        click(find("restartTimerAfterAwake"));
        QTRY_COMPARE(prefs().restartTimerAfterAwake(), false);
        click(find("stopTimerAfterMouseStop"));
        QTRY_COMPARE(prefs().stopTimerAfterMouseStop(), false);
        click(find("showNewDayTip"));
        QTRY_COMPARE(prefs().showNewDayTip(), true);
        QCOMPARE(stored("force_long_break").toBool(), true);
        QCOMPARE(stored("restart_timer_after_awake").toBool(), false);
        QCOMPARE(stored("stop_timer_after_mouse_stop").toBool(), false);
        QCOMPARE(stored("show_new_day_tip").toBool(), true);
    }

    void labelsAndSwitchesStandOnOneColumn()
    {
        openTab("workflowTab");
        const qreal fieldLeft = find("workTimeField")->mapToScene({0, 0}).x();
        QCOMPARE(find("breakTimeField")->mapToScene({0, 0}).x(), fieldLeft);
        QCOMPARE(find("customBreakPrompt")->mapToScene({0, 0}).x(), fieldLeft);
        QCOMPARE(find("shortBreakTimesField")->mapToScene({0, 0}).x(),
                 find("customLongBreakPrompt")->mapToScene({0, 0}).x());
        QCOMPARE(find("forceLongBreak")->mapToScene({0, 0}).x(),
                 find("longBreakTimeField")->mapToScene({0, 0}).x());
        QCOMPARE(find("workTimeField")->width(), 100.0);
    }

    void tabMovesThroughTheFieldsAndSwitchesInOrder()
    {
        openTab("workflowTab");
        click(find("workTimeField"));
        QTRY_VERIFY(find("workTimeField")->hasActiveFocus());
        QTest::keyClick(window(), Qt::Key_Tab);
        QTRY_VERIFY(find("breakTimeField")->hasActiveFocus());
        QTest::keyClick(window(), Qt::Key_Tab);
        QTRY_VERIFY(find("customBreakPrompt")->hasActiveFocus());
        // A switch reached with the keyboard toggles with Space.
        const bool before = prefs().customBreakPrompt();
        QTest::keyClick(window(), Qt::Key_Space);
        QTRY_COMPARE(prefs().customBreakPrompt(), !before);
        QTest::keyClick(window(), Qt::Key_Space);
        QTRY_COMPARE(prefs().customBreakPrompt(), before);
    }

    static bool chartsLoaded()
    {
        QFile maps("/proc/self/maps");
        return maps.open(QIODevice::ReadOnly) && maps.readAll().contains("libQt6Charts");
    }

    void theHistoryTabLoadsItsChartOnlyWhenOpenedAndSaysHowTheWeekWent()
    {
        QVERIFY(!TestSupport::findItem(window()->contentItem(), "historyView"));
        QVERIFY(!chartsLoaded());
        const QDate today = QDate::currentDate();
        {
            HistoryStore store;
            const auto add = [&store, &today](int hour, int minute, const QString& kind,
                                              const QString& breakKind, const QString& detail,
                                              double seconds = 0) {
                HistoryStore::Event event;
                event.seconds = seconds;
                event.utc = QDateTime(today, QTime(hour, minute)).toUTC();
                event.localDate = today.toString(Qt::ISODate);
                event.kind = kind;
                event.breakKind = breakKind;
                event.detail = detail;
                QVERIFY(store.record(event));
            };
            add(0, 10, "work_started", {}, {}, 1500);
            add(0, 35, "break_started", "short", {});
            add(0, 40, "break_ended", "short", "full");
            add(0, 40, "paused", {}, "menu");
        }
        openTab("historyTab");
        QTRY_VERIFY(TestSupport::findItem(window()->contentItem(), "historyView"));
        QVERIFY(chartsLoaded());
        QTRY_COMPARE(find("historySentence")->property("text").toString(),
                     "This week: 1 of 1 breaks taken; longest stretch without a break: 25 min (" +
                         QLocale().dayName(today.dayOfWeek()) + ").");
        QVERIFY(find("historyChart")->isVisible());
        QCOMPARE(find("historyDayLine")->property("text").toString(),
                 "First line: time at the screen; second: the longest stretch without a break; third: breaks "
                 "postponed.");

        // A month: the same sentence over 30 days, and a day's times where the pointer is.
        click(find("thirtyDays"));
        QTRY_VERIFY(
            find("historySentence")->property("text").toString().startsWith("These 30 days: 1 of 1 breaks"));
        QCOMPARE(find("historyDayLine")->property("text").toString(),
                 "Point at a day for its time at the screen and its longest stretch without a break.");
        QVERIFY(find("historyView")->setProperty("pointedDay", 29)); // today, the last bar
        QCOMPARE(find("historyDayLine")->property("text").toString(),
                 QLocale().toString(today, QLocale::LongFormat) +
                     ": 25 min at the screen; longest stretch without a break: 25 min; postponed: 0.");
        click(find("thirtyDays"));
        QTRY_VERIFY(find("historySentence")->property("text").toString().startsWith("This week:"));
    }

    void forgetHistoryAsksFirstAndThenDeletesTheFile()
    {
        openTab("historyTab");
        const QString file = HistoryStore::defaultPath();
        QVERIFY(QFile::exists(file));
        QObject* confirmation = window()->findChild<QObject*>("forgetConfirmation");
        QVERIFY(confirmation);
        click(find("forgetHistory"));
        QTRY_VERIFY(confirmation->property("opened").toBool());
        QVERIFY(QMetaObject::invokeMethod(confirmation, "reject"));
        QTRY_VERIFY(!confirmation->property("visible").toBool());
        QVERIFY(QFile::exists(file)); // asked, and said no
        click(find("forgetHistory"));
        QTRY_VERIFY(confirmation->property("opened").toBool());
        QVERIFY(QMetaObject::invokeMethod(confirmation, "accept"));
        QTRY_VERIFY(!QFile::exists(file));
        QTRY_COMPARE(find("historySentence")->property("text").toString(),
                     "This week: nothing recorded yet.");
    }

    void aboutShowsTheGlyphNameVersionLinkAndCopyright()
    {
        openTab("aboutTab");
        QCOMPARE(find("aboutGlyph")->property("text").toString(), QString(QChar(0xE64B)));
        QCOMPARE(find("aboutGlyph")->property("font").value<QFont>().family(), "iconfont");
        QCOMPARE(find("aboutGlyph")->property("font").value<QFont>().pixelSize(), 60);
        QCOMPARE(find("aboutName")->property("text").toString(), "Lulltide");
        QVERIFY(find("aboutName")->property("font").value<QFont>().bold());
        QCOMPARE(find("aboutVersion")->property("text").toString(), "v1.0.0(1)");
        QVERIFY(find("aboutReleaseNotes")
                    ->property("text")
                    .toString()
                    .contains("href=\"https://lulltide.org/release_note/\">Release Notes<"));
        QCOMPARE(find("aboutCopyright")->property("text").toString(), AppInfo::copyright());
    }

    void theReleaseNotesLinkOpensTheBrowser()
    {
        // A stand-in xdg-open first on PATH records what it is asked to open.
        QTemporaryDir tools;
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-open");
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", tools.path().toUtf8() + ":" + path);

        openTab("aboutTab");
        click(find("aboutReleaseNotes"));
        QTRY_COMPARE(TestSupport::recordedArguments(record),
                     QStringList{"https://lulltide.org/release_note/"});
        qputenv("PATH", path);
    }

    void firstUseOfTheIconFontRegistersItAndLaterUsesDoNot()
    {
        QCOMPARE(IconFont::registrations(), 1); // the About tab's glyph
        QCOMPARE(IconFont::name(), "iconfont");
        QCOMPARE(IconFont::registrations(), 1);
        QVERIFY(QFontDatabase::families().contains("iconfont"));
        // The glyph draws something: its image is not empty.
        const QImage image = IconFont(IconFont::muyu).loadIcon(64);
        int inked = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                inked += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
        QVERIFY2(inked > 500, qPrintable(QString::number(inked)));
    }

    void glyphsAreNamedByExactlyTheirTwoCharacters()
    {
        QCOMPARE(IconFont::fromRawValue(QString(QChar(0xE64B))), IconFont(IconFont::muyu));
        QCOMPARE(IconFont::fromRawValue(QString(QChar(0xE64C))), IconFont(IconFont::muyugun));
        QVERIFY(!IconFont::fromRawValue(QString(QChar(0xE64D))));
        QVERIFY(!IconFont::fromRawValue(QString(QChar(0xE64B)) + QChar(0xE64B)));
        QVERIFY(!IconFont::fromRawValue(QString()));
    }

    void aMissingIconFontEndsTheProcessWithItsMessage()
    {
        const auto child = TestSupport::runChild("missing-font", QProcessEnvironment::systemEnvironment());
        QVERIFY(child.crashed || child.exitCode != 0);
        QVERIFY2(child.standardError.contains("Can not found font named: iconfont"),
                 qPrintable(child.standardError));
    }

    void anUnreadableIconFontEndsTheProcessWithItsMessage()
    {
        const auto child = TestSupport::runChild("broken-font", QProcessEnvironment::systemEnvironment());
        QVERIFY(child.crashed || child.exitCode != 0);
        QVERIFY2(child.standardError.contains("Register Iconfont failed: "), qPrintable(child.standardError));
    }

    void closingTheWindowKeepsItForTheNextTime()
    {
        QQuickWindow* first = window();
        first->close();
        QTRY_VERIFY(!first->isVisible());
        SettingsWindow::show();
        QTRY_VERIFY(first->isVisible());
        QCOMPARE(window(), first);
    }
};

LULLTIDE_TEST_MAIN_WITH_WINDOW_MANAGER(SettingsTest, childMain)

#include "tst_settings.moc"
