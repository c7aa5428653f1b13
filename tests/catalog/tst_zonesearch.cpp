#include "CityEntry.h"
#include "CityOtherNames.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "SavedZone.h"
#include "ZoneSearch.h"

#include <QLocale>
#include <QTest>

using CityList = QList<CityEntry>;
using LinkTargets = QHash<QString, QString>;
Q_DECLARE_METATYPE(CityEntry)

namespace {

// Runs both search versions; they must always agree.
QList<ZoneSearchResult> searchBoth(const QString &query, const CityList &cities,
                                   const QStringList &identifiers)
{
    const QList<ZoneSearchResult> plain = ZoneSearch::search(query, cities, identifiers);
    const QList<ZoneSearchResult> fast =
        ZoneSearch::search(query, FoldedCities(cities), FoldedIdentifiers(identifiers));
    if (plain != fast)
        qWarning() << "folded search differs for" << query;
    return plain == fast ? plain : QList<ZoneSearchResult>{{"versions differ", {}, {}, {}}};
}

QStringList resultIds(const QList<ZoneSearchResult> &results)
{
    QStringList ids;
    for (const ZoneSearchResult &result : results)
        ids.append(result.id);
    return ids;
}

QString u16(const char16_t *text)
{
    return QString::fromUtf16(text);
}

const CityEntry stockholm{"Stockholm", "Europe/Stockholm", "Sweden"};
const CityEntry goteborg{"Göteborg", "Europe/Stockholm", "Sweden"};
const CityEntry malmo{"Malmö", "Europe/Stockholm", "Sweden"};
const CityEntry newYork{"New York", "America/New_York", "United States"};
const CityEntry philadelphia{"Philadelphia", "America/New_York", "United States"};
const CityEntry boston{"Boston", "America/New_York", "United States"};
const CityEntry losAngeles{"Los Angeles", "America/Los_Angeles", "United States"};
const CityEntry portlandOregon{"Portland", "America/Los_Angeles", "United States"};
const CityEntry portlandMaine{"Portland", "America/New_York", "United States"};
const CityEntry rio{"Rio de Janeiro", "America/Sao_Paulo", "Brazil"};
const CityEntry americana{"Americana", "America/Sao_Paulo", "Brazil"};
const CityEntry paris{"Paris", "Europe/Paris", "France"};
const CityEntry oslo{"Oslo", "Europe/Oslo", "Norway"};

// Cities "<prefix> 01", "<prefix> 02", ... each in a zone of its own.
CityList numberedCities(const QString &prefix, int count)
{
    CityList cities;
    for (int i = 1; i <= count; ++i) {
        const QString number = QStringLiteral("%1").arg(i, 2, 10, QLatin1Char('0'));
        cities.append(
            {prefix + u' ' + number, u"Zone/" % prefix % number, QStringLiteral("Nowhere")});
    }
    return cities;
}

QStringList numberedIdentifiers(const QString &prefix, int count)
{
    QStringList identifiers;
    for (int i = 1; i <= count; ++i)
        identifiers.append(u"Area/" % prefix %
                           QStringLiteral("_%1").arg(i, 2, 10, QLatin1Char('0')));
    return identifiers;
}

} // namespace

class TestZoneSearch final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textMatching_data();
    void textMatching();
    void localeIndependent_data();
    void localeIndependent();
    void blankQuery_data();
    void blankQuery();
    void listing_data();
    void listing();
    void cap_data();
    void cap();
    void resultContent();
    void otherNamesAndLinks_data();
    void otherNamesAndLinks();
};

