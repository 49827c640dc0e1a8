// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/TestMain.h"

#include "appinfo/AppInfo.h"
#include "break/WindowController.h"
#include "cycle/AppState.h"
#include "preferences/PrefState.h"
#include "settings/SettingsWindow.h"
#include "updates/Appcast.h"
#include "updates/UpdateDialog.h"
#include "updates/Updater.h"

#include <QAccessible>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QNetworkAccessManager>
#include <QPushButton>
#include <QSignalSpy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrlQuery>
#include <memory>

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

// One item of version `version` with the given links and shown version (XML-escaped already).
QByteArray feedWithItem(const QByteArray& downloadUrl, const QByteArray& notesLink,
                        const QByteArray& shortVersion = "1.2.0", const QByteArray& version = "1.2.0")
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
           "<channel><title>Lulltide</title><item><title>Version 1.2.0</title>"
           "<sparkle:version>" +
           version + "</sparkle:version><sparkle:shortVersionString>" + shortVersion +
           "</sparkle:shortVersionString><sparkle:releaseNotesLink>" + notesLink +
           "</sparkle:releaseNotesLink><enclosure url=\"" + downloadUrl +
           "\" length=\"1000\" type=\"application/octet-stream\"/></item></channel></rss>";
}

const QByteArray honestDownload = "https://lulltide.org/download/lulltide_1.2.0.deb";
const QByteArray honestNotes = "https://lulltide.org/release_note/";

// A whole HTTP answer: status, headers and body.
QByteArray answer(const QByteArray& body, int status = 200, const QByteArray& extraHeaders = {})
{
    return "HTTP/1.1 " + QByteArray::number(status) + " X\r\nContent-Type: application/rss+xml\r\n" +
           extraHeaders + "Content-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\n\r\n" + body;
}

// A redirect to `target`.
QByteArray redirectTo(const QByteArray& target)
{
    return answer({}, 302, "Location: " + target + "\r\n");
}

// A feed server on this machine: answers each request with what the test set, or not at all.
// Over plain TCP, or over TLS when given a QSslServer.
class FeedServer : public QObject {
    Q_OBJECT

public:
    QByteArray response;                  // the whole HTTP answer; empty: never answer
    QByteArray streamBody;                // sent after the answer's head, in pieces, without a length
    QHash<QByteArray, QByteArray> routes; // answers by path, before `response`
    QByteArray drip;                      // sent after the answer's head, one byte per dripInterval
    std::chrono::milliseconds dripInterval = std::chrono::milliseconds(500);
    QList<QByteArray> requests;

    explicit FeedServer(QTcpServer* tcpServer = new QTcpServer) : server(tcpServer)
    {
        server->setParent(this);
        server->listen(QHostAddress::LocalHost);
        connect(server, &QTcpServer::pendingConnectionAvailable, this, [this] {
            while (QTcpSocket* socket = server->nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answerOn(socket); });
            }
        });
    }

    QString url(const QString& path = QStringLiteral("/appcast.xml")) const
    {
        const bool tls = qobject_cast<QSslServer*>(server);
        return QStringLiteral("%1://127.0.0.1:%2%3")
            .arg(tls ? "https" : "http")
            .arg(server->serverPort())
            .arg(path);
    }

    void serve(const QByteArray& body, int status = 200, const QByteArray& extraHeaders = {})
    {
        response = answer(body, status, extraHeaders);
        streamBody.clear();
        drip.clear();
        routes.clear();
    }

