#include "MenuBarFormatter.h"

#include <QLocale>
#include <QTest>

Q_DECLARE_METATYPE(MenuBarFormat)
Q_DECLARE_METATYPE(std::optional<QString>)

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
    void cleanup();

    void timeString_data();
    void timeString();

    void daySuffixIfDifferent_data();
    void daySuffixIfDifferent();

    void workedExample_data();
    void workedExample();

    void string_data();
    void string();
    void onlyTheInstantMatters();
    void ignoresTheUserLocale_data();
    void ignoresTheUserLocale();
};

void TestMenuBarFormatter::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void TestMenuBarFormatter::timeString_data()
{
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QString>("expected");

    const QDateTime morning = utc(2024, 1, 15, 9, 5, 7);
    const QDateTime evening = utc(2024, 1, 15, 21, 5, 7);
    QTest::newRow("24h morning") << MenuBarFormat::labelTime24 << morning << "09:05";
    QTest::newRow("24h evening") << MenuBarFormat::labelTime24 << evening << "21:05";
    QTest::newRow("12h morning") << MenuBarFormat::labelTime12 << morning << "9:05a";
    QTest::newRow("12h evening") << MenuBarFormat::labelTime12 << evening << "9:05p";
    QTest::newRow("time only morning") << MenuBarFormat::timeOnly24 << morning << "09:05";
    QTest::newRow("time only evening") << MenuBarFormat::timeOnly24 << evening << "21:05";
    QTest::newRow("day morning") << MenuBarFormat::labelDayTime24 << morning << "09:05";
    QTest::newRow("day evening") << MenuBarFormat::labelDayTime24 << evening << "21:05";
    QTest::newRow("seconds morning") << MenuBarFormat::labelTime24Seconds << morning << "09:05:07";
    QTest::newRow("seconds evening") << MenuBarFormat::labelTime24Seconds << evening << "21:05:07";
    QTest::newRow("12h half past midnight")
        << MenuBarFormat::labelTime12 << utc(2024, 1, 15, 0, 30) << "12:30a";
    QTest::newRow("12h midnight") << MenuBarFormat::labelTime12 << utc(2024, 1, 15, 0, 0)
                                  << "12:00a";
    QTest::newRow("12h noon") << MenuBarFormat::labelTime12 << utc(2024, 1, 15, 12, 0) << "12:00p";
    QTest::newRow("12h last minute of the morning")
        << MenuBarFormat::labelTime12 << utc(2024, 1, 15, 11, 59) << "11:59a";
    QTest::newRow("12h one o'clock")
        << MenuBarFormat::labelTime12 << utc(2024, 1, 15, 13, 0) << "1:00p";
    QTest::newRow("24h midnight") << MenuBarFormat::labelTime24 << utc(2024, 1, 15, 0, 0)
                                  << "00:00";
}

void TestMenuBarFormatter::timeString()
{
    QFETCH(MenuBarFormat, format);
    QFETCH(QDateTime, date);
    QFETCH(QString, expected);

    QCOMPARE(MenuBarFormatter::timeString(format, date, QTimeZone::utc()), expected);
}

void TestMenuBarFormatter::daySuffixIfDifferent_data()
{
    QTest::addColumn<QDateTime>("date");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QByteArray>("local");
    QTest::addColumn<std::optional<QString>>("expected");

    QTest::newRow("same zone") << mondayEvening << QByteArray("America/New_York")
                               << QByteArray("America/New_York") << std::optional<QString>();
    QTest::newRow("other zone, same date")
        << utc(2024, 1, 15, 14, 0) << QByteArray("Europe/London") << QByteArray("America/New_York")
        << std::optional<QString>();
    QTest::newRow("zone a day ahead")
        << mondayEvening << QByteArray("Asia/Tokyo") << QByteArray("America/New_York")
        << std::optional<QString>("Tue");
    // Monday 09:00 in Tokyo is still Sunday evening in New York.
    QTest::newRow("zone a day behind shows its own day")
        << utc(2024, 1, 15, 0, 0) << QByteArray("America/New_York") << QByteArray("Asia/Tokyo")
        << std::optional<QString>("Sun");
    QTest::newRow("across the year end")
        << utc(2023, 12, 31, 23, 30) << QByteArray("Europe/Athens") << QByteArray("Europe/London")
        << std::optional<QString>("Mon");
    QTest::newRow("two days apart") << utc(2024, 1, 16, 11, 0) << QByteArray("Pacific/Kiritimati")
                                    << QByteArray("Etc/GMT+12") << std::optional<QString>("Wed");
}

