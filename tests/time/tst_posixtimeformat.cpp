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
    void format_data();
    void format();
    void onlyTheInstantMatters();
    void invalidInputGivesNothing();
    void ignoresTheUserLocale();
};

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
    QTest::newRow("24h unpadded") << utc(2024, 1, 15, 9, 5, 7) << QByteArray("UTC") << "H:m:s"
                                  << "9:5:7";
    QTest::newRow("quarter-hour zone") << evening << QByteArray("Asia/Kathmandu") << "HH:mm"
                                       << "06:45";
    QTest::newRow("12h padded") << utc(2024, 1, 15, 21, 5) << QByteArray("UTC") << "hh:mm"
                                << "09:05";
    QTest::newRow("Sunday") << utc(2024, 1, 21, 12, 0) << QByteArray("UTC") << "EEE"
                            << "Sun";
    QTest::newRow("full weekday") << evening << QByteArray("Asia/Tokyo") << "EEEE"
                                  << "Tuesday";
    QTest::newRow("quoted letters are not fields") << evening << QByteArray("UTC") << "'at HH' HH"
                                                   << "at HH 01";
    QTest::newRow("doubled quote") << evening << QByteArray("UTC") << "HH''mm"
                                   << "01'00";
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

void TestPosixTimeFormat::onlyTheInstantMatters()
{
    const QDateTime inUtc = utc(2024, 1, 16, 1, 0, 7);
    const QTimeZone newYork("America/New_York");
    for (const QDateTime &instant :
         {inUtc, inUtc.toOffsetFromUtc(-3 * 3600), inUtc.toTimeZone(QTimeZone("Asia/Tokyo"))})
        QCOMPARE(PosixTimeFormat::format(instant, newYork, u"EEE HH:mm:ss"),
                 QStringLiteral("Mon 20:00:07"));
}

void TestPosixTimeFormat::invalidInputGivesNothing()
{
    QCOMPARE(PosixTimeFormat::format(QDateTime(), QTimeZone::utc(), u"HH:mm"), QString());
    QCOMPARE(PosixTimeFormat::format(utc(2024, 1, 15, 9, 5), QTimeZone(), u"HH:mm"), QString());
}

void TestPosixTimeFormat::ignoresTheUserLocale()
{
    // Arabic writes its own digits and would show any locale-driven formatting.
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
    const QString text = PosixTimeFormat::format(utc(2024, 1, 16, 13, 5, 7), QTimeZone::utc(),
                                                 u"EEE h:mma HH:mm:ss");
    QLocale::setDefault(QLocale::c());
    QCOMPARE(text, QStringLiteral("Tue 1:05PM 13:05:07"));
}

QTEST_GUILESS_MAIN(TestPosixTimeFormat)
#include "tst_posixtimeformat.moc"
