#include "TimeZoneDatabase.h"

#include <QFile>
#include <QTest>

#include <ctime>
#include <thread>

namespace {

const QDateTime winter(QDate(2024, 1, 15), QTime(12, 0), QTimeZone::utc());

// The zones the database itself lists by country, read independently of the code.
QStringList zone1970Names()
{
    QStringList names;
    QFile file(QStringLiteral("/usr/share/zoneinfo/zone1970.tab"));
    if (!file.open(QIODevice::ReadOnly))
        return names;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.isEmpty() || line.startsWith('#'))
            continue;
        const QList<QByteArray> fields = line.split('\t');
        if (fields.size() >= 3)
            names.append(QString::fromUtf8(fields.at(2)));
    }
    return names;
}

} // namespace

class TestTimeZoneDatabase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void resolves_data();
    void resolves();
    void resolvedZoneIsTheNamedOne_data();
    void resolvedZoneIsTheNamedOne();

    void knownIdentifiersAreSortedRealZones();
    void knownIdentifiersCoverTheCountryZones();
    void knownIdentifiersAreBuiltOnce();

    void localZoneFollowsTz_data();
    void localZoneFollowsTz();
    void localZoneIsReadAfresh();
    void localZoneWithoutTzIsTheSystemZone();
    void systemZoneIdFollowsTz_data();
    void systemZoneIdFollowsTz();
    void systemZoneIdIsAlwaysARealName();

    void lookupUsesTheDatabase();

private:
    void setTz(const QByteArray &value);

    QByteArray m_savedTz;
    bool m_hadTz = false;
};

void TestTimeZoneDatabase::init()
{
    m_hadTz = qEnvironmentVariableIsSet("TZ");
    m_savedTz = qgetenv("TZ");
}

void TestTimeZoneDatabase::cleanup()
{
    if (m_hadTz)
        qputenv("TZ", m_savedTz);
    else
        qunsetenv("TZ");
    tzset();
}

void TestTimeZoneDatabase::setTz(const QByteArray &value)
{
    qputenv("TZ", value);
    tzset();
}

void TestTimeZoneDatabase::resolves_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<bool>("expected");

    QTest::newRow("zone") << "Europe/Stockholm" << true;
    QTest::newRow("three-level zone") << "America/Argentina/Buenos_Aires" << true;
    QTest::newRow("renamed zone's old name") << "Europe/Kiev" << true;
    QTest::newRow("backward link") << "US/Eastern" << true;
    QTest::newRow("UTC link") << "UTC" << true;
    QTest::newRow("GMT link") << "GMT" << true;
    QTest::newRow("Etc zone") << "Etc/GMT+5" << true;
    QTest::newRow("old-style zone name") << "EST" << true;

    QTest::newRow("Qt offset pseudo-id") << "UTC+05:00" << false;
    QTest::newRow("Qt negative offset pseudo-id") << "UTC-14:00" << false;
    QTest::newRow("POSIX rule") << "EST5" << false;
    QTest::newRow("POSIX rule, made-up name") << "ABC-3" << false;
    QTest::newRow("POSIX rule, east") << "JST-9" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("slash") << "/" << false;
    QTest::newRow("path escape") << "../etc/passwd" << false;
    QTest::newRow("wrong case") << "europe/stockholm" << false;
    QTest::newRow("leading space") << " Europe/Stockholm" << false;
    QTest::newRow("area only") << "Europe" << false;
    QTest::newRow("trailing slash") << "Europe/Stockholm/" << false;
    QTest::newRow("posix tree") << "posix/Europe/Paris" << false;
    QTest::newRow("right tree") << "right/UTC" << false;
    QTest::newRow("posixrules file") << "posixrules" << false;
    QTest::newRow("table file") << "zone.tab" << false;
    QTest::newRow("source file") << "tzdata.zi" << false;
    QTest::newRow("made-up city") << "Mars/Olympus_Mons" << false;
}

void TestTimeZoneDatabase::resolves()
{
    QFETCH(QString, identifier);
    QFETCH(bool, expected);

    QCOMPARE(TimeZoneDatabase::resolves(identifier), expected);
    QCOMPARE(TimeZoneDatabase::resolve(identifier).has_value(), expected);
}

