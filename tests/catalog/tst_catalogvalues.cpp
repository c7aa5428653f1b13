#include "CityEntry.h"
#include "ZoneSearchResult.h"

#include <QTest>

Q_DECLARE_METATYPE(CityEntry)
Q_DECLARE_METATYPE(ZoneSearchResult)

// Every search test compares with ==, so equality must notice every field.
class TestCatalogValues final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cityEquality_data();
    void cityEquality();
    void resultEquality_data();
    void resultEquality();
};

void TestCatalogValues::cityEquality_data()
{
    QTest::addColumn<CityEntry>("a");
    QTest::addColumn<CityEntry>("b");
    QTest::addColumn<bool>("equal");
    const CityEntry oslo{"Oslo", "Europe/Oslo", "Norway"};
    QTest::newRow("same") << oslo << CityEntry{"Oslo", "Europe/Oslo", "Norway"} << true;
    QTest::newRow("name") << oslo << CityEntry{"oslo", "Europe/Oslo", "Norway"} << false;
    QTest::newRow("identifier") << oslo << CityEntry{"Oslo", "Europe/Paris", "Norway"} << false;
    QTest::newRow("country") << oslo << CityEntry{"Oslo", "Europe/Oslo", "Spain"} << false;
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
