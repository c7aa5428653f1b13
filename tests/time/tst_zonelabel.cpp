#include "TimeZoneDatabase.h"
#include "ZoneLabel.h"

#include <QTest>

class TestZoneLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableHoldsTheHandPickedCodes_data();
    void tableHoldsTheHandPickedCodes();
    void tableSize();
    void tableDiffersFromTheRuleWhereItShould();
    void tableKeysAreRealZones();

    void fallbackCode_data();
    void fallbackCode();

    void shortCode_data();
    void shortCode();
};

void TestZoneLabel::tableHoldsTheHandPickedCodes_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("code");

    QTest::newRow("first entry") << "America/New_York"
                                 << "NYC";
    QTest::newRow("two letters") << "America/Los_Angeles"
                                 << "LA";
    QTest::newRow("three-level name") << "America/Argentina/Buenos_Aires"
                                      << "BUE";
    QTest::newRow("old airport code") << "Europe/Kyiv"
                                      << "IEV";
    QTest::newRow("airport, not city") << "Asia/Jerusalem"
                                       << "TLV";
    QTest::newRow("capital for the zone") << "Asia/Kolkata"
                                          << "DEL";
    QTest::newRow("Lagos") << "Africa/Lagos"
                           << "LOS";
    QTest::newRow("Fiji") << "Pacific/Fiji"
                          << "SUV";
    QTest::newRow("UTC") << "UTC"
                         << "UTC";
    QTest::newRow("last entry") << "GMT"
                                << "GMT";
}

void TestZoneLabel::tableHoldsTheHandPickedCodes()
{
    QFETCH(QString, identifier);
    QFETCH(QString, code);

    QCOMPARE(ZoneLabel::shortCodes().value(identifier), code);
}

void TestZoneLabel::tableSize()
{
    QCOMPARE(ZoneLabel::shortCodes().size(), 74);
    // The table is built once and handed out by reference.
    QCOMPARE(&ZoneLabel::shortCodes(), &ZoneLabel::shortCodes());
}

void TestZoneLabel::tableDiffersFromTheRuleWhereItShould()
{
    const QHash<QString, QString> &codes = ZoneLabel::shortCodes();
    int differing = 0;
    for (auto it = codes.cbegin(); it != codes.cend(); ++it) {
        QVERIFY2(!it.value().isEmpty() && it.value().size() <= 3, qPrintable(it.key()));
        if (ZoneLabel::fallbackCode(it.key()) != it.value())
            ++differing;
    }
    QCOMPARE(differing, 39);
    QCOMPARE(ZoneLabel::fallbackCode("America/New_York"), QStringLiteral("NEW"));
    QCOMPARE(ZoneLabel::fallbackCode("Asia/Ho_Chi_Minh"), QStringLiteral("HOC"));
    QCOMPARE(ZoneLabel::fallbackCode("Pacific/Fiji"), QStringLiteral("FIJ"));
    QCOMPARE(ZoneLabel::fallbackCode("Africa/Lagos"), QStringLiteral("LAG"));
}

void TestZoneLabel::tableKeysAreRealZones()
{
    const QHash<QString, QString> &codes = ZoneLabel::shortCodes();
    for (auto it = codes.cbegin(); it != codes.cend(); ++it)
        QVERIFY2(TimeZoneDatabase::resolves(it.key()), qPrintable(it.key()));
}

void TestZoneLabel::fallbackCode_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("expected");

    QTest::newRow("first three letters") << "Pacific/Port_Moresby"
                                         << "POR";
    QTest::newRow("underscores dropped") << "America/Los_Angeles"
                                         << "LOS";
    QTest::newRow("underscore between short words") << "Asia/Ho_Chi_Minh"
                                                    << "HOC";
    QTest::newRow("last of three pieces") << "America/Argentina/Buenos_Aires"
                                          << "BUE";
    QTest::newRow("signs kept") << "Etc/GMT+10"
                                << "GMT";
    QTest::newRow("no area") << "Zulu"
                             << "ZUL";
    QTest::newRow("trailing slash") << "Europe/Stockholm/"
                                    << "STO";
    QTest::newRow("two letters") << "Foo/ab"
                                 << "AB";
    QTest::newRow("two letters after underscore removal") << "Foo/a_b"
                                                          << "AB";
    QTest::newRow("one letter") << "Foo/x"
                                << "X";
    QTest::newRow("empty") << ""
                           << "???";
    QTest::newRow("only underscores and spaces") << "Foo/_ _"
                                                 << "???";
    QTest::newRow("only a slash") << "/"
                                  << "/";
    QTest::newRow("only slashes") << "///"
                                  << "///";
    QTest::newRow("other white space kept") << "Foo/a\tb"
                                            << "A\tB";
    QTest::newRow("combining mark counts once") << "Foo/e\u0301cole"
                                                << "E\u0301CO";
    QTest::newRow("two letters with a mark") << "Foo/a\u0308b"
                                             << "A\u0308B";
    QTest::newRow("flag counts once") << "Foo/\U0001F1F8\U0001F1EAab"
                                      << "\U0001F1F8\U0001F1EAAB";
    QTest::newRow("upper-casing can lengthen") << "Foo/\u00DFx"
                                               << "SSX";
    QTest::newRow("non-Latin letters") << "Foo/\u043A\u0438\u0457\u0432"
                                       << "\u041A\u0418\u0407";
}

void TestZoneLabel::fallbackCode()
{
    QFETCH(QString, identifier);
    QFETCH(QString, expected);

    QCOMPARE(ZoneLabel::fallbackCode(identifier), expected);
}

void TestZoneLabel::shortCode_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("expected");

    QTest::newRow("table, two letters") << "America/Los_Angeles"
                                        << "LA";
    QTest::newRow("table, agrees with the rule") << "Europe/London"
                                                 << "LON";
    QTest::newRow("table wins over the rule") << "Asia/Kolkata"
                                              << "DEL";
    QTest::newRow("not in the table") << "Pacific/Port_Moresby"
                                      << "POR";
    QTest::newRow("old name of a table zone") << "Europe/Kiev"
                                              << "KIE";
    QTest::newRow("lookup is case-sensitive") << "europe/london"
                                              << "LON";
    QTest::newRow("wrong case misses the table") << "america/los_angeles"
                                                 << "LOS";
    QTest::newRow("empty") << ""
                           << "???";
}

void TestZoneLabel::shortCode()
{
    QFETCH(QString, identifier);
    QFETCH(QString, expected);

    QCOMPARE(ZoneLabel::shortCode(identifier), expected);
}

QTEST_GUILESS_MAIN(TestZoneLabel)
#include "tst_zonelabel.moc"