void TestZoneSearch::textMatching_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");

    QTest::newRow("middle of a word") << "ckh"
                                      << "Stockholm" << true;
    QTest::newRow("case folded on both sides") << "STock"
                                               << "stOCKholm" << true;
    // Canonical equivalence, both ways.
    QTest::newRow("precomposed query, decomposed text")
        << u16(u"qu\u00e9") << u16(u"Que\u0301bec") << true;
    QTest::newRow("decomposed query, precomposed text")
        << u16(u"que\u0301") << u16(u"Qu\u00e9bec") << true;
    QTest::newRow("marks typed out of order")
        << u16(u"no\u0302\u0323i") << u16(u"H\u00e0 N\u1ed9i") << true;

    // A match never takes a base letter without its marks.
    QTest::newRow("a does not match ã") << "sa"
                                        << "São Paulo" << false;
    QTest::newRow("letter before ã") << "s"
                                     << "São" << true;
    QTest::newRow("e against decomposed é") << "quebec" << u16(u"Que\u0301bec") << false;
    QTest::newRow("ô against ộ") << u16(u"n\u00f4") << u16(u"H\u00e0 N\u1ed9i") << false;
    QTest::newRow("spacing vowel sign")
        << u16(u"\u0926") << u16(u"\u0926\u093f\u0932\u094d\u0932\u0940") << false;
    QTest::newRow("hangul syllable without final")
        << u16(u"\uc6b0") << u16(u"\uc11c\uc6b8") << false;
    QTest::newRow("hangul decomposed query")
        << u16(u"\u110b\u116e\u11af") << u16(u"\uc11c\uc6b8") << true;

    // Beyond the Basic Multilingual Plane.
    QTest::newRow("mark outside the BMP") << "a" << u16(u"a\U000101FD") << false;
    QTest::newRow("half a surrogate pair") << QString(QChar(0xD835)) << u16(u"\U0001D400") << false;

    // A needle that starts with a mark needs a character that starts with it.
    QTest::newRow("lone mark inside a letter") << u16(u"\u0301") << u16(u"Qu\u00e9bec") << false;
    QTest::newRow("lone mark as text") << u16(u"\u0301") << u16(u"\u0301") << true;

    // No diacritic or width folding.
    QTest::newRow("no diacritic folding") << "zurich"
                                          << "Zürich" << false;
    QTest::newRow("full-width query") << u16(u"\uff54\uff4f\uff4b\uff59\uff4f") << "Tokyo" << false;
    QTest::newRow("ß is not ss") << "strass"
                                 << "Straßburg" << false;
    QTest::newRow("capital sharp s") << u16(u"STRA\u1e9e") << "Straßburg" << true;
    // Separators are part of the text.
    QTest::newRow("space is not underscore") << "new york"
                                             << "America/New_York" << false;
    QTest::newRow("underscore") << "new_york"
                                << "America/New_York" << true;
    QTest::newRow("inner spaces kept") << "new  york"
                                       << "New York" << false;
}

void TestZoneSearch::textMatching()
{
    QFETCH(QString, query);
    QFETCH(QString, text);
    QFETCH(bool, matches);

    // The same rule for every searched field, in both passes.
    const qsizetype expected = matches ? 1 : 0;
    QCOMPARE(searchBoth(query, {{text, {}, {}}}, {}).size(), expected);
    QCOMPARE(searchBoth(query, {{{}, {}, text}}, {}).size(), expected);
    QCOMPARE(searchBoth(query, {{{}, text, {}}}, {}).size(), expected);
    QCOMPARE(searchBoth(query, {}, {text}).size(), expected);
}

void TestZoneSearch::localeIndependent_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("matches");
    QTest::newRow("I is i") << "ISTANBUL"
                            << "Istanbul" << true;
    QTest::newRow("I is not dotless i") << "I" << u16(u"\u0131hlara") << false;
    QTest::newRow("dotted capital is i and a dot")
        << u16(u"i\u0307zmir") << u16(u"\u0130zmir") << true;
    QTest::newRow("dotted capital is not plain i") << "izmir" << u16(u"\u0130zmir") << false;
}

void TestZoneSearch::localeIndependent()
{
    QFETCH(QString, query);
    QFETCH(QString, text);
    QFETCH(bool, matches);

    const QLocale previous;
    for (const QLocale &locale : {QLocale(QLocale::Turkish, QLocale::Turkey), QLocale::c()}) {
        QLocale::setDefault(locale);
        const qsizetype found = searchBoth(query, {{text, {}, {}}}, {}).size();
        QLocale::setDefault(previous);
        QCOMPARE(found, matches ? 1 : 0);
    }
}

