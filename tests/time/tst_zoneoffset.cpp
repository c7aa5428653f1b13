#include "ZoneOffset.h"

#include <QTest>

#include <limits>

namespace {

QDateTime utc(int year, int month, int day, int hour, int minute)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), QTimeZone::utc());
}

} // namespace

Q_DECLARE_METATYPE(std::optional<QString>)

class TestZoneOffset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatOffsetHours_data();
    void formatOffsetHours();

    void julianDay_data();
    void julianDay();
    void julianDayAgreesWithTheCalendar();

    void info_data();
    void info();
    void offsetFollowsDaylightSaving_data();
    void offsetFollowsDaylightSaving();
    void onlyTheInstantMatters();

    void subtitle_data();
    void subtitle();
};

void TestZoneOffset::formatOffsetHours_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero") << qint64(0) << "local";
    QTest::newRow("half hour ahead") << qint64(19800) << "+5h30m";
    QTest::newRow("half hour behind") << qint64(-16200) << "-4h30m";
    QTest::newRow("quarter hour") << qint64(20700) << "+5h45m";
    QTest::newRow("whole hour") << qint64(3600) << "+1h";
    QTest::newRow("whole hours behind") << qint64(-18000) << "-5h";
    QTest::newRow("under an hour behind") << qint64(-1800) << "-0h30m";
    QTest::newRow("seconds only") << qint64(45) << "+0h";
    QTest::newRow("seconds only behind") << qint64(-59) << "-0h";
    QTest::newRow("one minute and a half") << qint64(90) << "+0h01m";
    QTest::newRow("seconds dropped") << qint64(3659) << "+1h";
    QTest::newRow("more than a day") << qint64(93600) << "+26h";
    QTest::newRow("more than a day behind") << qint64(-93600) << "-26h";
    QTest::newRow("two-digit minutes") << qint64(-(2 * 3600 + 50 * 60)) << "-2h50m";
    QTest::newRow("most negative") << std::numeric_limits<qint64>::min() << "-2562047788015215h30m";
}

void TestZoneOffset::formatOffsetHours()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, expected);

    QCOMPARE(ZoneOffset::formatOffsetHours(seconds), expected);
}

void TestZoneOffset::julianDay_data()
{
    QTest::addColumn<QDate>("earlier");
    QTest::addColumn<QDate>("later");
    QTest::addColumn<qint64>("days");

    QTest::newRow("year end") << QDate(2023, 12, 31) << QDate(2024, 1, 1) << qint64(1);
    QTest::newRow("leap day") << QDate(2024, 2, 28) << QDate(2024, 2, 29) << qint64(1);
    QTest::newRow("after leap day") << QDate(2024, 2, 29) << QDate(2024, 3, 1) << qint64(1);
    QTest::newRow("century, not leap") << QDate(1900, 2, 28) << QDate(1900, 3, 1) << qint64(1);
    QTest::newRow("400th year, leap") << QDate(2000, 2, 28) << QDate(2000, 3, 1) << qint64(2);
    QTest::newRow("month end") << QDate(2024, 4, 30) << QDate(2024, 5, 1) << qint64(1);
    QTest::newRow("leap year") << QDate(2024, 1, 1) << QDate(2025, 1, 1) << qint64(366);
    QTest::newRow("common year") << QDate(2023, 1, 1) << QDate(2024, 1, 1) << qint64(365);
}

void TestZoneOffset::julianDay()
{
    QFETCH(QDate, earlier);
    QFETCH(QDate, later);
    QFETCH(qint64, days);

    const qint64 a = ZoneOffset::julianDay(earlier.year(), earlier.month(), earlier.day());
    const qint64 b = ZoneOffset::julianDay(later.year(), later.month(), later.day());
    QCOMPARE(b - a, days);
}

void TestZoneOffset::julianDayAgreesWithTheCalendar()
{
    QCOMPARE(ZoneOffset::julianDay(2000, 1, 1), qint64(2451545));
    QCOMPARE(ZoneOffset::julianDay(1970, 1, 1), qint64(2440588));
    // QDate counts Julian days of the proleptic Gregorian calendar too.
    for (QDate date(1600, 1, 1); date.year() < 2400; date = date.addDays(17))
        QCOMPARE(ZoneOffset::julianDay(date.year(), date.month(), date.day()), date.toJulianDay());
}