private:
    void answerOn(QTcpSocket* socket)
    {
        QByteArray& request = pending[socket];
        request += socket->readAll();
        if (!request.contains("\r\n\r\n"))
            return;
        const QByteArray line = request.left(request.indexOf("\r\n"));
        pending.remove(socket);
        requests << line;
        const QByteArray path = line.split(' ').value(1).split('?').value(0);
        const QByteArray reply = routes.value(path, response);
        if (reply.isEmpty())
            return; // hangs
        socket->write(reply);
        if (!drip.isEmpty()) {
            auto* clock = new QTimer(socket);
            auto sent = std::make_shared<qsizetype>(0);
            connect(clock, &QTimer::timeout, socket, [this, socket, sent] {
                if (*sent < drip.size())
                    socket->write(drip.mid((*sent)++, 1));
            });
            clock->start(dripInterval);
            return;
        }
        if (streamBody.isEmpty()) {
            socket->disconnectFromHost();
            return;
        }
        for (qsizetype sent = 0;
             sent < streamBody.size() && socket->state() == QAbstractSocket::ConnectedState; sent += 65536) {
            socket->write(streamBody.mid(sent, 65536));
            socket->waitForBytesWritten(1000);
            QCoreApplication::processEvents();
        }
        socket->disconnectFromHost();
    }

    QTcpServer* server;
    QHash<QTcpSocket*, QByteArray> pending;
};

} // namespace

class UpdaterTest : public QObject {
    Q_OBJECT

    FeedServer* feed = nullptr;
    FeedServer* tlsFeed = nullptr; // HTTPS with a certificate only this test program trusts
    QTemporaryDir certificates;
    // A stand-in xdg-open, first on PATH for the whole program (Qt looks for the browser once and
    // keeps what it found), that adds every link it is asked to open to this record.
    QTemporaryDir tools;
    QString opened;

    // A self-signed certificate for 127.0.0.1, made now, and a TLS server that uses it. Only
    // this program's own default TLS configuration is told to trust it.
    FeedServer* makeTlsFeedServer()
    {
        QProcess openssl;
        openssl.setWorkingDirectory(certificates.path());
        openssl.start("openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                                  "-nodes", "-keyout", "key.pem", "-out", "cert.pem", "-days", "2", "-subj",
                                  "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1,DNS:localhost"});
        if (!openssl.waitForFinished(60000) || openssl.exitCode() != 0)
            qFatal("openssl could not make a certificate: %s", openssl.readAllStandardError().constData());
        QFile certificateFile(certificates.filePath("cert.pem"));
        QFile keyFile(certificates.filePath("key.pem"));
        if (!certificateFile.open(QIODevice::ReadOnly) || !keyFile.open(QIODevice::ReadOnly))
            qFatal("the certificate files cannot be read");
        const QSslCertificate certificate(&certificateFile, QSsl::Pem);
        const QSslKey key(&keyFile, QSsl::Ec, QSsl::Pem);

        QSslConfiguration client = QSslConfiguration::defaultConfiguration();
        client.addCaCertificate(certificate);
        QSslConfiguration::setDefaultConfiguration(client);

        auto* server = new QSslServer;
        QSslConfiguration serving = QSslConfiguration::defaultConfiguration();
        serving.setLocalCertificate(certificate);
        serving.setPrivateKey(key);
        serving.setPeerVerifyMode(QSslSocket::VerifyNone);
        server->setSslConfiguration(serving);
        return new FeedServer(server);
    }

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
            done.wait(20000);
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

    // What a person reads in a label, as a screen reader tells it: rich text loses its tags.
    static QString shownText(UpdateDialog* dialog, const char* name)
    {
        QAccessibleInterface* label = QAccessible::queryAccessibleInterface(dialog->findChild<QLabel*>(name));
        return label ? label->text(QAccessible::Name) : QString();
    }

