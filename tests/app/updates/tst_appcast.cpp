#include "Appcast.h"

#include <QTest>

namespace {

const QByteArray rssStart = "<rss version=\"2.0\" "
                            "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
                            "<channel>";
const QByteArray rssEnd = "</channel></rss>";
const QByteArray signature = QByteArray(64, 's').toBase64();

QByteArray rss(const QByteArray &items)
{
    return rssStart + items + rssEnd;
}

QByteArray enclosure(const QByteArray &extra = {})
{
    return "<enclosure url=\"https://zonara.example/Zonara.AppImage\" length=\"1234\" "
           "type=\"application/vnd.appimage\" sparkle:edSignature=\"" +
           signature + "\"" + extra + "/>";
}

} // namespace

class TestAppcast : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parsesItem();
    void items_data();
    void items();
};

void TestAppcast::parsesItem()
{
    const auto items = Appcast::parse(
        rss("<title>Zonara</title><unknown><item>nested</item></unknown>"
            "<item><title>Zonara 1.2</title>"
            "<sparkle:version>1.2.0</sparkle:version>"
            "<sparkle:shortVersionString>1.2</sparkle:shortVersionString>"
            "<sparkle:releaseNotesLink>https://zonara.example/notes/1.2</sparkle:releaseNotesLink>"
            "<sparkle:minimumSystemVersion>12</sparkle:minimumSystemVersion>" +
            enclosure() + "</item>"));
    QVERIFY(items);
    QCOMPARE(items->size(), 1);
    const AppcastItem &item = items->first();
    QCOMPARE(item.version, QStringLiteral("1.2.0"));
    QCOMPARE(item.displayVersion, QStringLiteral("1.2"));
    QCOMPARE(item.releaseNotesUrl, QUrl(QStringLiteral("https://zonara.example/notes/1.2")));
    QCOMPARE(item.downloadUrl, QUrl(QStringLiteral("https://zonara.example/Zonara.AppImage")));
    QCOMPARE(item.length, 1234);
    QCOMPARE(item.signature, QByteArray(64, 's'));
}

void TestAppcast::items_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<int>("count"); // -1: rejected as a whole
    QTest::addColumn<QString>("displayVersion");

    const QByteArray version = "<sparkle:version>2.0</sparkle:version>";
    QTest::newRow("display version falls back to the version")
        << rss("<item>" + version + enclosure() + "</item>") << 1 << "2.0";
    QTest::newRow("versions on the enclosure")
        << rss("<item>" +
               enclosure(" sparkle:version=\"3.1\" sparkle:shortVersionString=\"3.1 final\"") +
               "</item>")
        << 1 << "3.1 final";
    QTest::newRow("another prefix for the same namespace")
        << QByteArray("<rss xmlns:s=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
                      "<channel><item><s:version>4</s:version>"
                      "<enclosure url=\"https://zonara.example/z\" length=\"9\" "
                      "s:edSignature=\"" +
                      signature + "\"/></item></channel></rss>")
        << 1 << "4";
    QTest::newRow("item without version is left out")
        << rss("<item>" + enclosure() + "</item><item>" + version + enclosure() + "</item>") << 1
        << "2.0";
    QTest::newRow("item with a non-numeric version is left out")
        << rss("<item><sparkle:version>2.0-beta</sparkle:version>" + enclosure() + "</item>") << 0
        << QString();
    QTest::newRow("item without enclosure is left out")
        << rss("<item>" + version + "</item>") << 0 << QString();
    QTest::newRow("item without signature is left out")
        << rss("<item>" + version +
               "<enclosure url=\"https://zonara.example/z\" length=\"9\"/></item>")
        << 0 << QString();
    QTest::newRow("item with a zero length is left out")
        << rss("<item>" + version +
               "<enclosure url=\"https://zonara.example/z\" length=\"0\" sparkle:edSignature=\"" +
               signature + "\"/></item>")
        << 0 << QString();
    // The whole file is written before it can be verified: the feed may not ask for more.
    QTest::newRow("item larger than any release is left out")
        << rss("<item>" + version + "<enclosure url=\"https://zonara.example/z\" length=\"" +
               QByteArray::number(Appcast::maximumReleaseSize + 1) + "\" sparkle:edSignature=\"" +
               signature + "\"/></item>")
        << 0 << QString();
    QTest::newRow("undeclared sparkle prefix")
        << QByteArray("<rss><channel><item><version>2.0</version>" + enclosure() +
                      "</item></channel></rss>")
        << -1 << QString();
    QTest::newRow("empty channel") << rss("") << 0 << QString();
    QTest::newRow("not RSS") << QByteArray("<feed><entry/></feed>") << -1 << QString();
    QTest::newRow("unclosed element") << rss("<item>" + version + enclosure()) << -1 << QString();
    QTest::newRow("garbage after the root") << rss("") + "<rss/>" << -1 << QString();
}

void TestAppcast::items()
{
    QFETCH(QByteArray, document);
    QFETCH(int, count);
    QFETCH(QString, displayVersion);
    const auto items = Appcast::parse(document);
    if (count < 0) {
        QVERIFY(!items);
        return;
    }
    QVERIFY(items);
    QCOMPARE(items->size(), count);
    if (count > 0)
        QCOMPARE(items->first().displayVersion, displayVersion);
}

QTEST_GUILESS_MAIN(TestAppcast)
#include "tst_appcast.moc"