void TestZoneOffset::info_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<QDateTime>("at");
    QTest::addColumn<qint64>("offsetSeconds");
    QTest::addColumn<QString>("abbreviation");
    QTest::addColumn<std::optional<QString>>("relativeDay");
    QTest::addColumn<QString>("subtitle");

    const std::optional<QString> none;
    // 20:00 on Monday 15 January 2024 in New York.
    const QDateTime nyEvening = utc(2024, 1, 16, 1, 0);

    QTest::newRow("the local zone itself")
        << QByteArray("America/New_York") << QByteArray("America/New_York") << nyEvening
        << qint64(0) << "EST" << none << "EST \u00B7 local";
    QTest::newRow("ahead, next day")
        << QByteArray("Asia/Tokyo") << QByteArray("America/New_York") << nyEvening << qint64(50400)
        << "JST" << std::optional<QString>("tomorrow") << "JST \u00B7 +14h, tomorrow";
    QTest::newRow("behind, previous day")
        << QByteArray("America/New_York") << QByteArray("Asia/Tokyo") << nyEvening << qint64(-50400)
        << "EST" << std::optional<QString>("yesterday") << "EST \u00B7 -14h, yesterday";
    QTest::newRow("ahead, same day")
        << QByteArray("Europe/London") << QByteArray("America/New_York") << utc(2024, 1, 15, 14, 0)
        << qint64(18000) << "GMT" << none << "GMT \u00B7 +5h";
    QTest::newRow("half hour") << QByteArray("Asia/Kolkata") << QByteArray("Europe/London")
                               << utc(2024, 1, 15, 12, 0) << qint64(19800) << "IST" << none
                               << "IST \u00B7 +5h30m";
    QTest::newRow("numeric abbreviation kept")
        << QByteArray("Asia/Dubai") << QByteArray("Europe/London") << utc(2024, 1, 15, 12, 0)
        << qint64(14400) << "+04" << none << "+04 \u00B7 +4h";
    QTest::newRow("quarter hour") << QByteArray("Asia/Kathmandu") << QByteArray("Europe/London")
                                  << utc(2024, 1, 15, 12, 0) << qint64(20700) << "+0545" << none
                                  << "+0545 \u00B7 +5h45m";
    // 23:30 on 31 December in London; two hours ahead it is already the new year.
    QTest::newRow("across the year end")
        << QByteArray("Europe/Athens") << QByteArray("Europe/London") << utc(2023, 12, 31, 23, 30)
        << qint64(7200) << "EET" << std::optional<QString>("tomorrow")
        << "EET \u00B7 +2h, tomorrow";
    // 23:00 on 15 January at UTC-12 is 01:00 on 17 January at UTC+14.
    QTest::newRow("two days ahead")
        << QByteArray("Pacific/Kiritimati") << QByteArray("Etc/GMT+12") << utc(2024, 1, 16, 11, 0)
        << qint64(93600) << "+14" << std::optional<QString>("+2 days")
        << "+14 \u00B7 +26h, +2 days";
    QTest::newRow("two days behind")
        << QByteArray("Etc/GMT+12") << QByteArray("Pacific/Kiritimati") << utc(2024, 1, 16, 11, 0)
        << qint64(-93600) << "-12" << std::optional<QString>("-2 days")
        << "-12 \u00B7 -26h, -2 days";
    QTest::newRow("one day apart at the widest gap's edge")
        << QByteArray("Pacific/Kiritimati") << QByteArray("Etc/GMT+12") << utc(2024, 1, 16, 9, 0)
        << qint64(93600) << "+14" << std::optional<QString>("tomorrow")
        << "+14 \u00B7 +26h, tomorrow";
}

void TestZoneOffset::info()
{
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, local);
    QFETCH(QDateTime, at);
    QFETCH(qint64, offsetSeconds);
    QFETCH(QString, abbreviation);
    QFETCH(std::optional<QString>, relativeDay);
    QFETCH(QString, subtitle);

    const ZoneOffsetInfo info = ZoneOffset::info(QTimeZone(zone), at, QTimeZone(local));
    QCOMPARE(info.offsetSeconds, offsetSeconds);
    QCOMPARE(info.abbreviation, abbreviation);
    QCOMPARE(info.relativeDay, relativeDay);
    QCOMPARE(info.subtitle(), subtitle);
}

void TestZoneOffset::offsetFollowsDaylightSaving_data()
{
    QTest::addColumn<QDateTime>("at");
    QTest::addColumn<QString>("subtitle");

    // New York seen from Berlin: the United States moves its clocks two
    // to three weeks before Europe does, in spring and in autumn.
    QTest::newRow("winter") << utc(2024, 1, 15, 12, 0) << "EST \u00B7 -6h";
    QTest::newRow("between the spring changes") << utc(2024, 3, 20, 12, 0) << "EDT \u00B7 -5h";
    QTest::newRow("summer") << utc(2024, 7, 1, 12, 0) << "EDT \u00B7 -6h";
    QTest::newRow("between the autumn changes") << utc(2024, 10, 30, 12, 0) << "EDT \u00B7 -5h";
}

void TestZoneOffset::offsetFollowsDaylightSaving()
{
    QFETCH(QDateTime, at);
    QFETCH(QString, subtitle);

    const QTimeZone newYork("America/New_York");
    const QTimeZone berlin("Europe/Berlin");
    QCOMPARE(ZoneOffset::info(newYork, at, berlin).subtitle(), subtitle);
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

void TestZoneOffset::subtitle_data()
{
    QTest::addColumn<QString>("abbreviation");
    QTest::addColumn<qint64>("offsetSeconds");
    QTest::addColumn<std::optional<QString>>("relativeDay");
    QTest::addColumn<QString>("expected");

    QTest::newRow("all parts") << "GMT+9" << qint64(32400) << std::optional<QString>("tomorrow")
                               << "GMT+9 \u00B7 +9h, tomorrow";
    QTest::newRow("nothing but the offset")
        << "" << qint64(0) << std::optional<QString>() << "local";
    QTest::newRow("no abbreviation, other day")
        << "" << qint64(-3600) << std::optional<QString>("yesterday") << "-1h, yesterday";
    QTest::newRow("abbreviation, same day")
        << "CET" << qint64(3600) << std::optional<QString>() << "CET \u00B7 +1h";
}

void TestZoneOffset::subtitle()
{
    QFETCH(QString, abbreviation);
    QFETCH(qint64, offsetSeconds);
    QFETCH(std::optional<QString>, relativeDay);
    QFETCH(QString, expected);

    const ZoneOffsetInfo info{offsetSeconds, abbreviation, relativeDay};
    QCOMPARE(info.subtitle(), expected);
}

QTEST_GUILESS_MAIN(TestZoneOffset)
#include "tst_zoneoffset.moc"
