#include "CityCatalog.h"
#include "CityOtherNames.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "TimeZoneDatabase.h"
#include "ZoneSearch.h"

#include <QFileInfo>
#include <QSet>
#include <QTest>

#include <algorithm>
#include <tuple>

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
    void otherNames_data();
    void otherNames();

private:
    QList<CityEntry> m_cities;
    CityOtherNames m_otherNames;
};

void TestShippedCatalog::initTestCase()
{
    if (!QFileInfo::exists(shippedFile))
        QSKIP("resources/data/cities.json is not there yet; nothing to check");
    m_cities = CityCatalog::load(shippedFile, &m_otherNames);
    QVERIFY2(m_cities.size() > 1000, "the shipped catalogue does not decode, or is tiny");
}

void TestShippedCatalog::sharedIsTheShippedFile()
{
    if (qEnvironmentVariableIsSet(CityCatalog::fileVariable))
        QSKIP("ZONARA_CITIES_FILE overrides the installed location");
    // Found beside bin/ through the copy the build makes.
    QCOMPARE(CityCatalog::shared().size(), m_cities.size());
    QVERIFY(CityCatalog::shared() == m_cities);
    QVERIFY(CityCatalog::sharedOtherNames() == m_otherNames);
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

    static const FoldedCities cities(m_cities, m_otherNames);
    static const FoldedIdentifiers identifiers(TimeZoneDatabase::knownIdentifiers(),
                                               TimeZoneDatabase::linkTargets());
    const QList<ZoneSearchResult> results = ZoneSearch::search(query, cities, identifiers);
    const auto found = std::find_if(results.cbegin(), results.cend(), [&](const auto &result) {
        // The catalogue may say "New York City"; the start of the name is enough.
        return result.identifier == identifier && result.title.startsWith(name);
    });
    QVERIFY2(found != results.cend(), qPrintable(u"nothing for " + query));
    QVERIFY2(found - results.cbegin() < withinFirst,
             qPrintable(u"listed at position " + QString::number(found - results.cbegin())));
}

void TestShippedCatalog::otherNames_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<int>("withinFirst");

    // Typed on an English keyboard: the English name of a city the catalogue
    // lists under its own language's name...
    const QList<std::tuple<const char *, const char16_t *, const char *, int>> rows{
        {"Gothenburg", u"G\u00f6teborg", "Europe/Stockholm", 1},
        {"Cologne", u"K\u00f6ln", "Europe/Berlin", 1},
        {"Nuremberg", u"N\u00fcrnberg", "Europe/Berlin", 1},
        {"Antwerp", u"Antwerpen", "Europe/Brussels", 1},
        {"Bruges", u"Brugge", "Europe/Brussels", 1},
        {"Ghent", u"Gent", "Europe/Brussels", 1},
        {"Lucerne", u"Luzern", "Europe/Zurich", 1},
        {"Hanover", u"Hannover", "Europe/Berlin", 3},
        {"Marrakech", u"Marrakesh", "Africa/Casablanca", 1},
        {"Ulaanbaatar", u"Ulan Bator", "Asia/Ulaanbaatar", 1},
        // ...a name without its accents...
        {"Zurich", u"Z\u00fcrich", "Europe/Zurich", 3},
        {"Sao Paulo", u"S\u00e3o Paulo", "America/Sao_Paulo", 1},
        {"Krakow", u"Krak\u00f3w", "Europe/Warsaw", 1},
        {"Malmo", u"Malm\u00f6", "Europe/Stockholm", 1},
        {"Reykjavik", u"Reykjav\u00edk", "Atlantic/Reykjavik", 1},
        {"Bogota", u"Bogot\u00e1", "America/Bogota", 1},
        {"Montreal", u"Montr\u00e9al", "America/Toronto", 1},
        {"Quebec", u"Qu\u00e9bec", "America/Toronto", 1},
        {"Dusseldorf", u"D\u00fcsseldorf", "Europe/Berlin", 1},
        {"Koln", u"K\u00f6ln", "Europe/Berlin", 1},
        {"Goteborg", u"G\u00f6teborg", "Europe/Stockholm", 1},
        {"Medellin", u"Medell\u00edn", "America/Bogota", 1},
        {"Brasilia", u"Bras\u00edlia", "America/Sao_Paulo", 1},
        {"Asuncion", u"Asunci\u00f3n", "America/Asuncion", 1},
        {"Lodz", u"\u0141\u00f3d\u017a", "Europe/Warsaw", 3},
        {"Gdansk", u"Gda\u0144sk", "Europe/Warsaw", 1},
        {"Wroclaw", u"Wroc\u0142aw", "Europe/Warsaw", 1},
        {"Poznan", u"Pozna\u0144", "Europe/Warsaw", 1},
        {"Timisoara", u"Timi\u015foara", "Europe/Bucharest", 1},
        {"Izmir", u"\u0130zmir", "Europe/Istanbul", 1},
        {"Thessaloniki", u"Thessalon\u00edki", "Europe/Athens", 1},
        {"Cancun", u"Canc\u00fan", "America/Cancun", 1},
        {"Tromso", u"Troms\u00f8", "Europe/Oslo", 1},
        {"Aarhus", u"\u00c5rhus", "Europe/Copenhagen", 1},
        {"Jonkoping", u"J\u00f6nk\u00f6ping", "Europe/Stockholm", 1},
        {"Vasteras", u"V\u00e4ster\u00e5s", "Europe/Stockholm", 1},
        // ...or a name it had before.
        {"Bombay", u"Mumbai", "Asia/Kolkata", 1},
        {"Calcutta", u"Kolkata", "Asia/Kolkata", 1},
        {"Bangalore", u"Bengaluru", "Asia/Kolkata", 1},
        {"Saigon", u"Ho Chi Minh City", "Asia/Ho_Chi_Minh", 1},
        {"Peking", u"Beijing", "Asia/Shanghai", 1},
        {"Chungking", u"Chongqing", "Asia/Shanghai", 1},
        {"Kiev", u"Kyiv", "Europe/Kyiv", 1},
        {"Rangoon", u"Yangon", "Asia/Yangon", 1},
        {"Dacca", u"Dhaka", "Asia/Dhaka", 1},
        {"Godthab", u"Nuuk", "America/Nuuk", 1},
        {"Tiflis", u"Tbilisi", "Asia/Tbilisi", 1},
        // Old zone names list the zone they stand for.
        {"Asia/Calcutta", u"Kolkata", "Asia/Kolkata", 1},
        {"US/Eastern", u"New York", "America/New_York", 1},
        {"Europe/Kiev", u"Kyiv", "Europe/Kyiv", 1},
    };
    for (const auto &[query, name, identifier, withinFirst] : rows) {
        QTest::newRow(query) << QString::fromLatin1(query) << QString::fromUtf16(name)
                             << QString::fromLatin1(identifier) << withinFirst;
    }
}

void TestShippedCatalog::otherNames()
{
    // The same check as for the catalogue's own names.
    expectedPlaces();
}

QTEST_GUILESS_MAIN(TestShippedCatalog)
#include "tst_shippedcatalog.moc"
