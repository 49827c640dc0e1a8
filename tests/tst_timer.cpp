// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/ManualTickSource.h"
#include "support/TestMain.h"

#include "cycle/AppState.h"
#include "cycle/QtTickSource.h"
#include "cycle/TicktackController.h"
#include "cycle/TicktackState.h"
#include "logging/NumberText.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <limits>

using namespace std::chrono_literals;

class TimerTest : public QObject {
    Q_OBJECT

    ManualTickSource* ticks = nullptr;

    void useManualTicks()
    {
        ticks = new ManualTickSource;
        TicktackController::setTickSource(std::unique_ptr<TickSource>(ticks));
    }

private slots:
    void init() { useManualTicks(); }
    void cleanup() { TicktackController::stop(); }

    void formatShowsMinutesSecondsAndHoursWithoutSeparator_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("25 minutes") << 1500.0 << "25:00";
        QTest::newRow("5 minutes") << 300.0 << "05:00";
        QTest::newRow("fraction truncated") << 59.9 << "00:59";
        QTest::newRow("2.9 truncated") << 2.9 << "00:02";
        QTest::newRow("half a second") << 0.5 << "00:00";
        QTest::newRow("zero") << 0.0 << "00:00";
        QTest::newRow("negative") << -3.0 << "00:00";
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << "00:00";
        QTest::newRow("negative infinity") << -std::numeric_limits<double>::infinity() << "00:00";
        QTest::newRow("an hour") << 3600.0 << "0100:00";
        QTest::newRow("just under an hour") << 3599.0 << "59:59";
        QTest::newRow("90 min 5 s") << 5405.0 << "0130:05";
        QTest::newRow("25 hours") << 90061.0 << "2501:01";
    }
    void formatShowsMinutesSecondsAndHoursWithoutSeparator()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(TicktackController::format(seconds), text);
    }

    void formatOfInfiniteOrOutOfRangeSecondsEndsTheProcess_data()
    {
        QTest::addColumn<QByteArray>("mode");
        QTest::addColumn<QString>("message");
        QTest::newRow("infinite") << QByteArray("format-infinite") << "infinite";
        QTest::newRow("beyond 64 bits") << QByteArray("format-huge") << "out of range";
    }
    void formatOfInfiniteOrOutOfRangeSecondsEndsTheProcess()
    {
        QFETCH(QByteArray, mode);
        QFETCH(QString, message);
        const auto child = TestSupport::runChild(mode, QProcessEnvironment::systemEnvironment());
        QVERIFY2(child.crashed, qPrintable(child.standardError));
        QVERIFY2(child.standardError.contains(message), qPrintable(child.standardError));
        QVERIFY(!child.standardOutput.contains(QLatin1String("survived")));
    }

    void logNumbersUseShortestFormWithPointZeroForWholeNumbers_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("1500") << 1500.0 << "1500.0";
        QTest::newRow("2.5") << 2.5 << "2.5";
        QTest::newRow("0.1") << 0.1 << "0.1";
        QTest::newRow("1") << 1.0 << "1.0";
        QTest::newRow("-3") << -3.0 << "-3.0";
        QTest::newRow("3.0000000000000004") << 3.0000000000000004 << "3.0000000000000004";
        QTest::newRow("0") << 0.0 << "0.0";
        QTest::newRow("100000 stays plain") << 100000.0 << "100000.0";
        QTest::newRow("600000 stays plain") << 600000.0 << "600000.0";
        QTest::newRow("0.0001") << 0.0001 << "0.0001";
        QTest::newRow("below 0.0001") << 0.00001 << "1e-05";
        QTest::newRow("from 2^53 on") << 1e16 << "1e+16";
        QTest::newRow("1.5e300") << 1.5e300 << "1.5e+300";
    }
    void logNumbersUseShortestFormWithPointZeroForWholeNumbers()
    {
        QFETCH(double, value);
        QFETCH(QString, text);
        QCOMPARE(numberText(value), text);
    }

    void workOfThreeSecondsCountsDownAndRaisesTimesUpOnce()
    {
        TicktackState& work = AppState::workState();
        QSignalSpy timesUpRaised(&work, &TicktackState::timesUpChanged);
        TicktackController::work(3);
        QCOMPARE(work.timeString(), "00:03");
        QCOMPARE(work.timesUp(), false);
        timesUpRaised.clear();

        ticks->tick();
        QCOMPARE(work.timeString(), "00:02");
        ticks->tick();
        QCOMPARE(work.timeString(), "00:01");
        QCOMPARE(work.timesUp(), false);
        ticks->tick();
        QCOMPARE(work.timeString(), "00:00");
        QCOMPARE(work.timesUp(), true);
        QCOMPARE(timesUpRaised.count(), 1);

        // Nobody reacts: the countdown runs on, showing zero, without raising again.
        QSignalSpy textWritten(&work, &TicktackState::timeStringChanged);
        ticks->tick(3);
        QCOMPARE(work.timeString(), "00:00");
        QCOMPARE(textWritten.count(), 3);
        QCOMPARE(timesUpRaised.count(), 1);
        QVERIFY(ticks->running());
    }

    void startAndTimesUpAreLoggedWithTheFullLength()
    {
        TicktackController::work(3);
        QCOMPARE(TestSupport::logLines().last().section(QLatin1String(" : "), 1), "ticktack timer start 3.0");
        ticks->tick(3);
        QCOMPARE(TestSupport::logLines().last().section(QLatin1String(" : "), 1),
                 "ticktack timer timesup for 3.0");
    }

    void fractionalLengthAddsAVisibleZeroSecond()
    {
        TicktackState& work = AppState::workState();
        TicktackController::work(2.5);
        QCOMPARE(work.timeString(), "00:02");
        ticks->tick();
        QCOMPARE(work.timeString(), "00:01"); // 1.5
        ticks->tick();
        QCOMPARE(work.timeString(), "00:00"); // 0.5: not over yet
        QCOMPARE(work.timesUp(), false);
        ticks->tick();
        QCOMPARE(work.timeString(), "00:00"); // -0.5
        QCOMPARE(work.timesUp(), true);
    }

    void workOfAnHourShowsHoursAndJustUnderShowsMinutes()
    {
        TicktackController::work(3600);
        QCOMPARE(AppState::workState().timeString(), "0100:00");
        TicktackController::work(3599);
        QCOMPARE(AppState::workState().timeString(), "59:59");
    }

    void workDuringABreakStopsTheBreakAndStartsAFullWorkPeriod()
    {
        TicktackState& breakState = AppState::breakState();
        TicktackState& work = AppState::workState();
        TicktackController::break_(300);
        ticks->tick(2);
        QCOMPARE(breakState.timeString(), "04:58");

        TicktackController::work(1500);
        QCOMPARE(work.timeString(), "25:00");
        ticks->tick();
        QCOMPARE(work.timeString(), "24:59");
        QCOMPARE(breakState.timeString(), "04:58"); // stopped where it was
    }

    void lengthOfZeroOrLessShowsZeroAtOnceAndIsUpOnTheFirstTick()
    {
        TicktackState& work = AppState::workState();
        TicktackController::work(0);
        QCOMPARE(work.timeString(), "00:00");
        QCOMPARE(work.timesUp(), false);
        ticks->tick();
        QCOMPARE(work.timesUp(), true);

        TicktackController::work(-5);
        QCOMPARE(work.timesUp(), false);
        ticks->tick();
        QCOMPARE(work.timesUp(), true);
    }

    void stopWithNothingRunningStillLogsStoped()
    {
        TicktackController::stop();
        const int before = TestSupport::logLines().size();
        TicktackController::stop();
        const QStringList lines = TestSupport::logLines();
        QCOMPARE(lines.size(), before + 1);
        QVERIFY(
            lines.last().endsWith(QLatin1String(" info org.lulltide.Lulltide : ticktack timer stoped 1.0")));
    }

    void stopKeepsTheLastTextAndTimesUp()
    {
        TicktackState& work = AppState::workState();
        TicktackController::work(2);
        ticks->tick(2);
        QVERIFY(work.timesUp());
        TicktackController::stop();
        QCOMPARE(work.timeString(), "00:00");
        QVERIFY(work.timesUp());
        QVERIFY(!ticks->running());

        TicktackController::work(100);
        ticks->tick(10);
        TicktackController::stop();
        QCOMPARE(work.timeString(), "01:30");
        QVERIFY(!work.timesUp());
    }

    void startingAPeriodStopsTheRunningOneFirst()
    {
        TicktackController::work(100);
        const int before = TestSupport::logLines().size();
        TicktackController::break_(50);
        const QStringList lines = TestSupport::logLines().mid(before);
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.at(0).endsWith(QLatin1String("ticktack timer stoped 1.0")));
        QVERIFY(lines.at(1).endsWith(QLatin1String("ticktack timer start 50.0")));
    }

    // The real one-second timer.
    void realTimerCountsThreeSecondsDownOncePerSecond()
    {
        TicktackController::setTickSource(std::make_unique<QtTickSource>());
        TicktackState& work = AppState::workState();
        QElapsedTimer clock;
        QStringList seen;
        QList<qint64> when;
        connect(&work, &TicktackState::timeStringChanged, this, [&](const QString& text) {
            seen << text;
            when << clock.elapsed();
        });
        clock.start();
        TicktackController::work(3);
        QCOMPARE(work.timeString(), "00:03");
        QTRY_VERIFY_WITH_TIMEOUT(work.timesUp(), 5000);
        disconnect(&work, nullptr, this, nullptr);
        TicktackController::stop();

        QCOMPARE(seen, QStringList({"00:03", "00:02", "00:01", "00:00"}));
        for (int i = 1; i < when.size(); ++i) {
            // A tick a second: no earlier than 0.9 s nor later than 1.5 s after the start's i-th second.
            QVERIFY2(when.at(i) >= i * 1000 - 100 && when.at(i) <= i * 1000 + 500,
                     qPrintable(QString::number(when.at(i))));
        }
    }

    void realTimerGivesEachCountdownAFreshSecond()
    {
        TicktackController::setTickSource(std::make_unique<QtTickSource>());
        TicktackState& work = AppState::workState();
        TicktackController::work(10);
        QTest::qWait(500); // half-way through the first second
        QElapsedTimer clock;
        clock.start();
        TicktackController::work(10);
        QSignalSpy written(&work, &TicktackState::timeStringChanged);
        QVERIFY(written.wait(2000));
        QVERIFY2(clock.elapsed() >= 900, qPrintable(QString::number(clock.elapsed())));
        QCOMPARE(work.timeString(), "00:09");
    }

    void realTimerDoesNotTickWhileStopped()
    {
        TicktackController::setTickSource(std::make_unique<QtTickSource>());
        TicktackState& work = AppState::workState();
        TicktackController::work(10);
        TicktackController::stop();
        QSignalSpy written(&work, &TicktackState::timeStringChanged);
        QVERIFY(!written.wait(1500));
        QCOMPARE(work.timeString(), "00:10");
        QVERIFY(!TicktackController::isRunning());
    }
};

static int childMain(const QByteArray& mode)
{
    if (mode == "format-infinite")
        TicktackController::format(std::numeric_limits<double>::infinity());
    else if (mode == "format-huge")
        TicktackController::format(1e19);
    std::puts("survived");
    return 0;
}

LULLTIDE_TEST_MAIN_WITH_CHILD(TimerTest, childMain)
#include "tst_timer.moc"
