#include "support/TestMain.h"

#include "app/AppState.h"
#include "break/WindowController.h"
#include "preferences/PrefState.h"
#include "statusbar/AppInfo.h"
#include "statusbar/Appcast.h"
#include "statusbar/UpdateDialog.h"
#include "statusbar/Updater.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrlQuery>

using namespace std::chrono_literals;

namespace {

QByteArray feedOf(const QList<QByteArray>& versions)
{
    QByteArray items;
    for (const QByteArray& version : versions) {
        items += "<item><title>Version " + version +
                 "</title>"
                 "<sparkle:version>" +
                 version +
                 "</sparkle:version>"
                 "<sparkle:shortVersionString>" +
                 version +
                 "</sparkle:shortVersionString>"
                 "<sparkle:releaseNotesLink>https://lulltide.org/release_note/" +
                 version +
                 "</sparkle:releaseNotesLink>"
                 "<enclosure url=\"https://lulltide.org/download/lulltide_" +
                 version + ".deb\" sparkle:version=\"" + version +
                 "\" length=\"1000\" type=\"application/octet-stream\"/>"
                 "</item>";
    }
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
           "<channel><title>Lulltide</title>" +
           items + "</channel></rss>";
}

// A feed server on this machine: answers each request with what the test set, or not at all.
class FeedServer : public QObject {
    Q_OBJECT

public:
    QByteArray response;   // the whole HTTP answer; empty: never answer
    QByteArray streamBody; // sent after the answer's head, in pieces, without a length
    QList<QByteArray> requests;

    FeedServer()
    {
        server.listen(QHostAddress::LocalHost);
        connect(&server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    QByteArray& request = pending[socket];
                    request += socket->readAll();
                    if (!request.contains("\r\n\r\n"))
                        return;
                    requests << request.left(request.indexOf("\r\n"));
                    if (response.isEmpty())
                        return; // hangs
                    socket->write(response);
                    if (streamBody.isEmpty()) {
                        socket->disconnectFromHost();
                        return;
                    }
                    for (qsizetype sent = 0;
                         sent < streamBody.size() && socket->state() == QAbstractSocket::ConnectedState;
                         sent += 65536) {
                        socket->write(streamBody.mid(sent, 65536));
                        socket->waitForBytesWritten(1000);
                        QCoreApplication::processEvents();
                    }
                    socket->disconnectFromHost();
                });
            }
        });
    }

    QString url(const QString& path = QStringLiteral("/appcast.xml")) const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(server.serverPort()).arg(path);
    }

    void serve(const QByteArray& body, int status = 200, const QByteArray& extraHeaders = {})
    {
        response = "HTTP/1.1 " + QByteArray::number(status) + " X\r\nContent-Type: application/rss+xml\r\n" +
                   extraHeaders + "Content-Length: " + QByteArray::number(body.size()) +
                   "\r\nConnection: close\r\n\r\n" + body;
        streamBody.clear();
    }

private:
    QTcpServer server;
    QHash<QTcpSocket*, QByteArray> pending;
};

} // namespace

class UpdaterTest : public QObject {
    Q_OBJECT

    FeedServer* feed = nullptr;

    struct Check {
        Updater::Outcome outcome = Updater::Outcome::Failed;
        AppcastItem update;
        QString error;
    };

    // Runs a check the user asked for and waits for its end.
    Check check(Updater& updater)
    {
        QSignalSpy done(&updater, &Updater::checked);
        updater.checkForUpdates();
        if (done.isEmpty())
            done.wait(10000);
        Check result;
        if (done.isEmpty())
            return result;
        result.outcome = done.first().at(0).value<Updater::Outcome>();
        result.update = done.first().at(1).value<AppcastItem>();
        result.error = done.first().at(2).toString();
        return result;
    }

    static QString text(UpdateDialog* dialog, const char* name)
    {
        return dialog->findChild<QLabel*>(name)->text();
    }

private slots:
    void initTestCase()
    {
        qRegisterMetaType<AppcastItem>();
        qRegisterMetaType<Updater::Outcome>();
        feed = new FeedServer;
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
    }

    void cleanupTestCase() { delete feed; }

    void init() { feed->requests.clear(); }

    void noAutomaticCheckWhenTheSettingWasOffAtLaunchNorAfterALaterChange()
    {
        Updater::setFirstCheckDelay(50ms);
        AppState::prefState().setAutoCheckUpdate(false);
        WindowController::setup(); // the launch reads the setting here
        QVERIFY(!WindowController::updater().automaticallyChecks());
        AppState::prefState().setAutoCheckUpdate(true);
        QTest::qWait(600);
        QVERIFY(feed->requests.isEmpty());
    }

