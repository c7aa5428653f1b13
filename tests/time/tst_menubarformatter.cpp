#include "MenuBarFormatter.h"

#include <QLocale>
#include <QTest>

Q_DECLARE_METATYPE(MenuBarFormat)

namespace {

QDateTime utc(int year, int month, int day, int hour, int minute, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
}

SavedZone zone(const char *identifier, std::optional<QString> customLabel = std::nullopt,
               bool isPinned = true)
{
    return SavedZone{QUuid::createUuid(), QString::fromUtf8(identifier), std::move(customLabel),
                     isPinned};
}

// Monday 15 January 2024 at 20:00:07 in New York (01:00:07 on Tuesday in UTC).
const QDateTime mondayEvening = utc(2024, 1, 16, 1, 0, 7);
const QTimeZone newYork("America/New_York");

QList<SavedZone> exampleZones()
{
    return {zone("America/New_York"), zone("Europe/London"),
            zone("Asia/Tokyo", QStringLiteral("Tokyo office"))};
}

} // namespace

class TestMenuBarFormatter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void twelveHourTime_data();
    void twelveHourTime();
    void workedExample_data();
    void workedExample();
    void string_data();
    void string();
    void ignoresTheUserLocale();
};

void TestMenuBarFormatter::twelveHourTime_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QString>("expected");

    QTest::newRow("half past midnight") << utc(2024, 1, 15, 0, 30) << "12:30a";
    QTest::newRow("last minute of the morning") << utc(2024, 1, 15, 11, 59) << "11:59a";
    QTest::newRow("noon") << utc(2024, 1, 15, 12, 0) << "12:00p";
}

void TestMenuBarFormatter::twelveHourTime()
{
    QFETCH(QDateTime, date);
    QFETCH(QString, expected);

    QCOMPARE(MenuBarFormatter::timeString(MenuBarFormat::labelTime12, date, QTimeZone::utc()),
             expected);
}

void TestMenuBarFormatter::workedExample_data()
{
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("guide"); // the widest the line can take in that format

    QTest::newRow("labelTime24") << MenuBarFormat::labelTime24
                                 << "NYC 20:00  LON 01:00  Tokyo office 10:00"
                                 << "NYC 00:00  LON 00:00  Tokyo office 00:00";
    QTest::newRow("labelTime12") << MenuBarFormat::labelTime12
                                 << "NYC 8:00p  LON 1:00a  Tokyo office 10:00a"
                                 << "NYC 00:00p  LON 00:00p  Tokyo office 00:00p";
    QTest::newRow("timeOnly24") << MenuBarFormat::timeOnly24 << "20:00  01:00  10:00"
                                << "00:00  00:00  00:00";
    QTest::newRow("labelDayTime24")
        << MenuBarFormat::labelDayTime24 << "NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00"
        << "NYC Wed 00:00  LON Wed 00:00  Tokyo office Wed 00:00";
    QTest::newRow("labelTime24Seconds")
        << MenuBarFormat::labelTime24Seconds << "NYC 20:00:07  LON 01:00:07  Tokyo office 10:00:07"
        << "NYC 00:00:00  LON 00:00:00  Tokyo office 00:00:00";
}

void TestMenuBarFormatter::workedExample()
{
    QFETCH(MenuBarFormat, format);
    QFETCH(QString, line);
    QFETCH(QString, guide);

    // Unpinned and unknown zones take no room in the line, nor in its guide.
    const QList<SavedZone> zones =
        exampleZones() +
        QList<SavedZone>{zone("Europe/Paris", std::nullopt, false), zone("Nowhere/Atlantis")};
    QCOMPARE(MenuBarFormatter::string(zones, format, mondayEvening, newYork), line);
    QCOMPARE(MenuBarFormatter::guide(zones, format), guide);
}

void TestMenuBarFormatter::string_data()
{
    QTest::addColumn<QList<SavedZone>>("zones");
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QByteArray>("local");

    // All rows at Monday 20:00:07 in New York, the local zone unless a row says otherwise.
    QTest::newRow("blank nickname falls back to the code")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("  "))} << MenuBarFormat::labelTime24
        << "TYO 10:00" << QByteArray();
    QTest::newRow("nickname is trimmed")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("\n Home\t "))}
        << MenuBarFormat::labelTime24 << "Home 10:00" << QByteArray();
    QTest::newRow("old zone name still shown")
        << QList<SavedZone>{zone("Europe/Kiev")} << MenuBarFormat::labelTime24 << "KIE 03:00"
        << QByteArray();
    QTest::newRow("a day behind shows the earlier day")
        << QList<SavedZone>{zone("Pacific/Pago_Pago"), zone("America/New_York"),
                            zone("Asia/Tokyo", QStringLiteral("Ops"))}
        << MenuBarFormat::labelDayTime24 << "PAG Mon 14:00  NYC Mon 20:00  Ops 10:00"
        << QByteArray("Asia/Tokyo");
    QTest::newRow("time only, list order, no nicknames")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("Office")), zone("UTC")}
        << MenuBarFormat::timeOnly24 << "10:00  01:00" << QByteArray();
}

void TestMenuBarFormatter::string()
{
    QFETCH(QList<SavedZone>, zones);
    QFETCH(MenuBarFormat, format);
    QFETCH(QString, expected);
    QFETCH(QByteArray, local);

    const QTimeZone localZone = local.isEmpty() ? newYork : QTimeZone(local);
    QCOMPARE(MenuBarFormatter::string(zones, format, mondayEvening, localZone), expected);
}

void TestMenuBarFormatter::ignoresTheUserLocale()
{
    // Under Turkish rules "i" upper-cases to a dotted capital and "I" lower-cases to a dotless i.
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    QCOMPARE(MenuBarFormatter::string(exampleZones(), MenuBarFormat::labelTime12, mondayEvening,
                                      newYork),
             QStringLiteral("NYC 8:00p  LON 1:00a  Tokyo office 10:00a"));
    QCOMPARE(MenuBarFormatter::string({zone("Asia/Tbilisi")}, MenuBarFormat::labelTime24,
                                      mondayEvening, newYork),
             QStringLiteral("TBI 05:00"));
}

QTEST_GUILESS_MAIN(TestMenuBarFormatter)
#include "tst_menubarformatter.moc"