void TestTimeZoneDatabase::resolvedZoneIsTheNamedOne_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<int>("winterOffset");

    QTest::newRow("Kolkata") << "Asia/Kolkata" << 19800;
    QTest::newRow("Kathmandu") << "Asia/Kathmandu" << 20700;
    QTest::newRow("New York") << "America/New_York" << -18000;
    QTest::newRow("Kiev link") << "Europe/Kiev" << 7200;
    QTest::newRow("UTC") << "UTC" << 0;
    QTest::newRow("Etc/GMT+5 is west") << "Etc/GMT+5" << -18000;
}

void TestTimeZoneDatabase::resolvedZoneIsTheNamedOne()
{
    QFETCH(QString, identifier);
    QFETCH(int, winterOffset);

    const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(identifier);
    QVERIFY(zone);
    QCOMPARE(QString::fromUtf8(zone->id()), identifier);
    QCOMPARE(zone->offsetFromUtc(winter), winterOffset);
}

void TestTimeZoneDatabase::knownIdentifiersAreSortedRealZones()
{
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    QVERIFY(known.size() > 300);
    // Strictly increasing: sorted by code point and free of duplicates.
    for (qsizetype i = 1; i < known.size(); ++i)
        QVERIFY2(known.at(i - 1) < known.at(i), qPrintable(known.at(i)));
    for (const QString &id : known) {
        QVERIFY2(TimeZoneDatabase::resolves(id), qPrintable(id));
        QVERIFY2(!id.startsWith(u"UTC+") && !id.startsWith(u"UTC-"), qPrintable(id));
        QVERIFY2(!id.startsWith(u"posix/") && !id.startsWith(u"right/"), qPrintable(id));
    }
    for (const char *present : {"Europe/Kyiv", "Europe/Stockholm", "America/New_York", "Etc/UTC",
                                "Etc/GMT+5", "UTC", "GMT"})
        QVERIFY2(known.contains(QLatin1StringView(present)), present);
    for (const char *absent : {"Europe/Kiev", "US/Eastern", "Asia/Calcutta", "Factory",
                               "posixrules", "localtime", "UTC+05:00", "EST5"})
        QVERIFY2(!known.contains(QLatin1StringView(absent)), absent);
    // Qt's own list mixes pseudo-ids in; none of those may come through.
    for (const QByteArray &qtId : QTimeZone::availableTimeZoneIds()) {
        if (qtId.startsWith("UTC+") || qtId.startsWith("UTC-"))
            QVERIFY2(!known.contains(QString::fromUtf8(qtId)), qtId.constData());
    }
}

void TestTimeZoneDatabase::knownIdentifiersCoverTheCountryZones()
{
    const QStringList countryZones = zone1970Names();
    if (countryZones.isEmpty())
        QSKIP("zone1970.tab is not installed");
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    for (const QString &id : countryZones)
        QVERIFY2(known.contains(id), qPrintable(id));
}

void TestTimeZoneDatabase::knownIdentifiersAreBuiltOnce()
{
    const QStringList *fromMain = &TimeZoneDatabase::knownIdentifiers();
    const QStringList *fromOther = nullptr;
    std::thread other([&fromOther] { fromOther = &TimeZoneDatabase::knownIdentifiers(); });
    other.join();
    QCOMPARE(fromOther, fromMain);
    QCOMPARE(&TimeZoneDatabase::knownIdentifiers(), fromMain);
}

void TestTimeZoneDatabase::localZoneFollowsTz_data()
{
    QTest::addColumn<QByteArray>("tz");
    QTest::addColumn<QByteArray>("expectedId");
    QTest::addColumn<int>("expectedOffset");

    QTest::newRow("name") << QByteArray("Asia/Tokyo") << QByteArray("Asia/Tokyo") << 32400;
    QTest::newRow("name after colon")
        << QByteArray(":Asia/Tokyo") << QByteArray("Asia/Tokyo") << 32400;
    QTest::newRow("link name") << QByteArray("Asia/Calcutta") << QByteArray("Asia/Calcutta")
                               << 19800;
    QTest::newRow("path after colon")
        << QByteArray(":/usr/share/zoneinfo/Asia/Kolkata") << QByteArray("Asia/Kolkata") << 19800;
    QTest::newRow("path") << QByteArray("/usr/share/zoneinfo/America/New_York")
                          << QByteArray("America/New_York") << -18000;
    QTest::newRow("unnormalised path") << QByteArray("/usr/share/zoneinfo//Europe/../Asia/Tokyo")
                                       << QByteArray("Asia/Tokyo") << 32400;
    // The C library runs on POSIX rules too, so they count for the local zone.
    QTest::newRow("POSIX rule") << QByteArray("JST-9") << QByteArray() << 32400;
    QTest::newRow("POSIX rule, west") << QByteArray("EST5") << QByteArray() << -18000;
    // Qt would read this as its own pseudo-zone, five hours east; the C
    // library as a rule five hours west. Neither guess is taken.
    QTest::newRow("Qt offset pseudo-id") << QByteArray("UTC+05:00") << QByteArray() << 0;
    QTest::newRow("empty means UTC") << QByteArray("") << QByteArray() << 0;
    QTest::newRow("unknown means UTC") << QByteArray("Mars/Olympus_Mons") << QByteArray() << 0;
    QTest::newRow("path outside the database") << QByteArray("/etc/passwd") << QByteArray() << 0;
}

