#include "CityCatalog.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "QuerySamples.h"
#include "TimeZoneDatabase.h"
#include "ZoneSearch.h"

#include <QFileInfo>
#include <QSet>
#include <QTest>

#include <algorithm>

namespace {

const QString shippedFile = QStringLiteral(ZONARA_SOURCE_DIR "/resources/data/cities.json");

} // namespace

class TestShippedCatalog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sharedIsTheShippedFile();
    void entriesAreClean();
    void identifiersAreCanonicalZones();
    void expectedPlaces_data();
    void expectedPlaces();
    void sameAsPlainSearch();

private:
    QList<CityEntry> m_cities;
};

void TestShippedCatalog::initTestCase()
{
    if (!QFileInfo::exists(shippedFile))
        QSKIP("resources/data/cities.json is not there yet; nothing to check");
    m_cities = CityCatalog::load(shippedFile);
    QVERIFY2(m_cities.size() > 1000, "the shipped catalogue does not decode, or is tiny");
}

void TestShippedCatalog::sharedIsTheShippedFile()
{
    if (qEnvironmentVariableIsSet(CityCatalog::fileVariable))
        QSKIP("ZONARA_CITIES_FILE overrides the installed location");
    // Found beside bin/ through the copy the build makes.
    QCOMPARE(CityCatalog::shared().size(), m_cities.size());
    QVERIFY(CityCatalog::shared() == m_cities);
}

void TestShippedCatalog::entriesAreClean()
{
    QStringList bad;
    for (const CityEntry &city : std::as_const(m_cities)) {
        if (city.name.isEmpty() || city.name != city.name.trimmed() || city.country.isEmpty() ||
            city.country != city.country.trimmed())
            bad.append(city.id());
    }
    QVERIFY2(bad.isEmpty(), qPrintable(bad.mid(0, 10).join(u", ")));
}

void TestShippedCatalog::identifiersAreCanonicalZones()
{
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    QVERIFY(!known.isEmpty());
    QSet<QString> identifiers;
    for (const CityEntry &city : std::as_const(m_cities))
        identifiers.insert(city.identifier);

    QStringList unresolved;
    QStringList notCanonical;
    for (const QString &identifier : std::as_const(identifiers)) {
        if (!TimeZoneDatabase::resolves(identifier))
            unresolved.append(identifier);
        // Links (Asia/Calcutta, Europe/Kiev, ...) are not among the known zones.
        else if (!std::binary_search(known.cbegin(), known.cend(), identifier))
            notCanonical.append(identifier);
    }
    QVERIFY2(unresolved.isEmpty(), qPrintable(unresolved.join(u", ")));
    QVERIFY2(notCanonical.isEmpty(), qPrintable(notCanonical.join(u", ")));
}

void TestShippedCatalog::expectedPlaces_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<int>("withinFirst");

    QTest::newRow("stockholm") << "stockholm"
                               << "Stockholm"
                               << "Europe/Stockholm" << 1;
    QTest::newRow("sweden") << "Sweden"
                            << "Stockholm"
                            << "Europe/Stockholm" << 1;
    QTest::newRow("new york") << "new york"
                              << "New York"
                              << "America/New_York" << 3;
    QTest::newRow("new_york") << "new_york"
                              << ""
                              << "America/New_York" << 1;
    QTest::newRow("bengaluru") << "Bengaluru"
                               << "Bengaluru"
                               << "Asia/Kolkata" << 1;
    QTest::newRow("são paulo") << "são paulo"
                               << "São Paulo"
                               << "America/Sao_Paulo" << 1;
    QTest::newRow("são paulo decomposed")
        << QStringView(u"SA\u0303O PAULO").toString() << "São Paulo"
        << "America/Sao_Paulo" << 1;
    QTest::newRow("zürich") << "zürich"
                            << "Zürich"
                            << "Europe/Zurich" << 1;
    QTest::newRow("tokyo") << " Tokyo "
                           << "Tokyo"
                           << "Asia/Tokyo" << 1;
}

void TestShippedCatalog::expectedPlaces()
{
    QFETCH(QString, query);
    QFETCH(QString, name);
    QFETCH(QString, identifier);
    QFETCH(int, withinFirst);

    const QList<ZoneSearchResult> results = ZoneSearch::search(
        query, FoldedCities(m_cities), FoldedIdentifiers(TimeZoneDatabase::knownIdentifiers()));
    const auto found = std::find_if(results.cbegin(), results.cend(), [&](const auto &result) {
        // The catalogue may say "New York City"; the start of the name is enough.
        return result.identifier == identifier && result.title.startsWith(name);
    });
    QVERIFY2(found != results.cend(), qPrintable(u"nothing for " + query));
    QVERIFY2(found - results.cbegin() < withinFirst,
             qPrintable(u"listed at position " + QString::number(found - results.cbegin())));
}

void TestShippedCatalog::sameAsPlainSearch()
{
    const QStringList &identifiers = TimeZoneDatabase::knownIdentifiers();
    QStringList queries{
        "s", "st", "sto", "stockholm", "new y", "america", QStringLiteral("\u00e4"), "são", "zzzz"};
    queries += QuerySamples::fromCatalog(m_cities, identifiers, 200, 7);

    const FoldedCities foldedCities(m_cities);
    const FoldedIdentifiers foldedIdentifiers(identifiers);
    int withResults = 0;
    for (const QString &query : std::as_const(queries)) {
        const QList<ZoneSearchResult> plain = ZoneSearch::search(query, m_cities, identifiers);
        QVERIFY2(plain == ZoneSearch::search(query, foldedCities, foldedIdentifiers),
                 qPrintable(u"query \"" % query % u'"'));
        withResults += plain.isEmpty() ? 0 : 1;
    }
    QVERIFY(withResults > queries.size() / 2);
}

QTEST_GUILESS_MAIN(TestShippedCatalog)
#include "tst_shippedcatalog.moc"
