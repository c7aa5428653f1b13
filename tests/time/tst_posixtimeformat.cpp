#include "PosixTimeFormat.h"

#include <QLocale>
#include <QTest>

namespace {

QDateTime utc(int year, int month, int day, int hour, int minute, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
}

} // namespace

class TestPosixTimeFormat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void format_data();
    void format();
    void weekdays_data();
    void weekdays();
    void onlyTheInstantMatters();
    void invalidInputGivesNothing();
    void ignoresTheUserLocale_data();
    void ignoresTheUserLocale();
};

void TestPosixTimeFormat::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void TestPosixTimeFormat::format_data()
{
    QTest::addColumn<QDateTime>("instant");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<QString>("expected");

    // 01:00:07 UTC on Tuesday 16 January 2024 is 20:00:07 on Monday in New York.
    const QDateTime evening = utc(2024, 1, 16, 1, 0, 7);
    QTest::newRow("24h with seconds") << evening << QByteArray("America/New_York") << "HH:mm:ss"
                                      << "20:00:07";
    QTest::newRow("24h padded") << utc(2024, 1, 15, 9, 5, 7) << QByteArray("UTC") << "HH:mm"
                                << "09:05";
    QTest::newRow("24h unpadded") << utc(2024, 1, 15, 9, 5, 7) << QByteArray("UTC") << "H:m:s"
                                  << "9:5:7";
    QTest::newRow("half-hour zone") << evening << QByteArray("Asia/Kolkata") << "HH:mm:ss"
                                    << "06:30:07";
    QTest::newRow("quarter-hour zone") << evening << QByteArray("Asia/Kathmandu") << "HH:mm"
                                       << "06:45";
    QTest::newRow("12h evening") << evening << QByteArray("America/New_York") << "h:mma"
                                 << "8:00PM";
    QTest::newRow("12h after midnight") << utc(2024, 1, 15, 0, 30) << QByteArray("UTC") << "h:mma"
                                        << "12:30AM";
    QTest::newRow("12h noon") << utc(2024, 1, 15, 12, 0) << QByteArray("UTC") << "h:mma"
                              << "12:00PM";
    QTest::newRow("12h before noon") << utc(2024, 1, 15, 11, 59) << QByteArray("UTC") << "h:mma"
                                     << "11:59AM";
    QTest::newRow("12h one o'clock") << utc(2024, 1, 15, 13, 5) << QByteArray("UTC") << "h:mm a"
                                     << "1:05 PM";
    QTest::newRow("12h padded") << utc(2024, 1, 15, 21, 5) << QByteArray("UTC") << "hh:mm"
                                << "09:05";
    QTest::newRow("weekday and time") << evening << QByteArray("Asia/Tokyo") << "EEE HH:mm"
                                      << "Tue 10:00";
    QTest::newRow("full weekday") << evening << QByteArray("Asia/Tokyo") << "EEEE"
                                  << "Tuesday";
    QTest::newRow("quoted text") << evening << QByteArray("UTC") << "'at' HH"
                                 << "at 01";
    QTest::newRow("quoted letters are not fields") << evening << QByteArray("UTC") << "'HH' HH"
                                                   << "HH 01";
    QTest::newRow("doubled quote") << evening << QByteArray("UTC") << "HH''mm"
                                   << "01'00";
    QTest::newRow("summer time") << utc(2024, 7, 1, 12, 0) << QByteArray("America/New_York")
                                 << "HH:mm"
                                 << "08:00";
    QTest::newRow("empty pattern") << evening << QByteArray("UTC") << ""
                                   << "";
}

void TestPosixTimeFormat::format()
{
    QFETCH(QDateTime, instant);
    QFETCH(QByteArray, zone);
    QFETCH(QString, pattern);
    QFETCH(QString, expected);

    const QTimeZone timeZone(zone);
    QVERIFY(timeZone.isValid());
    QCOMPARE(PosixTimeFormat::format(instant, timeZone, pattern), expected);
}

void TestPosixTimeFormat::weekdays_data()
{
    QTest::addColumn<int>("day");
    QTest::addColumn<QString>("expected");

    // 15 January 2024 was a Monday.
    const char *names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    for (int i = 0; i < 7; ++i)
        QTest::newRow(names[i]) << 15 + i << QString::fromLatin1(names[i]);
}

void TestPosixTimeFormat::weekdays()
{
    QFETCH(int, day);
    QFETCH(QString, expected);

    QCOMPARE(PosixTimeFormat::format(utc(2024, 1, day, 12, 0), QTimeZone::utc(), u"EEE"), expected);
}

void TestPosixTimeFormat::onlyTheInstantMatters()
{
    const QDateTime inUtc = utc(2024, 1, 16, 1, 0, 7);
    const QDateTime withOffset = inUtc.toOffsetFromUtc(-3 * 3600);
    const QDateTime inTokyo = inUtc.toTimeZone(QTimeZone("Asia/Tokyo"));
    QCOMPARE_NE(withOffset.time(), inUtc.time());

    const QTimeZone newYork("America/New_York");
    for (const QDateTime &instant : {inUtc, withOffset, inTokyo})
        QCOMPARE(PosixTimeFormat::format(instant, newYork, u"EEE HH:mm:ss"),
                 QStringLiteral("Mon 20:00:07"));
}

void TestPosixTimeFormat::invalidInputGivesNothing()
{
    QCOMPARE(PosixTimeFormat::format(QDateTime(), QTimeZone::utc(), u"HH:mm"), QString());
    QCOMPARE(PosixTimeFormat::format(utc(2024, 1, 15, 9, 5), QTimeZone(), u"HH:mm"), QString());
}

void TestPosixTimeFormat::ignoresTheUserLocale_data()
{
    QTest::addColumn<QLocale>("locale");

    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
    // Arabic writes its own digits and would show any locale-driven formatting.
    QTest::newRow("Arabic") << QLocale(QLocale::Arabic, QLocale::Egypt);
    QTest::newRow("Japanese") << QLocale(QLocale::Japanese, QLocale::Japan);
}

void TestPosixTimeFormat::ignoresTheUserLocale()
{
    QFETCH(QLocale, locale);

    QLocale::setDefault(locale);
    const QDateTime instant = utc(2024, 1, 16, 13, 5, 7);
    QCOMPARE(PosixTimeFormat::format(instant, QTimeZone::utc(), u"EEE h:mma HH:mm:ss"),
             QStringLiteral("Tue 1:05PM 13:05:07"));
}

QTEST_GUILESS_MAIN(TestPosixTimeFormat)
#include "tst_posixtimeformat.moc"