private slots:
    void initTestCase()
    {
        qRegisterMetaType<AppcastItem>();
        qRegisterMetaType<Updater::Outcome>();
        opened = tools.filePath("opened");
        QFile standIn(tools.filePath("xdg-open"));
        QVERIFY(standIn.open(QIODevice::WriteOnly));
        standIn.write("#!/bin/sh\nfor a in \"$@\"; do printf '%s\\0' \"$a\"; done >>'" + opened.toUtf8() +
                      "'\n");
        standIn.close();
        standIn.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", tools.path().toUtf8() + ":" + qgetenv("PATH"));

        feed = new FeedServer;
        tlsFeed = makeTlsFeedServer();
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
    }

    void cleanupTestCase()
    {
        delete feed;
        delete tlsFeed;
    }

    void init()
    {
        feed->requests.clear();
        feed->routes.clear();
        feed->drip.clear();
        feed->streamBody.clear();
    }

    void noAutomaticCheckWhenTheSettingWasOffAtLaunchNorAfterALaterChange()
    {
        Updater::setFirstCheckDelay(50ms);
        AppState::prefState().setAutoCheckUpdate(false);
        SettingsWindow::setup(); // the launch reads the setting here
        QVERIFY(!SettingsWindow::updater().automaticallyChecks());
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
        QFile::remove(opened);
        feed->serve(feedOf({"1.2.0"}));
        Updater updater(false);
        QCOMPARE(check(updater).outcome, Updater::Outcome::UpdateAvailable);
        updater.dialog()->findChild<QPushButton*>("downloadButton")->click();
        QTRY_COMPARE(TestSupport::recordedArguments(opened),
                     QStringList{"https://lulltide.org/download/lulltide_1.2.0.deb"});
        QVERIFY(!updater.dialog()->isVisible());
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

    void nothingOfTheNetworkStaysAfterACheckEnds_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("up to date") << 200;
        QTest::newRow("failed") << 404;
    }

    // Twice a day a check needs the network for a few seconds; between checks neither its
    // access manager nor its thread stays.
    void nothingOfTheNetworkStaysAfterACheckEnds()
    {
        QFETCH(int, status);
        feed->serve(feedOf({"1.0.0"}), status);
        Updater updater(false);
        QSignalSpy done(&updater, &Updater::checked);
        const qsizetype threadsBefore =
            QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
        for (int round = 0; round < 2; ++round) {
            updater.checkInBackground();
            QCOMPARE(updater.findChildren<QNetworkAccessManager*>().size(), 1);
            QVERIFY(done.wait(5000));
            QCOMPARE(done.takeFirst().at(0).value<Updater::Outcome>(),
                     status == 200 ? Updater::Outcome::UpToDate : Updater::Outcome::Failed);
            QTRY_VERIFY(updater.findChildren<QNetworkAccessManager*>().isEmpty());
            // No more threads than before: an earlier test's may end meanwhile; none of the check's stays.
            QTRY_VERIFY(QDir("/proc/self/task").entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() <=
                        threadsBefore);
        }
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

    void feedLinksThatAreNotHttpsMakeTheItemInvalid_data()
    {
        QTest::addColumn<QByteArray>("download");
        QTest::addColumn<QByteArray>("notes");
        QTest::addColumn<QString>("error");
        const QString badDownload = "the feed's download link is not an https address";
        const QString badNotes = "the feed's release notes link is not an https address";
        QTest::newRow("download: file") << QByteArray("file:///etc/passwd") << honestNotes << badDownload;
        QTest::newRow("download: javascript")
            << QByteArray("javascript:alert(1)") << honestNotes << badDownload;
        QTest::newRow("download: absolute path")
            << QByteArray("/usr/bin/xterm") << honestNotes << badDownload;
        QTest::newRow("download: relative path") << QByteArray("lulltide.deb") << honestNotes << badDownload;
        QTest::newRow("download: plain http")
            << QByteArray("http://lulltide.org/lulltide.deb") << honestNotes << badDownload;
        QTest::newRow("download: no host")
            << QByteArray("https:///lulltide.deb") << honestNotes << badDownload;
        QTest::newRow("notes: file") << honestDownload << QByteArray("file:///etc/passwd") << badNotes;
        QTest::newRow("notes: javascript") << honestDownload << QByteArray("javascript:alert(1)") << badNotes;
        QTest::newRow("notes: absolute path") << honestDownload << QByteArray("/usr/bin/xterm") << badNotes;
        QTest::newRow("notes: relative path") << honestDownload << QByteArray("release_note/") << badNotes;
    }
    void feedLinksThatAreNotHttpsMakeTheItemInvalid()
    {
        QFETCH(QByteArray, download);
        QFETCH(QByteArray, notes);
        QFETCH(QString, error);
        feed->serve(feedWithItem(download, notes));
        Updater updater(false);
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QCOMPARE(result.error, error);
        QVERIFY(updater.dialog()->isVisible());
        QVERIFY(!updater.dialog()->findChild<QPushButton*>("downloadButton")->isVisible());
        QVERIFY(!updater.dialog()->findChild<QLabel*>("updateNotesLink")->isVisible());
        updater.dialog()->hide();
    }

    void theDownloadButtonOpensOnlyHttpsLinks()
    {
        QFile::remove(opened);
        UpdateDialog dialog;
        auto* download = dialog.findChild<QPushButton*>("downloadButton");
        AppcastItem hostile{"1.2.0", "1.2.0", {}, "javascript:alert(1)", {}, "file:///etc/passwd"};
        dialog.showUpdate(hostile);
        QVERIFY(!download->isVisible());
        QVERIFY(!dialog.findChild<QLabel*>("updateNotesLink")->isVisible());
        download->click(); // pressed anyway: nothing may open
        AppcastItem honest{"1.2.0", "1.2.0", {}, QString(honestNotes), {}, QString(honestDownload)};
        dialog.showUpdate(honest);
        download->click(); // what this opens proves the one before it opened nothing
        QTRY_COMPARE(TestSupport::recordedArguments(opened), QStringList{QString(honestDownload)});
    }

    void feedTextsAreShownAsPlainText()
    {
        feed->serve(feedWithItem(
            honestDownload, honestNotes,
            "&lt;h1&gt;Big&lt;/h1&gt;&lt;img src=file:///usr/share/pixmaps/debian-logo.png&gt;"));
        Updater updater(false);
        QCOMPARE(check(updater).outcome, Updater::Outcome::UpdateAvailable);
        UpdateDialog* dialog = updater.dialog();
        QVERIFY2(
            shownText(dialog, "updateMessage")
                .contains("<h1>Big</h1><img src=file:///usr/share/pixmaps/debian-logo.png> is now available"),
            qPrintable(shownText(dialog, "updateMessage")));

        // An error that quotes the feed shows the quote as it came.
        feed->serve(feedWithItem(honestDownload, honestNotes, "1.2.0", "&lt;h1&gt;9&lt;/h1&gt;"));
        QCOMPARE(check(updater).outcome, Updater::Outcome::Failed);
        QVERIFY2(shownText(dialog, "updateMessage").contains("no version: <h1>9</h1>"),
                 qPrintable(shownText(dialog, "updateMessage")));
        dialog->hide();
    }

    void aServerThatDripsABytePerHalfSecondIsGivenUpAtTheWholeCheckLimit()
    {
        // The head at once, then one byte of the body every half second: never idle, never done.
        const QByteArray body = feedOf({"1.0.0"});
        feed->response = "HTTP/1.1 200 OK\r\nContent-Type: application/rss+xml\r\nContent-Length: " +
                         QByteArray::number(body.size()) + "\r\n\r\n";
        feed->drip = body;
        feed->dripInterval = 500ms;
        Updater updater(false);
        updater.setTimeout(2s);
        QElapsedTimer clock;
        clock.start();
        const Check result = check(updater);
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("did not answer in time (2 s)"), qPrintable(result.error));
        QVERIFY(clock.elapsed() >= 1900);
        QVERIFY2(clock.elapsed() < 15000, qPrintable(QString::number(clock.elapsed())));
        updater.dialog()->hide();
    }

    void aFeedIsFollowedThroughUpToFiveRedirects_data()
    {
        QTest::addColumn<int>("hops");
        for (int hops = 1; hops <= 6; ++hops)
            QTest::addRow("%d hops", hops) << hops;
    }
    void aFeedIsFollowedThroughUpToFiveRedirects()
    {
        QFETCH(int, hops);
        feed->serve(feedOf({"1.2.0"}));
        // Relative and absolute addresses by turns.
        for (int hop = 1; hop <= hops; ++hop) {
            const QString next = hop == hops ? "/appcast.xml" : QStringLiteral("/hop%1").arg(hop + 1);
            feed->routes["/hop" + QByteArray::number(hop)] =
                redirectTo(hop % 2 ? next.toUtf8() : feed->url(next).toUtf8());
        }
        qputenv("LULLTIDE_FEED_URL", feed->url("/hop1").toUtf8());
        Updater updater(false);
        const Check result = check(updater);
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
        if (hops <= 5) {
            QCOMPARE(result.outcome, Updater::Outcome::UpdateAvailable);
            QCOMPARE(result.update.version, "1.2.0");
            QCOMPARE(feed->requests.size(), hops + 1);
        } else {
            QCOMPARE(result.outcome, Updater::Outcome::Failed);
            QVERIFY2(result.error.contains("too many redirects"), qPrintable(result.error));
            QCOMPARE(feed->requests.size(), 6);
        }
        updater.dialog()->hide();
    }

    void aRedirectLoopEndsWithTooManyRedirects()
    {
        feed->serve(feedOf({"1.2.0"}));
        feed->routes["/loop"] = redirectTo("/loop");
        qputenv("LULLTIDE_FEED_URL", feed->url("/loop").toUtf8());
        Updater updater(false);
        const Check result = check(updater);
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("too many redirects"), qPrintable(result.error));
        updater.dialog()->hide();
    }

    void anHttpsFeedIsReadDirectlyAndBehindARedirect()
    {
        tlsFeed->serve(feedOf({"1.2.0"}));
        tlsFeed->routes["/hop"] = redirectTo(tlsFeed->url().toUtf8());
        Updater updater(false);
        for (const QString& address : {tlsFeed->url(), tlsFeed->url("/hop")}) {
            qputenv("LULLTIDE_FEED_URL", address.toUtf8());
            const Check result = check(updater);
            QCOMPARE(result.outcome, Updater::Outcome::UpdateAvailable);
        }
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
        QCOMPARE(tlsFeed->requests.size(), 3);
        updater.dialog()->hide();
    }

    void anHttpsFeedThatRedirectsToPlainHttpIsRefused_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<int>("hopsBefore"); // https hops before the one to plain HTTP
        QTest::newRow("127.0.0.1") << "127.0.0.1" << 0;
        QTest::newRow("localhost") << "localhost" << 0;
        QTest::newRow("127.0.0.1 after two https hops") << "127.0.0.1" << 2;
    }
    void anHttpsFeedThatRedirectsToPlainHttpIsRefused()
    {
        QFETCH(QString, host);
        QFETCH(int, hopsBefore);
        feed->serve(feedOf({"1.2.0"}));
        QUrl plain(feed->url());
        plain.setHost(host);
        tlsFeed->requests.clear();
        tlsFeed->serve({});
        tlsFeed->response = redirectTo(plain.toString().toUtf8());
        for (int hop = 1; hop <= hopsBefore; ++hop)
            tlsFeed->routes["/hop" + QByteArray::number(hop)] =
                redirectTo(hop == hopsBefore ? "/appcast.xml" : "/hop" + QByteArray::number(hop + 1));
        qputenv("LULLTIDE_FEED_URL", tlsFeed->url(hopsBefore ? "/hop1" : "/appcast.xml").toUtf8());
        Updater updater(false);
        const Check result = check(updater);
        qputenv("LULLTIDE_FEED_URL", feed->url().toUtf8());
        QCOMPARE(result.outcome, Updater::Outcome::Failed);
        QVERIFY2(result.error.contains("not HTTPS"), qPrintable(result.error));
        QCOMPARE(tlsFeed->requests.size(), hopsBefore + 1);
        QVERIFY(feed->requests.isEmpty());
        updater.dialog()->hide();
    }

    void aVersionWithATrailingNewlineIsNoVersion()
    {
        QCOMPARE(Appcast::compareVersions("2.0\n", "1.0"), std::nullopt);
        QByteArray text = feedOf({"2.0"});
        text.replace("<sparkle:version>2.0</sparkle:version>", "");
        text.replace("sparkle:version=\"2.0\"", "sparkle:version=\"2.0&#10;\"");
        QVERIFY2(Appcast::parse(text).error.startsWith("the feed names a version that is no version"),
                 qPrintable(Appcast::parse(text).error));
    }

    void everyTextAndAttributeOfTheFeedIsLimitedToFourKibibytes_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        const QByteArray longText(5000, 'x');
        QTest::newRow("channel description")
            << QByteArray("<channel>") << "<channel><description>" + longText + "</description>";
        QTest::newRow("item description")
            << QByteArray("<item>") << "<item><description>" + longText + "</description>";
        QTest::newRow("text after the channel") << QByteArray("</channel>") << "</channel>" + longText;
        QTest::newRow("comment") << QByteArray("<channel>") << "<channel><!--" + longText + "-->";
        QTest::newRow("channel attribute") << QByteArray("<channel>") << "<channel x=\"" + longText + "\">";
    }
    void everyTextAndAttributeOfTheFeedIsLimitedToFourKibibytes()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QByteArray text = feedOf({"2.0"});
        QVERIFY(text.contains(from));
        text.replace(from, to);
        QVERIFY2(Appcast::parse(text).error.contains("far too long"), qPrintable(Appcast::parse(text).error));
        // Up to the limit is fine.
        QByteArray fits = feedOf({"2.0"});
        fits.replace(from, QByteArray(to).replace(QByteArray(5000, 'x'), QByteArray(4096, 'x')));
        QCOMPARE(Appcast::parse(fits).error, QString());
    }

    void aVersionThatIsNotDottedNumbersFailsAtConfigure()
    {
        QTemporaryDir build;
        const QString source = QStringLiteral(TESTS_SOURCE_DIR "/..");
        QProcess cmake;
        cmake.setProcessChannelMode(QProcess::MergedChannels);
        cmake.start("cmake",
                    {"-S", source, "-B", build.path(), "-G", "Ninja", "-DLULLTIDE_VERSION=1.0.0-rc1"});
        QVERIFY(cmake.waitForFinished(300000));
        const QString output = QString::fromUtf8(cmake.readAll()).simplified();
        QVERIFY2(cmake.exitCode() != 0, qPrintable(output));
        QVERIFY2(output.contains("LULLTIDE_VERSION must be dotted numbers such as 1.2.0, not \"1.0.0-rc1\""),
                 qPrintable(output));
    }

    void closingTheDialogWhileCheckingCancelsTheCheck_data()
    {
        QTest::addColumn<bool>("escape");
        QTest::newRow("Esc") << true;
        QTest::newRow("the window's close button") << false;
    }
    void closingTheDialogWhileCheckingCancelsTheCheck()
    {
        QFETCH(bool, escape);
        feed->response.clear(); // no answer comes while the check runs
        Updater updater(false);
        updater.setTimeout(3s); // were it not cancelled, the verdict would come after this
        QSignalSpy done(&updater, &Updater::checked);
        updater.checkForUpdates();
        UpdateDialog* dialog = updater.dialog();
        QVERIFY(QTest::qWaitForWindowExposed(dialog));
        QTRY_COMPARE_WITH_TIMEOUT(feed->requests.size(), 1, 10000);
        if (escape)
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            dialog->close(); // what the window manager's close button asks for
        QVERIFY(!done.isEmpty() || done.wait(20000));
        QCOMPARE(done.first().at(2).toString(), "the check was cancelled");
        QVERIFY(!dialog->isVisible());

        // Later checks of its own go on, and the cancelled one never comes back.
        feed->serve(feedOf({"1.0.0"}));
        updater.checkInBackground();
        QVERIFY(done.wait(20000));
        QCOMPARE(done.size(), 2);
        QCOMPARE(done.last().at(0).value<Updater::Outcome>(), Updater::Outcome::UpToDate);
        QVERIFY(!dialog->isVisible());
    }
};

LULLTIDE_TEST_MAIN(UpdaterTest)

#include "tst_updater.moc"
