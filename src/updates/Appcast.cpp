// SPDX-License-Identifier: GPL-3.0-or-later
#include "Appcast.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QXmlStreamReader>

namespace Appcast {
namespace {

const QString sparkle = QStringLiteral("http://www.andymatuschak.org/xml-namespaces/sparkle");
constexpr qsizetype longestText = 4096; // no text or attribute of a feed needs more

QString tooLongText()
{
    return QCoreApplication::translate("Appcast", "the feed holds a text far too long for an update feed");
}

std::optional<QList<quint64>> numbers(const QString& version)
{
    // Anchored to the very end: "$" alone would let a final line break through.
    static const QRegularExpression dotted(
        QRegularExpression::anchoredPattern(QStringLiteral("\\d{1,9}(\\.\\d{1,9}){0,5}")));
    if (!dotted.match(version).hasMatch())
        return std::nullopt;
    QList<quint64> parts;
    for (const QString& part : version.split(u'.'))
        parts << part.toULongLong();
    return parts;
}

} // namespace

bool isHttpsLink(const QUrl& url)
{
    return url.isValid() && url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}

std::optional<int> compareVersions(const QString& a, const QString& b)
{
    const auto left = numbers(a);
    const auto right = numbers(b);
    if (!left || !right)
        return std::nullopt;
    for (qsizetype i = 0; i < std::max(left->size(), right->size()); ++i) {
        const quint64 x = left->value(i, 0);
        const quint64 y = right->value(i, 0);
        if (x != y)
            return x < y ? -1 : 1;
    }
    return 0;
}

Result parse(const QByteArray& feed)
{
    Result result;
    QXmlStreamReader xml(feed);
    bool sawRss = false;
    AppcastItem item;
    bool inItem = false;
    qsizetype textRun = 0; // a text may come in several pieces
    auto fail = [&](const QString& why) {
        result.items.clear();
        result.error = why;
        return result;
    };

    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.tokenType() == QXmlStreamReader::DTD)
            return fail(QCoreApplication::translate(
                "Appcast", "the feed declares a document type, which no update feed needs"));
        textRun = xml.isCharacters() ? textRun + xml.text().size() : 0;
        if (textRun > longestText || xml.text().size() > longestText ||
            xml.processingInstructionData().size() > longestText)
            return fail(tooLongText());
        if (xml.tokenType() == QXmlStreamReader::StartElement) {
            const auto name = xml.name();
            for (const QXmlStreamAttribute& attribute : xml.attributes()) {
                if (attribute.value().size() > longestText)
                    return fail(QCoreApplication::translate(
                        "Appcast", "the feed holds an attribute far too long for an update feed"));
            }
            if (!sawRss) {
                if (name != QLatin1String("rss"))
                    return fail(QCoreApplication::translate("Appcast", "this is no RSS feed"));
                sawRss = true;
            } else if (name == QLatin1String("item")) {
                inItem = true;
                item = {};
            } else if (inItem) {
                const bool isSparkle = xml.namespaceUri() == sparkle;
                if (name == QLatin1String("enclosure")) {
                    const auto attributes = xml.attributes();
                    item.downloadUrl = attributes.value(QLatin1String("url")).toString();
                    if (item.version.isEmpty())
                        item.version = attributes.value(sparkle, QLatin1String("version")).toString();
                    if (item.shortVersion.isEmpty())
                        item.shortVersion =
                            attributes.value(sparkle, QLatin1String("shortVersionString")).toString();
                } else if (name == QLatin1String("title") || isSparkle) {
                    const QString text = xml.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
                    if (xml.hasError())
                        break;
                    if (text.size() > longestText)
                        return fail(tooLongText());
                    if (name == QLatin1String("title"))
                        item.title = text;
                    else if (name == QLatin1String("version"))
                        item.version = text;
                    else if (name == QLatin1String("shortVersionString"))
                        item.shortVersion = text;
                    else if (name == QLatin1String("releaseNotesLink"))
                        item.releaseNotesLink = text;
                    else if (name == QLatin1String("minimumSystemVersion"))
                        item.minimumSystemVersion = text;
                }
            }
        } else if (xml.tokenType() == QXmlStreamReader::EndElement && xml.name() == QLatin1String("item")) {
            inItem = false;
            if (!numbers(item.version))
                return fail(
                    QCoreApplication::translate("Appcast", "the feed names a version that is no version: ") +
                    item.version.left(40));
            // Links are handed to the browser: a file, a script or a program must never get there.
            if (!item.downloadUrl.isEmpty() && !isHttpsLink(QUrl(item.downloadUrl, QUrl::StrictMode)))
                return fail(QCoreApplication::translate("Appcast",
                                                        "the feed's download link is not an https address"));
            if (!item.releaseNotesLink.isEmpty() &&
                !isHttpsLink(QUrl(item.releaseNotesLink, QUrl::StrictMode)))
                return fail(QCoreApplication::translate(
                    "Appcast", "the feed's release notes link is not an https address"));
            if (item.shortVersion.isEmpty())
                item.shortVersion = item.version;
            result.items << item;
        }
    }
    if (xml.hasError())
        return fail(QCoreApplication::translate("Appcast", "the feed is not well-formed XML (") +
                    xml.errorString() + u')');
    if (!sawRss)
        return fail(QCoreApplication::translate("Appcast", "this is no RSS feed"));
    return result;
}

std::optional<AppcastItem> newestUpdate(const QList<AppcastItem>& items, const QString& current,
                                        const QString& systemVersion)
{
    std::optional<AppcastItem> newest;
    for (const AppcastItem& item : items) {
        if (compareVersions(item.version, current).value_or(0) <= 0)
            continue;
        if (!item.minimumSystemVersion.isEmpty() &&
            compareVersions(systemVersion, item.minimumSystemVersion).value_or(-1) < 0)
            continue;
        if (!newest || compareVersions(item.version, newest->version).value_or(0) > 0)
            newest = item;
    }
    return newest;
}

} // namespace Appcast
