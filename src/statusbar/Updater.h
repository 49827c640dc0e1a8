#pragma once

#include "Appcast.h"

#include <QObject>
#include <QUrl>
#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;
class QTimer;
class UpdateDialog;

// Checks the update feed for a newer Lulltide: by itself every twelve hours when that was on at
// launch, and when the user asks. It tells of a newer version and links to it; installing stays
// with the package manager. Only HTTPS is spoken (plain HTTP to this machine itself, for tests),
// redirects away from HTTPS are refused, and a feed over 1 MiB or slower than 30 s is given up.
class Updater : public QObject {
    Q_OBJECT

public:
    enum class Outcome { UpdateAvailable, UpToDate, Failed };
    Q_ENUM(Outcome)

    // Reads whether to check by itself now, once: a later change counts from the next launch.
    explicit Updater(bool automaticChecks, QObject* parent = nullptr);
    ~Updater() override;

    // The feed: the configured one, or LULLTIDE_FEED_URL from the environment.
    static QUrl feedUrl();
    // The feed address with the system profile: app version, system version, CPU, language.
    static QUrl requestUrl(const QUrl& feed);

    bool automaticallyChecks() const { return m_automatic; }
    static constexpr std::chrono::seconds checkInterval{43200};

    // A check the user asked for: progress, then the result, shown in the update dialog.
    void checkForUpdates();
    // A check of its own: silent unless there is a newer version not shown before.
    void checkInBackground();

    // For tests: how long a check may take, and how soon after start the first one runs.
    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    std::chrono::milliseconds timeout() const { return m_timeout; }
    static void setFirstCheckDelay(std::chrono::milliseconds delay);

    UpdateDialog* dialog() const { return m_dialog; }

signals:
    // Every check's end: what it found, the update (if any) and, on failure, why in plain words.
    void checked(Updater::Outcome outcome, const AppcastItem& update, const QString& error);

private:
    void start(bool userInitiated);
    void finish(QNetworkReply* reply, bool userInitiated);
    void report(bool userInitiated, Outcome outcome, const AppcastItem& update, const QString& error);
    UpdateDialog& showDialog();

    bool m_automatic = false;
    std::chrono::milliseconds m_timeout = std::chrono::seconds(30);
    QNetworkAccessManager* m_network = nullptr;
    QNetworkReply* m_running = nullptr;
    QTimer* m_schedule = nullptr;
    UpdateDialog* m_dialog = nullptr;
    QStringList m_versionsShown;
};
