#include "Updater.h"

#include "AppInfo.h"
#include "Config.h"
#include "UpdateDialog.h"
#include "logging/Logger.h"

#include <QHostAddress>
#include <QLocale>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSysInfo>
#include <QTimer>
#include <QUrlQuery>

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

// HTTPS, or plain HTTP to this machine itself.
QString refusal(const QUrl& url)
{
    if (url.scheme() == QLatin1String("https"))
        return {};
    if (url.scheme() == QLatin1String("http") && isLoopback(url))
        return {};
    return Updater::tr("the feed address %1 is not HTTPS").arg(url.toDisplayString());
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
        connect(m_dialog, &UpdateDialog::cancelled, this, [this] {
            if (!m_running)
                return;
            m_running->setProperty("cancelled", true);
            m_running->abort();
        });
    }
    return *m_dialog;
}

void Updater::start(bool userInitiated)
{
    if (m_running) {
        m_running->setProperty("userInitiated",
                               m_running->property("userInitiated").toBool() || userInitiated);
        return;
    }
    const QUrl feed = feedUrl();
    if (const QString why = refusal(feed); !why.isEmpty() || !feed.isValid()) {
        report(userInitiated, Outcome::Failed, {},
               why.isEmpty() ? Updater::tr("the feed address is invalid") : why);
        return;
    }
    // Made at the first check, not at start: most of the time nobody checks.
    if (!m_network)
        m_network = new QNetworkAccessManager(this);

    QNetworkRequest request(requestUrl(feed));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setTransferTimeout(int(m_timeout.count()));
    request.setHeader(QNetworkRequest::UserAgentHeader,
                      QStringLiteral("%1/%2").arg(AppInfo::name(), AppInfo::version()));
    QNetworkReply* reply = m_network->get(request);
    reply->setProperty("userInitiated", userInitiated);
    m_running = reply;

    connect(reply, &QNetworkReply::redirected, reply, [reply](const QUrl& target) {
        if (refusal(target).isEmpty()) {
            emit reply->redirectAllowed();
        } else {
            reply->setProperty("refusal", Updater::tr("the update server sent us to %1, which is not HTTPS")
                                              .arg(target.toDisplayString()));
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::metaDataChanged, reply, [reply] {
        if (reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > largestFeed) {
            reply->setProperty("refusal", Updater::tr("the update feed is larger than 1 MiB"));
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > largestFeed) {
            reply->setProperty("refusal", Updater::tr("the update feed is larger than 1 MiB"));
            reply->abort();
        }
    });
    connect(reply, &QNetworkReply::finished, this,
            [this, reply] { finish(reply, reply->property("userInitiated").toBool()); });
}

void Updater::finish(QNetworkReply* reply, bool userInitiated)
{
    reply->deleteLater();
    m_running = nullptr;
    if (reply->property("cancelled").toBool()) {
        emit checked(Outcome::Failed, {}, Updater::tr("the check was cancelled"));
        return;
    }
    const QString refused = reply->property("refusal").toString();
    if (!refused.isEmpty()) {
        report(userInitiated, Outcome::Failed, {}, refused);
        return;
    }
    if (reply->error() != QNetworkReply::NoError) {
        report(userInitiated, Outcome::Failed, {}, plainWords(reply));
        return;
    }
    const Appcast::Result feed = Appcast::parse(reply->read(largestFeed + 1));
    if (!feed.error.isEmpty()) {
        report(userInitiated, Outcome::Failed, {}, feed.error);
        return;
    }
    const auto update = Appcast::newestUpdate(feed.items, AppInfo::version(), AppInfo::osVersion());
    report(userInitiated, update ? Outcome::UpdateAvailable : Outcome::UpToDate,
           update.value_or(AppcastItem{}), {});
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
