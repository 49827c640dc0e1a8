// SPDX-License-Identifier: GPL-3.0-or-later
#include "Updater.h"

#include "Config.h"
#include "UpdateDialog.h"
#include "appinfo/AppInfo.h"
#include "logging/Logger.h"

#include <QHostAddress>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSysInfo>
#include <QTimer>
#include <QUrlQuery>
#include <utility>

namespace {

constexpr qint64 largestFeed = qint64(1024) * 1024;
std::chrono::milliseconds firstCheckDelay = std::chrono::seconds(60);

bool isLoopback(const QUrl& url)
{
    if (url.host() == QLatin1String("localhost"))
        return true;
    const QHostAddress address(url.host());
    return !address.isNull() && address.isLoopback();
}

// HTTPS, or plain HTTP to this machine itself when that is allowed.
bool mayFetch(const QUrl& url, bool plainHttpToLoopback)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    if (url.scheme() == QLatin1String("https"))
        return true;
    return plainHttpToLoopback && url.scheme() == QLatin1String("http") && isLoopback(url);
}

QString secondsText(std::chrono::milliseconds duration)
{
    return QLocale().toString(double(duration.count()) / 1000.0, 'g', 4);
}

QString plainWords(QNetworkReply* reply)
{
    switch (reply->error()) {
    case QNetworkReply::OperationCanceledError:
    case QNetworkReply::TimeoutError:
        return Updater::tr("the update server did not answer in time");
    case QNetworkReply::HostNotFoundError:
        return Updater::tr("the update server could not be found; are you online?");
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::RemoteHostClosedError:
        return Updater::tr("the update server refused the connection");
    case QNetworkReply::SslHandshakeFailedError:
        return Updater::tr("the update server's certificate could not be trusted");
    case QNetworkReply::ContentNotFoundError:
        return Updater::tr("the update feed was not found on the server (HTTP 404)");
    default:
        break;
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status >= 400)
        return Updater::tr("the update server answered with an error (HTTP %1)").arg(status);
    return Updater::tr("the update feed could not be fetched: ") + reply->errorString();
}

} // namespace

Updater::Updater(bool automaticChecks, QObject* parent) : QObject(parent), m_automatic(automaticChecks)
{
    if (!m_automatic)
        return;
    m_schedule = new QTimer(this);
    m_schedule->setSingleShot(true);
    connect(m_schedule, &QTimer::timeout, this, [this] {
        checkInBackground();
        m_schedule->start(checkInterval);
    });
    m_schedule->start(firstCheckDelay);
}

void Updater::setFirstCheckDelay(std::chrono::milliseconds delay)
{
    firstCheckDelay = delay;
}

QUrl Updater::feedUrl()
{
    const QByteArray override = qgetenv("LULLTIDE_FEED_URL");
    return QUrl(override.isEmpty() ? QString::fromUtf8(Config::feedUrl) : QString::fromUtf8(override));
}

QUrl Updater::requestUrl(const QUrl& feed)
{
    QUrl url = feed;
    QUrlQuery query(url);
    query.addQueryItem(QStringLiteral("appVersion"), AppInfo::version());
    query.addQueryItem(QStringLiteral("appBuild"), AppInfo::build());
    query.addQueryItem(QStringLiteral("osVersion"), AppInfo::osVersion());
    query.addQueryItem(QStringLiteral("cpuArch"), AppInfo::model());
    query.addQueryItem(QStringLiteral("lang"), QLocale().name());
    url.setQuery(query);
    return url;
}

// The dialog is a window of its own, not a child: it goes with the updater.
Updater::~Updater()
{
    delete m_dialog;
}

void Updater::checkForUpdates()
{
    showDialog().showChecking();
    start(true);
}

void Updater::checkInBackground()
{
    start(false);
}

UpdateDialog& Updater::showDialog()
{
    if (!m_dialog) {
        m_dialog = new UpdateDialog;
        connect(m_dialog, &UpdateDialog::cancelled, this, &Updater::cancel);
    }
    return *m_dialog;
}

