#include "CityEntry.h"
#include "ZoneSearchResult.h"

#include <QTest>

Q_DECLARE_METATYPE(CityEntry)
Q_DECLARE_METATYPE(ZoneSearchResult)

class TestCatalogValues final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cityId_data();
    void cityId();
    void cityEquality_data();
    void cityEquality();
    void resultFromCity_data();
    void resultFromCity();
    void resultFromIdentifier_data();
    void resultFromIdentifier();
    void resultEquality_data();
    void resultEquality();
};

void TestCatalogValues::cityId_data()
{
    QTest::addColumn<CityEntry>("city");
    QTest::addColumn<QString>("expected");
    QTest::newRow("stockholm") << CityEntry{"Stockholm", "Europe/Stockholm", "Sweden"}
                               << "Stockholm|Europe/Stockholm|Sweden";
    QTest::newRow("fields in order") << CityEntry{"a", "b", "c"} << "a|b|c";
    QTest::newRow("empty fields") << CityEntry{} << "||";
    QTest::newRow("unicode kept") << CityEntry{"São Paulo", "America/Sao_Paulo", "Brasil"}
                                  << "São Paulo|America/Sao_Paulo|Brasil";
}

void TestCatalogValues::cityId()
{
    QFETCH(CityEntry, city);
    QFETCH(QString, expected);
    QCOMPARE(city.id(), expected);
}

void TestCatalogValues::cityEquality_data()
{
    QTest::addColumn<CityEntry>("a");
    QTest::addColumn<CityEntry>("b");
    QTest::addColumn<bool>("equal");
    const CityEntry cordobaAr{"Córdoba", "America/Argentina/Cordoba", "Argentina"};
    QTest::newRow("same") << cordobaAr << CityEntry{cordobaAr} << true;
    QTest::newRow("other country")
        << cordobaAr << CityEntry{"Córdoba", "America/Argentina/Cordoba", "Spain"} << false;
    QTest::newRow("other name") << cordobaAr
                                << CityEntry{"Cordoba", "America/Argentina/Cordoba", "Argentina"}
                                << false;
    QTest::newRow("other identifier")
        << cordobaAr << CityEntry{"Córdoba", "Europe/Madrid", "Argentina"} << false;
    QTest::newRow("fields swapped")
        << CityEntry{"x", "y", "z"} << CityEntry{"z", "y", "x"} << false;
    QTest::newRow("case matters") << CityEntry{"Oslo", "Europe/Oslo", "Norway"}
                                  << CityEntry{"oslo", "Europe/Oslo", "Norway"} << false;
}

void TestCatalogValues::cityEquality()
{
    QFETCH(CityEntry, a);
    QFETCH(CityEntry, b);
    QFETCH(bool, equal);
    QCOMPARE(a == b, equal);
    QCOMPARE(a.id() == b.id(), equal);
    QCOMPARE(qHash(a, 7) == qHash(b, 7), equal);
}

void TestCatalogValues::resultFromCity_data()
{
    QTest::addColumn<CityEntry>("city");
    QTest::addColumn<ZoneSearchResult>("expected");
    QTest::newRow("stockholm") << CityEntry{"Stockholm", "Europe/Stockholm", "Sweden"}
                               << ZoneSearchResult{"Stockholm|Europe/Stockholm|Sweden", "Stockholm",
                                                   QStringLiteral("Sweden \u00B7 Europe/Stockholm"),
                                                   "Europe/Stockholm"};
    // The title is the catalogue's name, not the city part of the identifier.
    QTest::newRow("name differs from zone")
        << CityEntry{"Bengaluru", "Asia/Kolkata", "India"}
        << ZoneSearchResult{"Bengaluru|Asia/Kolkata|India", "Bengaluru",
                            QStringLiteral("India \u00B7 Asia/Kolkata"), "Asia/Kolkata"};
}

void TestCatalogValues::resultFromCity()
{
    QFETCH(CityEntry, city);
    QFETCH(ZoneSearchResult, expected);
    QCOMPARE(ZoneSearchResult::fromCity(city), expected);
}

void TestCatalogValues::resultFromIdentifier_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<ZoneSearchResult>("expected");
    QTest::newRow("three pieces") << "America/Argentina/Buenos_Aires"
                                  << ZoneSearchResult{"iana:America/Argentina/Buenos_Aires",
                                                      "Buenos Aires",
                                                      "America/Argentina/Buenos_Aires",
                                                      "America/Argentina/Buenos_Aires"};
    QTest::newRow("single piece") << "UTC" << ZoneSearchResult{"iana:UTC", "UTC", "UTC", "UTC"};
    QTest::newRow("sign kept") << "Etc/GMT+10"
                               << ZoneSearchResult{"iana:Etc/GMT+10", "GMT+10", "Etc/GMT+10",
                                                   "Etc/GMT+10"};
}

void TestCatalogValues::resultFromIdentifier()
{
    QFETCH(QString, identifier);
    QFETCH(ZoneSearchResult, expected);
    QCOMPARE(ZoneSearchResult::fromIdentifier(identifier), expected);
}

void TestCatalogValues::resultEquality_data()
{
    QTest::addColumn<ZoneSearchResult>("a");
    QTest::addColumn<ZoneSearchResult>("b");
    QTest::addColumn<bool>("equal");
    const ZoneSearchResult base{"id", "title", "subtitle", "Europe/Oslo"};
    QTest::newRow("same") << base << ZoneSearchResult{base} << true;
    QTest::newRow("id") << base << ZoneSearchResult{"id2", "title", "subtitle", "Europe/Oslo"}
                        << false;
    QTest::newRow("title") << base << ZoneSearchResult{"id", "Title", "subtitle", "Europe/Oslo"}
                           << false;
    QTest::newRow("subtitle") << base << ZoneSearchResult{"id", "title", "sub", "Europe/Oslo"}
                              << false;
    QTest::newRow("identifier") << base << ZoneSearchResult{"id", "title", "subtitle", "UTC"}
                                << false;
    QTest::newRow("fields rotated")
        << ZoneSearchResult{"a", "b", "c", "d"} << ZoneSearchResult{"d", "a", "b", "c"} << false;
}

void TestCatalogValues::resultEquality()
{
    QFETCH(ZoneSearchResult, a);
    QFETCH(ZoneSearchResult, b);
    QFETCH(bool, equal);
    QCOMPARE(a == b, equal);
    QCOMPARE(qHash(a, 3) == qHash(b, 3), equal);
}

QTEST_APPLESS_MAIN(TestCatalogValues)
#include "tst_catalogvalues.moc"
