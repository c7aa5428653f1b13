#include "AtQuery.h"
#include "TimeShift.h"

#include <QTest>

namespace {

QDateTime utc(const char *iso)
{
    return QDateTime::fromString(QString::fromLatin1(iso), Qt::ISODate)
        .toTimeZone(QTimeZone::utc());
}

} // namespace

Q_DECLARE_METATYPE(TimeShift::WallTime)

class TestTimeShift final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parseTime_data();
    void parseTime();
    void instantAt_data();
    void instantAt();
    void stepped_data();
    void stepped();
    void atQuery_data();
    void atQuery();
    void distanceText_data();
    void distanceText();
    void stripText();
    void copyAllText();
    void upcomingChange_data();
    void upcomingChange();
};

void TestTimeShift::parseTime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected"); // "HH:mm", or empty for no time
    const QList<std::pair<const char *, const char *>> rows{
        {"15:00", "15:00"}, {" 9:30 ", "09:30"}, {"0930", "09:30"},
        {"930", "09:30"},   {"15", "15:00"},     {"3pm", "15:00"},
        {"3 PM", "15:00"},  {"9:30a", "09:30"},  {"12 am", "00:00"},
        {"12pm", "12:00"},  {"3 p.m.", "15:00"}, {"7.45", "07:45"},
        {"24:00", ""},      {"13pm", ""},        {"0am", ""},
        {"9:60", ""},       {"noon", ""},        {"", ""},
        {"1:2", ""},        {"3pmx", ""},
    };
    for (const auto &[text, expected] : rows)
        QTest::newRow(text) << QString::fromLatin1(text) << QString::fromLatin1(expected);
}

void TestTimeShift::parseTime()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    const std::optional<QTime> time = TimeShift::parseTime(text);
    QCOMPARE(time ? time->toString(QStringLiteral("HH:mm")) : QString(), expected);
}

void TestTimeShift::instantAt_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QString>("time");
    QTest::addColumn<QDateTime>("expected");
    QTest::addColumn<TimeShift::WallTime>("wall");
    using enum TimeShift::WallTime;
    QTest::newRow("no change near") << QByteArray("Asia/Tokyo") << QDate(2026, 3, 10) << "15:00"
                                    << utc("2026-03-10T06:00:00Z") << once;
    // New York has moved its clocks, London not yet: five hours apart become four.
    QTest::newRow("between the US and EU changes")
        << QByteArray("America/New_York") << QDate(2026, 3, 10) << "09:00"
        << utc("2026-03-10T13:00:00Z") << once;
    QTest::newRow("skipped: the end of the gap")
        << QByteArray("America/New_York") << QDate(2026, 3, 8) << "02:30"
        << utc("2026-03-08T07:00:00Z") << skipped;
    QTest::newRow("skipped, half an hour of summer time")
        << QByteArray("Australia/Lord_Howe") << QDate(2026, 10, 4) << "02:10"
        << utc("2026-10-03T15:30:00Z") << skipped;
    QTest::newRow("shown twice: the earlier")
        << QByteArray("America/New_York") << QDate(2026, 11, 1) << "01:30"
        << utc("2026-11-01T05:30:00Z") << repeated;
    QTest::newRow("before the repeat, on its day")
        << QByteArray("America/New_York") << QDate(2026, 11, 1) << "00:30"
        << utc("2026-11-01T04:30:00Z") << once;
    QTest::newRow("shown twice in London") << QByteArray("Europe/London") << QDate(2026, 10, 25)
                                           << "01:15" << utc("2026-10-25T00:15:00Z") << repeated;
    QTest::newRow("just after the repeat") << QByteArray("Europe/London") << QDate(2026, 10, 25)
                                           << "02:00" << utc("2026-10-25T02:00:00Z") << once;
}

void TestTimeShift::instantAt()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDate, date);
    QFETCH(QString, time);
    QFETCH(QDateTime, expected);
    QFETCH(TimeShift::WallTime, wall);
    const QTimeZone timeZone(zone);
    const QDateTime instant =
        TimeShift::instantAt(date, QTime::fromString(time, QStringLiteral("HH:mm")), timeZone);
    QCOMPARE(instant, expected);
    QCOMPARE(TimeShift::wallTime(date, QTime::fromString(time, QStringLiteral("HH:mm")), timeZone),
             wall);
    // A typed time on the day a clock shows lands on that day in that zone.
    const QDateTime typed =
        TimeShift::instantForTypedTime(QDateTime(date, QTime(23, 59), timeZone),
                                       QTime::fromString(time, QStringLiteral("HH:mm")), timeZone);
    QCOMPARE(typed, expected);
}

void TestTimeShift::stepped_data()
{
    QTest::addColumn<QDateTime>("from");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<QDateTime>("expected");
    const QDateTime offGrid = utc("2026-03-02T14:07:33Z");
    QTest::newRow("later lands on the quarter") << offGrid << 15 << utc("2026-03-02T14:15:00Z");
    QTest::newRow("earlier lands on the quarter") << offGrid << -15 << utc("2026-03-02T14:00:00Z");
    QTest::newRow("an hour later") << offGrid << 60 << utc("2026-03-02T15:00:00Z");
    QTest::newRow("an hour earlier") << offGrid << -60 << utc("2026-03-02T13:15:00Z");
    QTest::newRow("on the grid a whole step")
        << utc("2026-03-02T23:45:00Z") << 30 << utc("2026-03-03T00:15:00Z");
    // Before the epoch the remainder is negative; the grid is still the same.
    QTest::newRow("before 1970") << utc("1969-12-31T23:50:00Z") << 15
                                 << utc("1970-01-01T00:00:00Z");
}

