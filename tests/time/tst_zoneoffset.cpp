#include "ZoneOffset.h"

#include <QTest>

#include <limits>

namespace {

QDateTime utc(int year, int month, int day, int hour, int minute)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), QTimeZone::utc());
}

} // namespace

class TestZoneOffset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatOffsetHours_data();
    void formatOffsetHours();
    void julianDayAgreesWithTheCalendar();
    void info_data();
    void info();
    void onlyTheInstantMatters();
    void subtitleWithoutAbbreviation();
};

void TestZoneOffset::formatOffsetHours_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero") << qint64(0) << "local";
    QTest::newRow("half hour behind") << qint64(-16200) << "-4h30m";
    QTest::newRow("quarter hour") << qint64(20700) << "+5h45m";
    QTest::newRow("whole hour") << qint64(3600) << "+1h";
    QTest::newRow("under an hour behind") << qint64(-1800) << "-0h30m";
    QTest::newRow("seconds only") << qint64(45) << "+0h";
    QTest::newRow("seconds only behind") << qint64(-59) << "-0h";
    QTest::newRow("one minute and a half") << qint64(90) << "+0h01m";
    QTest::newRow("most negative") << std::numeric_limits<qint64>::min() << "-2562047788015215h30m";
}

void TestZoneOffset::formatOffsetHours()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, expected);

    QCOMPARE(ZoneOffset::formatOffsetHours(seconds), expected);
}

void TestZoneOffset::julianDayAgreesWithTheCalendar()
{
    QCOMPARE(ZoneOffset::julianDay(2000, 1, 1), qint64(2451545));
    // QDate counts Julian days of the proleptic Gregorian calendar too.
    for (QDate date(1600, 1, 1); date.year() < 2400; date = date.addDays(17))
        QCOMPARE(ZoneOffset::julianDay(date.year(), date.month(), date.day()), date.toJulianDay());
}

void TestZoneOffset::info_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<QDateTime>("at");
    QTest::addColumn<QString>("subtitle");

    // 20:00 on Monday 15 January 2024 in New York.
    const QDateTime nyEvening = utc(2024, 1, 16, 1, 0);
    const QByteArray newYork("America/New_York");
    QTest::newRow("the local zone itself") << newYork << newYork << nyEvening << "EST \u00B7 local";
    QTest::newRow("ahead, next day")
        << QByteArray("Asia/Tokyo") << newYork << nyEvening << "JST \u00B7 +14h, tomorrow";
    QTest::newRow("behind, previous day")
        << newYork << QByteArray("Asia/Tokyo") << nyEvening << "EST \u00B7 -14h, yesterday";
    QTest::newRow("ahead, same day")
        << QByteArray("Europe/London") << newYork << utc(2024, 1, 15, 14, 0) << "GMT \u00B7 +5h";
    // 23:30 on 31 December in London; two hours ahead it is already the new year.
    QTest::newRow("across the year end")
        << QByteArray("Europe/Athens") << QByteArray("Europe/London") << utc(2023, 12, 31, 23, 30)
        << "EET \u00B7 +2h, tomorrow";
    // 23:00 on 15 January at UTC-12 is 01:00 on 17 January at UTC+14.
    QTest::newRow("two days ahead") << QByteArray("Pacific/Kiritimati") << QByteArray("Etc/GMT+12")
                                    << utc(2024, 1, 16, 11, 0) << "+14 \u00B7 +26h, +2 days";
    QTest::newRow("two days behind") << QByteArray("Etc/GMT+12") << QByteArray("Pacific/Kiritimati")
                                     << utc(2024, 1, 16, 11, 0) << "-12 \u00B7 -26h, -2 days";
    QTest::newRow("one day apart at the widest gap's edge")
        << QByteArray("Pacific/Kiritimati") << QByteArray("Etc/GMT+12") << utc(2024, 1, 16, 9, 0)
        << "+14 \u00B7 +26h, tomorrow";

    // New York seen from Berlin: the United States moves its clocks two
    // to three weeks before Europe does.
    const QByteArray berlin("Europe/Berlin");
    QTest::newRow("winter") << newYork << berlin << utc(2024, 1, 15, 12, 0) << "EST \u00B7 -6h";
    QTest::newRow("between the spring changes")
        << newYork << berlin << utc(2024, 3, 20, 12, 0) << "EDT \u00B7 -5h";
    QTest::newRow("summer") << newYork << berlin << utc(2024, 7, 1, 12, 0) << "EDT \u00B7 -6h";
}

void TestZoneOffset::info()
{
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, local);
    QFETCH(QDateTime, at);
    QFETCH(QString, subtitle);

    QCOMPARE(ZoneOffset::info(QTimeZone(zone), at, QTimeZone(local)).subtitle(), subtitle);
}

void TestZoneOffset::onlyTheInstantMatters()
{
    const QTimeZone tokyo("Asia/Tokyo");
    const QTimeZone newYork("America/New_York");
    const QDateTime inUtc = utc(2024, 1, 16, 1, 0);
    const ZoneOffsetInfo expected = ZoneOffset::info(tokyo, inUtc, newYork);
    QVERIFY(expected.relativeDay);
    QCOMPARE(ZoneOffset::info(tokyo, inUtc.toTimeZone(newYork), newYork), expected);
    QCOMPARE(ZoneOffset::info(tokyo, inUtc.toOffsetFromUtc(-3600), newYork), expected);
}

void TestZoneOffset::subtitleWithoutAbbreviation()
{
    QCOMPARE((ZoneOffsetInfo{0, QString(), std::nullopt}.subtitle()), QStringLiteral("local"));
    QCOMPARE((ZoneOffsetInfo{-3600, QString(), QStringLiteral("yesterday")}.subtitle()),
             QStringLiteral("-1h, yesterday"));
}

QTEST_GUILESS_MAIN(TestZoneOffset)
#include "tst_zoneoffset.moc"
