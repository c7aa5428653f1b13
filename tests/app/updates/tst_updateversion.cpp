#include "UpdateVersion.h"

#include <QTest>

class TestUpdateVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compare_data();
    void compare();
};

void TestUpdateVersion::compare_data()
{
    QTest::addColumn<QString>("left");
    QTest::addColumn<QString>("right");
    QTest::addColumn<int>("order"); // -1, 0, 1; 2 when not comparable

    QTest::newRow("numeric, not textual") << "0.10.0"
                                          << "0.9.9" << 1;
    QTest::newRow("missing parts are zero") << "1.2"
                                            << "1.2.0.0" << 0;
    QTest::newRow("longer is newer when not zero") << "1.2"
                                                   << "1.2.0.1" << -1;
    QTest::newRow("leading zeros") << "1.02"
                                   << "1.2" << 0;
    QTest::newRow("beyond 64 bits") << "1.99999999999999999999"
                                    << "1.99999999999999999998" << 1;
    QTest::newRow("empty") << ""
                           << "1.0" << 2;
    QTest::newRow("empty part") << "1..2"
                                << "1.0.2" << 2;
    QTest::newRow("letters") << "1.2-beta"
                             << "1.2" << 2;
    QTest::newRow("sign") << "-1.2"
                          << "1.2" << 2;
    QTest::newRow("blank inside") << "1. 2"
                                  << "1.2" << 2;
}

void TestUpdateVersion::compare()
{
    QFETCH(QString, left);
    QFETCH(QString, right);
    QFETCH(int, order);
    const auto forward = UpdateVersion::compare(left, right);
    const auto backward = UpdateVersion::compare(right, left);
    if (order == 2) {
        QVERIFY(!forward && !backward);
        QVERIFY(!UpdateVersion::isValid(left));
        return;
    }
    QVERIFY(forward && backward);
    QCOMPARE(*forward, order);
    QCOMPARE(*backward, -order);
}

QTEST_GUILESS_MAIN(TestUpdateVersion)
#include "tst_updateversion.moc"