void TestZoneSearch::blankQuery_data()
{
    QTest::addColumn<QString>("query");
    QTest::newRow("empty") << QString();
    QTest::newRow("ascii white space") << " \t\n\r\v\f";
    QTest::newRow("unicode white space") << u16(u"\u00a0\u2003\u3000\u0085\u2028\u2029");
}

void TestZoneSearch::blankQuery()
{
    QFETCH(QString, query);
    // Sources in which every text contains a space, so an untrimmed blank
    // query would find them.
    const CityList cities{newYork, losAngeles, {"\t\n", "Etc/ \u2003", "\u0085 \u2028"}};
    const QStringList identifiers{"With Space", "\t", QStringLiteral("\u3000")};
    QCOMPARE(searchBoth(query, cities, identifiers), QList<ZoneSearchResult>{});
}

void TestZoneSearch::listing_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<CityList>("cities");
    QTest::addColumn<QStringList>("identifiers");
    QTest::addColumn<QStringList>("expected");

    const QStringList zones{"America/Los_Angeles", "America/New_York", "America/Sao_Paulo",
                            "America/Toronto",     "Europe/Oslo",      "Europe/Paris",
                            "Europe/Stockholm"};

    QTest::newRow("trimmed and lower-cased") << u16(u"\u2003 STOCK\n") << CityList{stockholm, paris}
                                             << zones << QStringList{stockholm.id()};
    // A country or identifier hit lists one city per zone.
    QTest::newRow("country hit, one zone")
        << "sweden" << CityList{stockholm, goteborg, malmo} << zones << QStringList{stockholm.id()};
    QTest::newRow("country hit, first of each zone")
        << "united" << CityList{philadelphia, newYork, portlandOregon, losAngeles, boston} << zones
        << QStringList{philadelphia.id(), portlandOregon.id()};
    QTest::newRow("identifier hit mixes with zones")
        << "america" << CityList{newYork, philadelphia, losAngeles, boston} << zones
        << QStringList{newYork.id(), losAngeles.id(), "iana:America/Sao_Paulo",
                       "iana:America/Toronto"};

    // A name hit is listed even when its zone already is.
    QTest::newRow("name hit after a zone hit")
        << "america" << CityList{rio, americana, newYork} << zones
        << QStringList{rio.id(), americana.id(), newYork.id(), "iana:America/Los_Angeles",
                       "iana:America/Toronto"};
    QTest::newRow("same name, same zone")
        << "portland" << CityList{portlandMaine, newYork, portlandMaine} << zones
        << QStringList{portlandMaine.id(), portlandMaine.id()};
    QTest::newRow("name hit then country hit, same zone")
        << "o"
        << CityList{oslo,
                    {"Bergen", "Europe/Oslo", "Norway"},
                    {"Trondheim", "Europe/Oslo", "Norway"}}
        << QStringList{} << QStringList{oslo.id(), "Trondheim|Europe/Oslo|Norway"};

    // Bare identifiers come after every city, once, and not for a listed zone.
    QTest::newRow("listed zone not repeated")
        << "stockholm" << CityList{stockholm} << zones << QStringList{stockholm.id()};
    QTest::newRow("bare after cities")
        << "europe" << CityList{paris, stockholm} << zones
        << QStringList{paris.id(), stockholm.id(), "iana:Europe/Oslo"};
    QTest::newRow("repeated identifier once")
        << "oslo" << CityList{} << QStringList{"Europe/Oslo", "Europe/Oslo"}
        << QStringList{"iana:Europe/Oslo"};
    QTest::newRow("listed zone compared exactly")
        << "stockholm" << CityList{{"Stockholm", "europe/stockholm", "Sweden"}} << zones
        << QStringList{"Stockholm|europe/stockholm|Sweden", "iana:Europe/Stockholm"};
    // No ranking: source order only.
    QTest::newRow("no prefix preference")
        << "os" << CityList{boston, oslo, losAngeles} << QStringList{}
        << QStringList{boston.id(), oslo.id(), losAngeles.id()};
}