void Updater::start(bool userInitiated)
{
    if (m_running) {
        m_userInitiated = m_userInitiated || userInitiated;
        return;
    }
    const QUrl feed = feedUrl();
    if (!feed.isValid() || feed.host().isEmpty()) {
        report(userInitiated, Outcome::Failed, {}, Updater::tr("the feed address is invalid"));
        return;
    }
    if (!mayFetch(feed, true)) {
        report(userInitiated, Outcome::Failed, {},
               Updater::tr("the feed address %1 is not HTTPS").arg(feed.toDisplayString()));
        return;
    }
    // Made for each check, not at start: twice a day a check needs it for a few seconds.
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    if (!m_deadline) {
        m_deadline = new QTimer(this);
        m_deadline->setSingleShot(true);
        connect(m_deadline, &QTimer::timeout, this, [this] {
            conclude(
                Outcome::Failed, {},
                Updater::tr("the update server did not answer in time (%1 s)").arg(secondsText(m_timeout)));
        });
    }
    m_userInitiated = userInitiated;
    m_redirects = 0;
    m_plainHttpToLoopback = feed.scheme() == QLatin1String("http");
    // One limit for the whole check, redirects included: a server that keeps sending a byte now
    // and then must not hold this check, and every later one, for ever.
    m_deadline->start(m_timeout);
    fetch(requestUrl(feed));
}

void Updater::fetch(const QUrl& url)
{
    QNetworkRequest request(url);
    // Redirects are followed here, one by one, so that each target is checked before we go.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("%1/%2").arg(AppInfo::name(), AppInfo::version()));
    QNetworkReply* reply = m_network->get(request);
    m_running = reply;

    // A reply of an ended check may still speak; only the running one is heard.
    auto tooLarge = [this, reply](qint64 size) {
        if (reply == m_running && size > largestFeed)
            conclude(Outcome::Failed, {}, Updater::tr("the update feed is larger than 1 MiB"));
    };
    connect(reply, &QNetworkReply::metaDataChanged, this, [reply, tooLarge] {
        tooLarge(reply->header(QNetworkRequest::ContentLengthHeader).toLongLong());
    });
    connect(reply, &QNetworkReply::downloadProgress, this,
            [tooLarge](qint64 received, qint64) { tooLarge(received); });
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        if (reply == m_running)
            finish(reply);
    });
}

void Updater::cancel()
{
    if (!m_running)
        return;
    QNetworkReply* reply = std::exchange(m_running, nullptr);
    m_deadline->stop();
    reply->abort();
    letGoOfNetwork();
    emit checked(Outcome::Failed, {}, Updater::tr("the check was cancelled"));
}

void Updater::letGoOfNetwork()
{
    // Later, not now: the reply that just finished is still on the stack above us.
    if (m_network)
        std::exchange(m_network, nullptr)->deleteLater();
}

void Updater::conclude(Outcome outcome, const AppcastItem& update, const QString& error)
{
    if (QNetworkReply* reply = std::exchange(m_running, nullptr)) {
        reply->abort(); // no-op when it has finished
        reply->deleteLater();
    }
    m_deadline->stop();
    letGoOfNetwork();
    report(m_userInitiated, outcome, update, error);
}

void Updater::finish(QNetworkReply* reply)
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (status >= 300 && status < 400 && !target.isEmpty()) {
        if (++m_redirects > mostRedirects) {
            conclude(
                Outcome::Failed, {},
                Updater::tr("the update server sent too many redirects (more than %1)").arg(mostRedirects));
            return;
        }
        const QUrl next = reply->url().resolved(target);
        if (!mayFetch(next, m_plainHttpToLoopback)) {
            conclude(Outcome::Failed, {},
                     Updater::tr("the update server sent us to %1, which is not HTTPS")
                         .arg(next.toDisplayString()));
            return;
        }
        fetch(next);
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        conclude(Outcome::Failed, {}, plainWords(reply));
        return;
    }
    const Appcast::Result feed = Appcast::parse(reply->read(largestFeed + 1));
    if (!feed.error.isEmpty()) {
        conclude(Outcome::Failed, {}, feed.error);
        return;
    }
    const auto update = Appcast::newestUpdate(feed.items, AppInfo::version(), AppInfo::osVersion());
    conclude(update ? Outcome::UpdateAvailable : Outcome::UpToDate, update.value_or(AppcastItem{}), {});
}

void Updater::report(bool userInitiated, Outcome outcome, const AppcastItem& update, const QString& error)
{
    if (outcome == Outcome::Failed)
        logger().info(QStringLiteral("update check failed: ") + error);
    emit checked(outcome, update, error);

    if (!userInitiated) {
        // Checks of its own speak only of a version not told of before.
        if (outcome != Outcome::UpdateAvailable || m_versionsShown.contains(update.version))
            return;
    }
    if (outcome == Outcome::UpdateAvailable)
        m_versionsShown << update.version;
    UpdateDialog& dialog = showDialog();
    switch (outcome) {
    case Outcome::UpdateAvailable:
        dialog.showUpdate(update);
        break;
    case Outcome::UpToDate:
        dialog.showUpToDate();
        break;
    case Outcome::Failed:
        dialog.showError(error);
        break;
    }
}
