// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>
#include <optional>

// One release in an update feed.
struct AppcastItem {
    QString version;      // dotted numbers, compared number by number ("1.10" > "1.9")
    QString shortVersion; // shown to people; the version when the feed gives none
    QString title;
    QString releaseNotesLink;
    QString minimumSystemVersion;
    QString downloadUrl;
};

Q_DECLARE_METATYPE(AppcastItem)

// An update feed: RSS 2.0 with the sparkle: namespace, as update frameworks publish it. Read
// with QXmlStreamReader; a feed with a document type declaration is refused outright, as that
// is where entity bombs live and no honest feed needs one.
namespace Appcast {

struct Result {
    QList<AppcastItem> items;
    QString error; // empty when the feed was read
};

// Every item's links are absolute https addresses with a host (see isHttpsLink).
Result parse(const QByteArray& feed);

// Whether a link from a feed may be opened: an absolute https address with a host, nothing else.
bool isHttpsLink(const QUrl& url);

// Compares two versions of dotted numbers; nullopt when either is no such version.
std::optional<int> compareVersions(const QString& a, const QString& b);

// The newest item whose version is greater than `current` and whose minimum system version
// (when given) `systemVersion` meets; none when there is no such item.
std::optional<AppcastItem> newestUpdate(const QList<AppcastItem>& items, const QString& current,
                                        const QString& systemVersion);

} // namespace Appcast