void TestZoneSearch::listing()
{
    QFETCH(QString, query);
    QFETCH(CityList, cities);
    QFETCH(QStringList, identifiers);
    QFETCH(QStringList, expected);
    QCOMPARE(resultIds(searchBoth(query, cities, identifiers)), expected);
}

void TestZoneSearch::cap_data()
{
    QTest::addColumn<int>("cityCount");
    QTest::addColumn<int>("identifierCount");
    QTest::addColumn<int>("expectedCities");
    QTest::addColumn<int>("expectedIdentifiers");

    QTest::newRow("55 cities") << 55 << 0 << 40 << 0;
    QTest::newRow("55 identifiers") << 0 << 55 << 0 << 40;
    QTest::newRow("30 cities, 25 identifiers") << 30 << 25 << 30 << 10;
    QTest::newRow("exactly 40 cities hide identifiers") << 40 << 5 << 40 << 0;
    QTest::newRow("39 cities, one identifier") << 39 << 5 << 39 << 1;
}

void TestZoneSearch::cap()
{
    QFETCH(int, cityCount);
    QFETCH(int, identifierCount);
    QFETCH(int, expectedCities);
    QFETCH(int, expectedIdentifiers);

    // Non-matching cities and identifiers between the matching ones.
    CityList cities;
    const CityList matching = numberedCities(QStringLiteral("Vale"), cityCount);
    const CityList other = numberedCities(QStringLiteral("Hill"), cityCount);
    for (qsizetype i = 0; i < matching.size(); ++i)
        cities << other[i] << matching[i];
    QStringList identifiers;
    const QStringList matchingIds = numberedIdentifiers(QStringLiteral("Vale"), identifierCount);
    for (const QString &identifier : matchingIds)
        identifiers << QStringLiteral("Area/Hill") << identifier;

    QStringList expected;
    for (int i = 0; i < expectedCities; ++i)
        expected.append(matching[i].id());
    for (int i = 0; i < expectedIdentifiers; ++i)
        expected.append(u"iana:" + matchingIds[i]);

    QCOMPARE(resultIds(searchBoth(QStringLiteral("vale"), cities, identifiers)), expected);
}

void TestZoneSearch::resultContent()
{
    const QList<ZoneSearchResult> results = searchBoth(
        QStringLiteral("aires"), {{"Buenos Aires", "America/Argentina/Buenos_Aires", "Argentina"}},
        {"America/Argentina/Buenos_Aires", "America/Argentina/Cordoba", "Atlantic/Aires_Test"});
    const QList<ZoneSearchResult> expected{
        {"Buenos Aires|America/Argentina/Buenos_Aires|Argentina", "Buenos Aires",
         QStringLiteral("Argentina \u00B7 America/Argentina/Buenos_Aires"),
         "America/Argentina/Buenos_Aires"},
        {"iana:Atlantic/Aires_Test", "Aires Test", "Atlantic/Aires_Test", "Atlantic/Aires_Test"}};
    QCOMPARE(results, expected);
}

