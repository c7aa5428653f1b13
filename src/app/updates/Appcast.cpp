#include "Appcast.h"

#include "UpdateVersion.h"

#include <QXmlStreamReader>

namespace {

const QString sparkleUri = QString::fromLatin1(Appcast::sparkleNamespace);

bool isSparkle(const QXmlStreamReader &xml, QLatin1StringView name)
{
    return xml.namespaceUri() == sparkleUri && xml.name() == name;
}

bool isPlain(const QXmlStreamReader &xml, QLatin1StringView name)
{
    return xml.namespaceUri().isEmpty() && xml.name() == name;
}

QUrl webUrl(const QString &text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const QString scheme = url.scheme();
    if (!url.isValid() || (scheme != QLatin1String("https") && scheme != QLatin1String("http")))
        return {};
    return url;
}

// Reads one <item>; the reader is left on its end element.
AppcastItem readItem(QXmlStreamReader &xml)
{
    AppcastItem item;
    QUrl plainLink;
    QString enclosureVersion;
    QString enclosureDisplayVersion;
    while (xml.readNextStartElement()) {
        if (isSparkle(xml, QLatin1StringView("version"))) {
            item.version = xml.readElementText().trimmed();
        } else if (isSparkle(xml, QLatin1StringView("shortVersionString"))) {
            item.displayVersion = xml.readElementText().trimmed();
        } else if (isSparkle(xml, QLatin1StringView("releaseNotesLink"))) {
            item.releaseNotesUrl = webUrl(xml.readElementText());
        } else if (isPlain(xml, QLatin1StringView("link"))) {
            plainLink = webUrl(xml.readElementText());
        } else if (isPlain(xml, QLatin1StringView("pubDate"))) {
            item.publicationDate =
                QDateTime::fromString(xml.readElementText().trimmed(), Qt::RFC2822Date);
        } else if (isPlain(xml, QLatin1StringView("enclosure"))) {
            const QXmlStreamAttributes attributes = xml.attributes();
            item.downloadUrl =
                QUrl(attributes.value(QLatin1String("url")).trimmed().toString(), QUrl::StrictMode);
            bool lengthOk = false;
            item.length = attributes.value(QLatin1String("length")).trimmed().toLongLong(&lengthOk);
            if (!lengthOk)
                item.length = 0;
            item.contentType = attributes.value(QLatin1String("type")).toString();
            item.signature = QByteArray::fromBase64(
                attributes.value(sparkleUri, QLatin1String("edSignature")).toLatin1());
            // Older feeds put the versions on the enclosure.
            enclosureVersion = attributes.value(sparkleUri, QLatin1String("version")).toString();
            enclosureDisplayVersion =
                attributes.value(sparkleUri, QLatin1String("shortVersionString")).toString();
            xml.skipCurrentElement();
        } else {
            xml.skipCurrentElement();
        }
    }
    if (item.version.isEmpty())
        item.version = enclosureVersion.trimmed();
    if (item.displayVersion.isEmpty())
        item.displayVersion = enclosureDisplayVersion.trimmed();
    if (item.displayVersion.isEmpty())
        item.displayVersion = item.version;
    if (item.releaseNotesUrl.isEmpty())
        item.releaseNotesUrl = plainLink;
    return item;
}

// One pass over the whole document before it is read for items.
bool isShallow(const QByteArray &document)
{
    QXmlStreamReader xml(document);
    int depth = 0;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement && ++depth > Appcast::maximumDepth)
            return false;
        if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    return !xml.hasError();
}

bool isUsable(const AppcastItem &item)
{
    return UpdateVersion::isValid(item.version) && item.downloadUrl.isValid() &&
           !item.downloadUrl.isRelative() && item.length > 0 &&
           item.length <= Appcast::maximumReleaseSize && !item.signature.isEmpty();
}

} // namespace

std::optional<QList<AppcastItem>> Appcast::parse(const QByteArray &document)
{
    if (document.size() > maximumSize || !isShallow(document))
        return std::nullopt;
    QXmlStreamReader xml(document);
    QList<AppcastItem> items;
    if (!xml.readNextStartElement() || !isPlain(xml, QLatin1StringView("rss")))
        return std::nullopt;
    bool sawChannel = false;
    while (xml.readNextStartElement()) {
        if (!isPlain(xml, QLatin1StringView("channel")) || sawChannel) {
            xml.skipCurrentElement();
            continue;
        }
        sawChannel = true;
        while (xml.readNextStartElement()) {
            if (isPlain(xml, QLatin1StringView("item"))) {
                AppcastItem item = readItem(xml);
                if (isUsable(item))
                    items.append(std::move(item));
            } else {
                xml.skipCurrentElement();
            }
        }
    }
    // Reading to the end also catches anything malformed after the root.
    while (!xml.atEnd())
        xml.readNext();
    if (xml.hasError() || !sawChannel)
        return std::nullopt;
    return items;
}

std::optional<AppcastItem> Appcast::newest(const QList<AppcastItem> &items)
{
    std::optional<AppcastItem> best;
    for (const AppcastItem &item : items) {
        if (!best || UpdateVersion::compare(item.version, best->version).value_or(0) > 0)
            best = item;
    }
    return best;
}