void TestTimeZoneDatabase::localZoneFollowsTz()
{
    QFETCH(QByteArray, tz);
    QFETCH(QByteArray, expectedId);
    QFETCH(int, expectedOffset);

    setTz(tz);
    const QTimeZone zone = TimeZoneDatabase::localZone();
    QVERIFY(zone.isValid());
    if (!expectedId.isEmpty())
        QCOMPARE(zone.id(), expectedId);
    QCOMPARE(zone.offsetFromUtc(winter), expectedOffset);
}

void TestTimeZoneDatabase::localZoneIsReadAfresh()
{
    setTz("Asia/Tokyo");
    QCOMPARE(TimeZoneDatabase::localZone().id(), QByteArray("Asia/Tokyo"));
    setTz("America/New_York");
    QCOMPARE(TimeZoneDatabase::localZone().id(), QByteArray("America/New_York"));
    setTz(":Europe/Stockholm");
    QCOMPARE(TimeZoneDatabase::localZone().id(), QByteArray("Europe/Stockholm"));
}

void TestTimeZoneDatabase::localZoneWithoutTzIsTheSystemZone()
{
    qunsetenv("TZ");
    tzset();
    const QTimeZone zone = TimeZoneDatabase::localZone();
    QVERIFY(zone.isValid());
    QCOMPARE(QString::fromUtf8(zone.id()), TimeZoneDatabase::systemZoneId());
}

void TestTimeZoneDatabase::systemZoneIdFollowsTz_data()
{
    QTest::addColumn<QByteArray>("tz");
    QTest::addColumn<QString>("expected");

    QTest::newRow("name") << QByteArray("Asia/Tokyo") << "Asia/Tokyo";
    QTest::newRow("name after colon") << QByteArray(":Asia/Tokyo") << "Asia/Tokyo";
    QTest::newRow("path") << QByteArray(":/usr/share/zoneinfo/Asia/Kolkata") << "Asia/Kolkata";
    QTest::newRow("path into posix tree")
        << QByteArray("/usr/share/zoneinfo/posix/Europe/Paris") << "Europe/Paris";
}

void TestTimeZoneDatabase::systemZoneIdFollowsTz()
{
    QFETCH(QByteArray, tz);
    QFETCH(QString, expected);

    setTz(tz);
    QCOMPARE(TimeZoneDatabase::systemZoneId(), expected);
}

void TestTimeZoneDatabase::systemZoneIdIsAlwaysARealName()
{
    // A rule or a pseudo-id in TZ names no zone; the answer then comes
    // from /etc/localtime or is "UTC", but is never the TZ text itself.
    for (const char *rule : {"JST-9", "UTC+05:00", ""}) {
        const QByteArray tz(rule);
        setTz(tz);
        const QString id = TimeZoneDatabase::systemZoneId();
        QVERIFY2(TimeZoneDatabase::resolves(id), qPrintable(id));
        QVERIFY2(id != QString::fromUtf8(tz), tz.constData());
    }
}

void TestTimeZoneDatabase::lookupUsesTheDatabase()
{
    setTz("Asia/Tokyo");
    const TimeZoneLookup lookup = TimeZoneDatabase::lookup();
    QVERIFY(lookup.resolves);
    QVERIFY(lookup.systemZoneId);
    QVERIFY(lookup.resolves("Europe/Kyiv"));
    QVERIFY(!lookup.resolves("EST5"));
    QCOMPARE(lookup.systemZoneId(), QStringLiteral("Asia/Tokyo"));
}

QTEST_GUILESS_MAIN(TestTimeZoneDatabase)
#include "tst_timezonedatabase.moc"