void TestMenuBarFormatter::daySuffixIfDifferent()
{
    QFETCH(QDateTime, date);
    QFETCH(QByteArray, zone);
    QFETCH(QByteArray, local);
    QFETCH(std::optional<QString>, expected);

    QCOMPARE(MenuBarFormatter::daySuffixIfDifferent(date, QTimeZone(zone), QTimeZone(local)),
             expected);
}

void TestMenuBarFormatter::workedExample_data()
{
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QString>("line");

    QTest::newRow("labelTime24") << MenuBarFormat::labelTime24
                                 << "NYC 20:00  LON 01:00  Tokyo office 10:00";
    QTest::newRow("labelTime12") << MenuBarFormat::labelTime12
                                 << "NYC 8:00p  LON 1:00a  Tokyo office 10:00a";
    QTest::newRow("timeOnly24") << MenuBarFormat::timeOnly24 << "20:00  01:00  10:00";
    QTest::newRow("labelDayTime24")
        << MenuBarFormat::labelDayTime24 << "NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00";
    QTest::newRow("labelTime24Seconds")
        << MenuBarFormat::labelTime24Seconds << "NYC 20:00:07  LON 01:00:07  Tokyo office 10:00:07";
}

void TestMenuBarFormatter::workedExample()
{
    QFETCH(MenuBarFormat, format);
    QFETCH(QString, line);

    QCOMPARE(MenuBarFormatter::string(exampleZones(), format, mondayEvening,
                                      QTimeZone("America/New_York")),
             line);
}

void TestMenuBarFormatter::string_data()
{
    QTest::addColumn<QList<SavedZone>>("zones");
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QByteArray>("local");

    // All rows at Monday 20:00:07 in New York, the local zone unless a row says otherwise.
    QTest::newRow("no zones") << QList<SavedZone>() << MenuBarFormat::labelTime24 << ""
                              << QByteArray();
    QTest::newRow("nothing pinned")
        << QList<SavedZone>{zone("America/New_York", std::nullopt, false),
                            zone("Asia/Tokyo", QStringLiteral("Office"), false)}
        << MenuBarFormat::labelTime24 << "" << QByteArray();
    QTest::newRow("unpinned zones are left out")
        << QList<SavedZone>{zone("America/New_York"), zone("Europe/Paris", std::nullopt, false),
                            zone("Asia/Tokyo")}
        << MenuBarFormat::labelTime24 << "NYC 20:00  TYO 10:00" << QByteArray();
    QTest::newRow("every pinned zone unknown")
        << QList<SavedZone>{zone("Mars/Olympus_Mons"), zone("UTC+05:00"), zone("EST5")}
        << MenuBarFormat::labelTime24 << "" << QByteArray();
    QTest::newRow("unknown zone leaves no gap")
        << QList<SavedZone>{zone("America/New_York"), zone("Nowhere/Atlantis"), zone("Asia/Tokyo")}
        << MenuBarFormat::labelTime24 << "NYC 20:00  TYO 10:00" << QByteArray();
    QTest::newRow("blank nickname falls back to the code")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("  "))} << MenuBarFormat::labelTime24
        << "TYO 10:00" << QByteArray();
    QTest::newRow("empty nickname falls back to the code")
        << QList<SavedZone>{zone("Asia/Tokyo", QString())} << MenuBarFormat::labelTime24
        << "TYO 10:00" << QByteArray();
    QTest::newRow("nickname is trimmed")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("\n Home\t "))}
        << MenuBarFormat::labelTime24 << "Home 10:00" << QByteArray();
    QTest::newRow("code, not the city name")
        << QList<SavedZone>{zone("America/Argentina/Buenos_Aires")} << MenuBarFormat::labelTime24
        << "BUE 22:00" << QByteArray();
    QTest::newRow("code by the rule") << QList<SavedZone>{zone("Pacific/Port_Moresby")}
                                      << MenuBarFormat::labelTime24 << "POR 11:00" << QByteArray();
    QTest::newRow("old zone name still shown")
        << QList<SavedZone>{zone("Europe/Kiev")} << MenuBarFormat::labelTime24 << "KIE 03:00"
        << QByteArray();
    QTest::newRow("same date, no weekday")
        << QList<SavedZone>{zone("America/New_York")} << MenuBarFormat::labelDayTime24
        << "NYC 20:00" << QByteArray();
    QTest::newRow("a day behind shows the earlier day")
        << QList<SavedZone>{zone("Pacific/Pago_Pago"), zone("America/New_York"),
                            zone("Asia/Tokyo", QStringLiteral("Ops"))}
        << MenuBarFormat::labelDayTime24 << "PAG Mon 14:00  NYC Mon 20:00  Ops 10:00"
        << QByteArray("Asia/Tokyo");
    QTest::newRow("time only ignores nicknames")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("Office")), zone("UTC")}
        << MenuBarFormat::timeOnly24 << "10:00  01:00" << QByteArray();
    QTest::newRow("same zone twice under two nicknames")
        << QList<SavedZone>{zone("Asia/Tokyo", QStringLiteral("Home")),
                            zone("Asia/Tokyo", QStringLiteral("Work"))}
        << MenuBarFormat::labelTime12 << "Home 10:00a  Work 10:00a" << QByteArray();
    QTest::newRow("list order, not time order")
        << QList<SavedZone>{zone("Asia/Tokyo"), zone("UTC"), zone("America/New_York")}
        << MenuBarFormat::labelTime24Seconds << "TYO 10:00:07  UTC 01:00:07  NYC 20:00:07"
        << QByteArray();
}