void TestZoneSearch::otherNamesAndLinks_data()
{
    using Names = QList<QStringList>;
    using Links = LinkTargets;
    QTest::addColumn<QString>("query");
    QTest::addColumn<CityList>("cities");
    QTest::addColumn<Names>("otherNames"); // per city, in city order
    QTest::addColumn<QStringList>("identifiers");
    QTest::addColumn<Links>("links");
    QTest::addColumn<QStringList>("expected"); // id, then subtitle

    const CityEntry koln{u16(u"K\u00f6ln"), "Europe/Berlin", "Germany"};
    const CityEntry cologne{"Cologne", "Europe/Paris", "France"};
    const CityEntry saoPaulo{u16(u"S\u00e3o Paulo"), "America/Sao_Paulo", "Brazil"};
    const CityEntry kolkata{"Kolkata", "Asia/Kolkata", "India"};
    const QString dot = QStringLiteral(" \u00B7 ");
    const QString kolnCologne = koln.id() + u" @ Cologne" + dot + "Germany" + dot + "Europe/Berlin";

    QTest::newRow("own name first, other name after")
        << "cologne" << CityList{koln, cologne} << Names{{"Cologne", "Koln"}} << QStringList{}
        << Links{} << QStringList{cologne.id() + u" @ France" + dot + "Europe/Paris", kolnCologne};
    QTest::newRow("own name hit not listed again")
        << "ln" << CityList{koln} << Names{{"Cologne", "Koln"}} << QStringList{} << Links{}
        << QStringList{koln.id() + u" @ Germany" + dot + "Europe/Berlin"};
    QTest::newRow("one city for two other names")
        << "ol" << CityList{koln} << Names{{"Cologne", "Koln"}} << QStringList{} << Links{}
        << QStringList{kolnCologne};
    QTest::newRow("ascii reaches the accented name only through its spelling")
        << "sao p" << CityList{{u16(u"S\u00e3o Pedro"), "America/Sao_Paulo", "Brazil"}, saoPaulo}
        << Names{{}, {"Sao Paulo"}} << QStringList{} << Links{}
        << QStringList{saoPaulo.id() + u" @ Sao Paulo" + dot + "Brazil" + dot +
                       "America/Sao_Paulo"};

    const QStringList zones{"America/New_York", "Asia/Kathmandu", "Asia/Kolkata"};
    const Links links{{"Asia/Calcutta", "Asia/Kolkata"},
                      {"Asia/Katmandu", "Asia/Kathmandu"},
                      {"US/Eastern", "America/New_York"},
                      {"Old/Eastern", "America/New_York"},
                      {"Old/Place", "Nowhere/Else"}};
    QTest::newRow("link lists its zone")
        << "calcutta" << CityList{} << Names{} << zones << links
        << QStringList{u"iana:Asia/Kolkata @ Asia/Calcutta" + dot + "Asia/Kolkata"};
    QTest::newRow("zone under its own name when both match")
        << "asia/kat" << CityList{} << Names{} << zones << links
        << QStringList{"iana:Asia/Kathmandu @ Asia/Kathmandu"};
    QTest::newRow("two links, one zone")
        << "eastern" << CityList{} << Names{} << zones << links
        << QStringList{u"iana:America/New_York @ Old/Eastern" + dot + "America/New_York"};
    QTest::newRow("link to a listed city's zone")
        << "calcutta" << CityList{kolkata} << Names{{"Calcutta"}} << zones << links
        << QStringList{kolkata.id() + u" @ Calcutta" + dot + "India" + dot + "Asia/Kolkata"};
    QTest::newRow("link to an unknown zone")
        << "place" << CityList{} << Names{} << zones << links << QStringList{};
}

void TestZoneSearch::otherNamesAndLinks()
{
    QFETCH(QString, query);
    QFETCH(CityList, cities);
    QFETCH(QList<QStringList>, otherNames);
    QFETCH(QStringList, identifiers);
    QFETCH(LinkTargets, links);
    QFETCH(QStringList, expected);

    CityOtherNames names;
    for (qsizetype city = 0; city < otherNames.size(); ++city) {
        for (const QString &name : otherNames[city])
            names.append(city, name);
    }
    QStringList found;
    for (const ZoneSearchResult &result : ZoneSearch::search(
             query, FoldedCities(cities, names), FoldedIdentifiers(identifiers, links))) {
        found.append(result.id + u" @ " + result.subtitle);
        QCOMPARE(result.title, result.id.startsWith(u"iana:") ? cityPart(result.identifier)
                                                              : result.id.section(u'|', 0, 0));
    }
    QCOMPARE(found, expected);
}

QTEST_GUILESS_MAIN(TestZoneSearch)
#include "tst_zonesearch.moc"
