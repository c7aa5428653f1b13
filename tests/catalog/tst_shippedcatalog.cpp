#include "CityCatalog.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
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
    void entriesAreCleanAndCanonical();
    void expectedPlaces_data();
    void expectedPlaces();

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

void TestShippedCatalog::entriesAreCleanAndCanonical()
{
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    QSet<QString> identifiers;
    QStringList bad;
    for (const CityEntry &city : std::as_const(m_cities)) {
        identifiers.insert(city.identifier);
        if (city.name.isEmpty() || city.name != city.name.trimmed() || city.country.isEmpty() ||
            city.country != city.country.trimmed())
            bad.append(city.id());
    }
    for (const QString &identifier : std::as_const(identifiers)) {
        // Links (Asia/Calcutta, Europe/Kiev, ...) resolve but are not among the known zones.
        if (!TimeZoneDatabase::resolves(identifier) ||
            !std::binary_search(known.cbegin(), known.cend(), identifier))
            bad.append(identifier);
    }
    QVERIFY2(bad.isEmpty(), qPrintable(bad.mid(0, 10).join(u", ")));
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

QTEST_GUILESS_MAIN(TestShippedCatalog)
#include "tst_shippedcatalog.moc"