    void automaticChecksStayQuietUntilANewVersionAndShowItOnce()
    {
        Updater::setFirstCheckDelay(50ms);
        feed->serve(feedOf({"1.0.0"}));
        Updater updater(true);
        QVERIFY(updater.automaticallyChecks());
        QSignalSpy done(&updater, &Updater::checked);
        QVERIFY(done.wait(5000)); // the first check comes shortly after start
        QCOMPARE(done.first().at(0).value<Updater::Outcome>(), Updater::Outcome::UpToDate);
        QVERIFY(!updater.dialog() || !updater.dialog()->isVisible());

        feed->serve(feedOf({"1.2.0"}));
        updater.checkInBackground();
        QVERIFY(done.wait(5000));
        QTRY_VERIFY(updater.dialog() && updater.dialog()->isVisible());
        QCOMPARE(text(updater.dialog(), "updateHeadline"), "A new version of Lulltide is available!");
        updater.dialog()->hide();

        updater.checkInBackground(); // the same version again: not told twice
        QVERIFY(done.wait(5000));
        QTest::qWait(100);
        QVERIFY(!updater.dialog()->isVisible());
    }

    void checksRecurEveryTwelveHours() { QCOMPARE(Updater::checkInterval, std::chrono::seconds(43200)); }

    void aNewerVersionIsShownWithBothVersionsReleaseNotesAndDownload()
    {
        feed->serve(feedOf({"0.9.0", "1.2.0", "1.10.1", "1.3"}));
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::UpdateAvailable);
        QCOMPARE(result.update.version, "1.10.1"); // numbers, not letters: 10 > 3
        UpdateDialog* dialog = updater.dialog();
        QTRY_VERIFY(dialog->isVisible());
        QCOMPARE(text(dialog, "updateHeadline"), "A new version of Lulltide is available!");
        QVERIFY(text(dialog, "updateMessage").contains("1.10.1"));
        QVERIFY(text(dialog, "updateMessage").contains("you have 1.0.0"));
        QVERIFY(text(dialog, "updateNotesLink").contains("https://lulltide.org/release_note/1.10.1"));
        QVERIFY(dialog->findChild<QPushButton*>("downloadButton")->isVisible());
        QCOMPARE(dialog->downloadUrl(), QUrl("https://lulltide.org/download/lulltide_1.10.1.deb"));
        dialog->hide();
    }

    void downloadOpensThePackageInTheBrowser()
    {
        // A stand-in xdg-open first on PATH records what it is asked to open.
        QTemporaryDir tools;
        const QString record = TestSupport::writeStandInTool(tools.path(), "xdg-open");
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", tools.path().toUtf8() + ":" + path);

        feed->serve(feedOf({"1.2.0"}));
        Updater updater(false);
        QCOMPARE(check(updater).outcome, Updater::Outcome::UpdateAvailable);
        updater.dialog()->findChild<QPushButton*>("downloadButton")->click();
        QTRY_COMPARE(TestSupport::recordedArguments(record),
                     QStringList{"https://lulltide.org/download/lulltide_1.2.0.deb"});
        QVERIFY(!updater.dialog()->isVisible());
        qputenv("PATH", path);
    }

    void theSameVersionIsUpToDate()
    {
        feed->serve(feedOf({"1.0.0"}));
        Updater updater(false);
        QCOMPARE(check(updater).outcome, Updater::Outcome::UpToDate);
        QCOMPARE(text(updater.dialog(), "updateHeadline"), "You're up to date!");
        QVERIFY(text(updater.dialog(), "updateMessage").contains("Lulltide 1.0.0"));
        updater.dialog()->hide();
    }

    void onlyOlderVersionsAreUpToDate()
    {
        feed->serve(feedOf({"0.1", "0.9.9"}));
        Updater updater(false);
        QCOMPARE(check(updater).outcome, Updater::Outcome::UpToDate);
        updater.dialog()->hide();
    }

    void aMalformedFeedIsRejectedWithAMessage()
    {
        feed->serve("<rss version=\"2.0\"><channel><item><title>unclosed");
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("not well-formed"), qPrintable(result.error));
        QCOMPARE(text(updater.dialog(), "updateHeadline"), "Lulltide could not check for updates.");
        QVERIFY(text(updater.dialog(), "updateMessage").startsWith("The feed is not well-formed XML"));
        updater.dialog()->hide();
    }

    void anEntityBombIsRejected()
    {
        QByteArray bomb = "<?xml version=\"1.0\"?>\n<!DOCTYPE rss [<!ENTITY a \"aaaaaaaaaa\">";
        for (int level = 1; level < 10; ++level)
            bomb += "<!ENTITY " + QByteArray(1, char('a' + level)) + " \"" + QByteArray("&") +
                    char('a' + level - 1) + ";" + QByteArray("&") + char('a' + level - 1) + ";\">";
        bomb += "]><rss version=\"2.0\"><channel><item><title>&j;</title></item></channel></rss>";
        feed->serve(bomb);
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("document type"), qPrintable(result.error));
        updater.dialog()->hide();
    }

    void nonsenseVersionsAndHugeAttributesAreRejected()
    {
        QCOMPARE(Appcast::parse(feedOf({"1.0.0-beta"})).error,
                 "the feed names a version that is no version: 1.0.0-beta");
        QByteArray huge = feedOf({"2.0"});
        huge.replace("length=\"1000\"", "length=\"" + QByteArray(100000, '9') + "\"");
        QVERIFY(Appcast::parse(huge).error.contains("attribute far too long"));
        QVERIFY(Appcast::parse("<html><body>hello</body></html>").error.contains("no RSS feed"));
    }

    void versionsCompareNumberByNumber_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<int>("order");
        QTest::newRow("equal") << "1.0.0"
                               << "1.0" << 0;
        QTest::newRow("ten after nine") << "1.10"
                                        << "1.9" << 1;
        QTest::newRow("older") << "0.9.9"
                               << "1.0" << -1;
        QTest::newRow("longer") << "1.0.1"
                                << "1.0" << 1;
    }
    void versionsCompareNumberByNumber()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(int, order);
        QCOMPARE(Appcast::compareVersions(a, b), order);
        QCOMPARE(Appcast::compareVersions("1.x", b), std::nullopt);
    }

    void http404IsToldInPlainWords()
    {
        feed->serve("not here", 404);
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("HTTP 404"), qPrintable(result.error));
        updater.dialog()->hide();
    }

    void aRedirectToPlainHttpIsRefused()
    {
        feed->serve("", 302, "Location: http://updates.example/appcast.xml\r\n");
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("not HTTPS"), qPrintable(result.error));
        QCOMPARE(feed->requests.size(), 1);
        updater.dialog()->hide();
    }

    void aFeedAddressThatIsNotHttpsIsRefusedWithoutConnecting()
    {
        qputenv("LULLTIDE_FEED_URL", "http://updates.example/appcast.xml");
        Updater updater(false);
        const Check result = check(updater);
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("not HTTPS"), qPrintable(result.error));
        QVERIFY(feed->requests.isEmpty());
        updater.dialog()->hide();
    }

    void aBodyOverOneMebibyteIsRefused()
    {
        feed->serve(QByteArray(qsizetype(2) * 1024 * 1024, 'x'));
        Updater updater(false);
        Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("larger than 1 MiB"), qPrintable(result.error));

        // Without a length told beforehand, too: reading stops past 1 MiB.
        feed->response = "HTTP/1.1 200 OK\r\nContent-Type: application/rss+xml\r\nConnection: close\r\n\r\n";
        feed->streamBody = QByteArray(qsizetype(2) * 1024 * 1024, 'x');
        result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("larger than 1 MiB"), qPrintable(result.error));
        updater.dialog()->hide();
    }

    void aServerThatNeverAnswersTimesOut()
    {
        feed->response.clear();
        Updater updater(false);
        updater.setTimeout(500ms);
        QElapsedTimer clock;
        clock.start();
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("did not answer in time"), qPrintable(result.error));
        QVERIFY(clock.elapsed() < 5000);
        updater.dialog()->hide();
    }

    void theDefaultTimeoutIsThirtySeconds()
    {
        Updater updater(false);
        QCOMPARE(updater.timeout(), 30s);
    }

    void theSystemProfileGoesWithEveryCheck()
    {
        feed->serve(feedOf({"1.0.0"}));
        Updater updater(false);
        check(updater);
        QCOMPARE(feed->requests.size(), 1);
        const QByteArray line = feed->requests.first(); // GET /appcast.xml?… HTTP/1.1
        const QUrlQuery query(QUrl(QString::fromUtf8(line.split(' ').value(1))));
        QCOMPARE(query.queryItemValue("appVersion"), "1.0.0");
        QCOMPARE(query.queryItemValue("osVersion"), AppInfo::osVersion());
        QCOMPARE(query.queryItemValue("cpuArch"), AppInfo::model());
        QCOMPARE(query.queryItemValue("lang"), QLocale().name());
        updater.dialog()->hide();
    }

    void theFeedComesFromTheEnvironmentWhenSet()
    {
        QCOMPARE(Updater::feedUrl(), QUrl(feed->url()));
        const QByteArray saved = qgetenv("LULLTIDE_FEED_URL");
        qunsetenv("LULLTIDE_FEED_URL");
        QCOMPARE(Updater::feedUrl(), QUrl("https://lulltide.org/appcast.xml"));
        qputenv("LULLTIDE_FEED_URL", saved);
    }

    void aUserCheckShowsProgressFirst()
    {
        feed->response.clear(); // the answer does not come while we look
        Updater updater(false);
        updater.checkForUpdates();
        QTRY_VERIFY(updater.dialog()->isVisible());
        QCOMPARE(text(updater.dialog(), "updateHeadline"), "Checking for updates…");
        QSignalSpy done(&updater, &Updater::checked);
        updater.dialog()->findChild<QPushButton*>("cancelButton")->click();
        QVERIFY(!done.isEmpty() || done.wait(5000)); // cancelled: the check ends, nothing hangs
        QCOMPARE(done.first().at(2).toString(), "the check was cancelled");
        QVERIFY(!updater.dialog()->isVisible());
        updater.dialog()->hide();
    }
};

LULLTIDE_TEST_MAIN(UpdaterTest)

#include "tst_updater.moc"