void TestMenuBarFormatter::string()
{
    QFETCH(QList<SavedZone>, zones);
    QFETCH(MenuBarFormat, format);
    QFETCH(QString, expected);
    QFETCH(QByteArray, local);

    const QTimeZone localZone(local.isEmpty() ? QByteArray("America/New_York") : local);
    QCOMPARE(MenuBarFormatter::string(zones, format, mondayEvening, localZone), expected);
}

void TestMenuBarFormatter::onlyTheInstantMatters()
{
    const QTimeZone newYork("America/New_York");
    const QString expected = QStringLiteral("NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00");
    for (const QDateTime &at :
         {mondayEvening.toTimeZone(newYork), mondayEvening.toOffsetFromUtc(9 * 3600),
          mondayEvening.toLocalTime()})
        QCOMPARE(
            MenuBarFormatter::string(exampleZones(), MenuBarFormat::labelDayTime24, at, newYork),
            expected);
}

void TestMenuBarFormatter::ignoresTheUserLocale_data()
{
    QTest::addColumn<QLocale>("locale");

    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
    QTest::newRow("Arabic") << QLocale(QLocale::Arabic, QLocale::Egypt);
    QTest::newRow("Turkish") << QLocale(QLocale::Turkish, QLocale::Turkey);
}

void TestMenuBarFormatter::ignoresTheUserLocale()
{
    QFETCH(QLocale, locale);

    QLocale::setDefault(locale);
    const QTimeZone newYork("America/New_York");
    QCOMPARE(MenuBarFormatter::string(exampleZones(), MenuBarFormat::labelDayTime24, mondayEvening,
                                      newYork),
             QStringLiteral("NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00"));
    QCOMPARE(MenuBarFormatter::string(exampleZones(), MenuBarFormat::labelTime12, mondayEvening,
                                      newYork),
             QStringLiteral("NYC 8:00p  LON 1:00a  Tokyo office 10:00a"));
    // Upper-casing a fallback code must not follow Turkish rules ("i" to a dotted capital).
    QCOMPARE(MenuBarFormatter::string({zone("Asia/Tbilisi")}, MenuBarFormat::labelTime24,
                                      mondayEvening, newYork),
             QStringLiteral("TBI 05:00"));
}

QTEST_GUILESS_MAIN(TestMenuBarFormatter)
#include "tst_menubarformatter.moc"
