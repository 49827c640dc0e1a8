// SPDX-License-Identifier: GPL-3.0-or-later
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
// with the package manager. Only HTTPS is spoken (plain HTTP only when the feed itself is plain
// HTTP on this machine, for tests); redirects are followed by hand, at most five, each one
// checked; a feed over 1 MiB, or a check not done 30 s after it began, is given up.
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

    // For tests: how long a whole check may take, from the request to the verdict, and how soon
    // after start the first one runs.
    void setTimeout(std::chrono::milliseconds timeout) { m_timeout = timeout; }
    std::chrono::milliseconds timeout() const { return m_timeout; }
    static void setFirstCheckDelay(std::chrono::milliseconds delay);

    UpdateDialog* dialog() const { return m_dialog; }

signals:
    // Every check's end: what it found, the update (if any) and, on failure, why in plain words.
    void checked(Updater::Outcome outcome, const AppcastItem& update, const QString& error);

private:
    static constexpr int mostRedirects = 5;

    void start(bool userInitiated);
    void fetch(const QUrl& url);
    void finish(QNetworkReply* reply);
    // Ends the running check: its reply is let go and the verdict reported.
    void conclude(Outcome outcome, const AppcastItem& update, const QString& error);
    void cancel();
    // Between checks nothing of the network stays: its thread, caches and connections go.
    void letGoOfNetwork();
    void report(bool userInitiated, Outcome outcome, const AppcastItem& update, const QString& error);
    UpdateDialog& showDialog();

    bool m_automatic = false;
    std::chrono::milliseconds m_timeout = std::chrono::seconds(30);
    QNetworkAccessManager* m_network = nullptr;
    // The running check: its current request, whether the user asked for it, how many redirects
    // it followed, and whether plain HTTP to this machine is allowed (the feed itself is such).
    QNetworkReply* m_running = nullptr;
    bool m_userInitiated = false;
    int m_redirects = 0;
    bool m_plainHttpToLoopback = false;
    QTimer* m_deadline = nullptr;
    QTimer* m_schedule = nullptr;
    UpdateDialog* m_dialog = nullptr;
    QStringList m_versionsShown;
};