void TestTimeShift::stepped()
{
    QFETCH(QDateTime, from);
    QFETCH(int, minutes);
    QFETCH(QDateTime, expected);
    QCOMPARE(TimeShift::stepped(from, minutes), expected);
}

void TestTimeShift::atQuery_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("time"); // empty: not a query
    QTest::addColumn<QString>("city");
    QTest::newRow("time first") << QStringList{"15:00 Tokyo"} << "15:00"
                                << "Tokyo";
    QTest::newRow("city first, extra spaces") << QStringList{"  Tokyo   15:00 "} << "15:00"
                                              << "Tokyo";
    QTest::newRow("twelve-hour, city of two words") << QStringList{"3pm new york"} << "15:00"
                                                    << "new york";
    QTest::newRow("separate arguments, time of two words")
        << QStringList{"new", "york", "3", "pm"} << "15:00"
        << "new york";
    QTest::newRow("no city") << QStringList{"9:30a"} << "09:30"
                             << "";
    QTest::newRow("no time") << QStringList{"Tokyo"} << ""
                             << "";
    QTest::newRow("time in the middle") << QStringList{"New 15:00 York"} << ""
                                        << "";
}

void TestTimeShift::atQuery()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, time);
    QFETCH(QString, city);
    const std::optional<AtQuery> query = AtQuery::parse(arguments);
    QCOMPARE(query ? query->time.toString(u"HH:mm") : QString(), time);
    QCOMPARE(query ? query->city : QString(), city);
}

void TestTimeShift::distanceText_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("expected");
    QTest::newRow("under half a minute") << qint64(29) << "now";
    QTest::newRow("three hours") << qint64(3 * 3600) << "+3 h";
    QTest::newRow("back 45 minutes") << qint64(-45 * 60) << "-45 min";
    QTest::newRow("an hour and a half, rounded") << qint64(90 * 60 + 31) << "+1 h 31 min";
    QTest::newRow("days drop the minutes") << qint64((2 * 24 + 4) * 3600 + 600) << "+2 d 4 h";
    QTest::newRow("a whole day back") << qint64(-86400) << "-1 d";
}

void TestTimeShift::distanceText()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, expected);
    QCOMPARE(TimeShift::distanceText(seconds), expected);
}

void TestTimeShift::stripText()
{
    // Now is Tuesday 12:00 in Tokyo; three hours on, across midnight in UTC.
    const QDateTime now = utc("2026-03-10T03:00:00Z");
    const QDateTime moment = now.addSecs(3 * 3600);
    const QTimeZone tokyo("Asia/Tokyo");
    QCOMPARE(TimeShift::stripText(now, moment, QStringLiteral("Tokyo"), tokyo,
                                  MenuBarFormat::labelTime24),
             QStringLiteral("+3 h · Tue 15:00 in Tokyo"));
    QCOMPARE(TimeShift::stripText(now, now.addSecs(-13 * 3600), QStringLiteral("Tokyo"), tokyo,
                                  MenuBarFormat::labelTime12),
             QStringLiteral("-13 h · Mon 11:00p in Tokyo"));
}

void TestTimeShift::copyAllText()
{
    const auto zone = [](const char *identifier, std::optional<QString> nickname = {}) {
        return SavedZone{QUuid::createUuid(), QString::fromLatin1(identifier), nickname, false};
    };
    // Tuesday 03:00 in UTC, the local zone: Tokyo is on Tuesday too, New York still on Monday.
    QCOMPARE(TimeShift::copyAllText(
                 {zone("Asia/Tokyo"), zone("Nowhere/Atlantis"),
                  zone("Europe/London", QStringLiteral("Mum")), zone("America/New_York")},
                 MenuBarFormat::labelTime24, utc("2026-03-10T03:00:00Z"), QTimeZone::utc()),
             QStringLiteral("Tokyo 12:00 · Mum 03:00 · New York Mon 23:00"));
}

void TestTimeShift::upcomingChange_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDateTime>("from");
    QTest::addColumn<QString>("notice"); // empty: no change within 7 days
    // New York falls back at 06:00 UTC on Sunday 1 November 2026.
    QTest::newRow("seven days before")
        << QByteArray("America/New_York") << utc("2026-10-25T06:00:00Z") << "clocks go back Sun";
    QTest::newRow("a minute more than seven days")
        << QByteArray("America/New_York") << utc("2026-10-25T05:59:00Z") << "";
    QTest::newRow("eight days before")
        << QByteArray("America/New_York") << utc("2026-10-24T06:00:00Z") << "";
    QTest::newRow("spring in London")
        << QByteArray("Europe/London") << utc("2026-03-27T12:00:00Z") << "clocks go forward Sun";
    QTest::newRow("no daylight saving")
        << QByteArray("Asia/Tokyo") << utc("2026-10-30T00:00:00Z") << "";
}

void TestTimeShift::upcomingChange()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDateTime, from);
    QFETCH(QString, notice);
    const QTimeZone timeZone(zone);
    const std::optional<TimeShift::OffsetChange> change = TimeShift::upcomingChange(timeZone, from);
    QCOMPARE(change ? TimeShift::changeNotice(*change, timeZone) : QString(), notice);
}

QTEST_GUILESS_MAIN(TestTimeShift)
#include "tst_timeshift.moc"
