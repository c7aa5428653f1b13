#include "TimeZoneDatabase.h"
#include "ZoneLabel.h"

#include <QTest>

class TestZoneLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table();
    void fallbackCode_data();
    void fallbackCode();
    void shortCode_data();
    void shortCode();
};

void TestZoneLabel::table()
{
    const QHash<QString, QString> &codes = ZoneLabel::shortCodes();
    QCOMPARE(codes.size(), 74);
    int differing = 0;
    for (auto it = codes.cbegin(); it != codes.cend(); ++it) {
        QVERIFY2(TimeZoneDatabase::resolves(it.key()), qPrintable(it.key()));
        QVERIFY2(!it.value().isEmpty() && it.value().size() <= 3, qPrintable(it.key()));
        if (ZoneLabel::fallbackCode(it.key()) != it.value())
            ++differing;
    }
    QCOMPARE(differing, 39);
}

void TestZoneLabel::fallbackCode_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("expected");

    QTest::newRow("underscores dropped") << "Asia/Ho_Chi_Minh"
                                         << "HOC";
    QTest::newRow("last of three pieces") << "America/Argentina/Buenos_Aires"
                                          << "BUE";
    QTest::newRow("no area") << "Zulu"
                             << "ZUL";
    QTest::newRow("trailing slash") << "Europe/Stockholm/"
                                    << "STO";
    QTest::newRow("two letters after underscore removal") << "Foo/a_b"
                                                          << "AB";
    QTest::newRow("empty") << ""
                           << "???";
    QTest::newRow("only underscores and spaces") << "Foo/_ _"
                                                 << "???";
    QTest::newRow("only a slash") << "/"
                                  << "/";
    QTest::newRow("other white space kept") << "Foo/a\tb"
                                            << "A\tB";
    QTest::newRow("combining mark counts once") << "Foo/e\u0301cole"
                                                << "E\u0301CO";
    QTest::newRow("flag counts once") << "Foo/\U0001F1F8\U0001F1EAab"
                                      << "\U0001F1F8\U0001F1EAAB";
    QTest::newRow("upper-casing can lengthen") << "Foo/\u00DFx"
                                               << "SSX";
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

    QTest::newRow("first table entry") << "America/New_York"
                                       << "NYC";
    QTest::newRow("last table entry") << "GMT"
                                      << "GMT";
    QTest::newRow("table, two letters") << "America/Los_Angeles"
                                        << "LA";
    QTest::newRow("table wins over the rule") << "Asia/Kolkata"
                                              << "DEL";
    QTest::newRow("not in the table") << "Pacific/Port_Moresby"
                                      << "POR";
    QTest::newRow("old name of a table zone") << "Europe/Kiev"
                                              << "KIE";
    QTest::newRow("wrong case misses the table") << "america/los_angeles"
                                                 << "LOS";
}

void TestZoneLabel::shortCode()
{
    QFETCH(QString, identifier);
    QFETCH(QString, expected);

    QCOMPARE(ZoneLabel::shortCode(identifier), expected);
}

QTEST_GUILESS_MAIN(TestZoneLabel)
#include "tst_zonelabel.moc"
