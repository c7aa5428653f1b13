#include "TimeZoneDatabase.h"

#include <QTest>

#include <ctime>

Q_DECLARE_METATYPE(std::optional<int>)

namespace {

const QDateTime winter(QDate(2024, 1, 15), QTime(12, 0), QTimeZone::utc());

void setTz(const QByteArray &value)
{
    qputenv("TZ", value);
    tzset();
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
    void knownIdentifiersAreSortedRealZones();
    void canonicalIdentifier_data();
    void canonicalIdentifier();

    void localZoneFollowsTz_data();
    void localZoneFollowsTz();
    void localZoneWithoutTzIsTheSystemZone();
    void systemZoneIdFollowsTz_data();
    void systemZoneIdFollowsTz();

private:
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

void TestTimeZoneDatabase::resolves_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<std::optional<int>>("winterOffset");

    // A resolved zone keeps the name asked for, links included.
    QTest::newRow("three-level zone") << "America/Argentina/Buenos_Aires" << std::optional(-10800);
    QTest::newRow("renamed zone's old name") << "Europe/Kiev" << std::optional(7200);
    QTest::newRow("UTC link") << "UTC" << std::optional(0);
    QTest::newRow("Etc/GMT+5 is west") << "Etc/GMT+5" << std::optional(-18000);

    const std::optional<int> none;
    QTest::newRow("Qt offset pseudo-id") << "UTC+05:00" << none;
    QTest::newRow("POSIX rule") << "EST5" << none;
    QTest::newRow("empty") << "" << none;
    QTest::newRow("slash") << "/" << none;
    QTest::newRow("path escape") << "../etc/passwd" << none;
    QTest::newRow("wrong case") << "europe/stockholm" << none;
    QTest::newRow("posix tree") << "posix/Europe/Paris" << none;
    QTest::newRow("source file") << "tzdata.zi" << none;
    QTest::newRow("made-up city") << "Mars/Olympus_Mons" << none;
}

void TestTimeZoneDatabase::resolves()
{
    QFETCH(QString, identifier);
    QFETCH(std::optional<int>, winterOffset);

    QCOMPARE(TimeZoneDatabase::resolves(identifier), winterOffset.has_value());
    QCOMPARE(TimeZoneDatabase::lookup().resolves(identifier), winterOffset.has_value());
    const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(identifier);
    QCOMPARE(zone.has_value(), winterOffset.has_value());
    if (zone) {
        QCOMPARE(QString::fromUtf8(zone->id()), identifier);
        QCOMPARE(zone->offsetFromUtc(winter), *winterOffset);
    }
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
    for (const char *present :
         {"Europe/Kyiv", "America/Argentina/Buenos_Aires", "Etc/UTC", "UTC", "GMT"})
        QVERIFY2(known.contains(QLatin1StringView(present)), present);
    for (const char *absent : {"Europe/Kiev", "US/Eastern", "Factory", "posixrules", "localtime"})
        QVERIFY2(!known.contains(QLatin1StringView(absent)), absent);
}

void TestTimeZoneDatabase::canonicalIdentifier_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("canonical");
    QTest::newRow("renamed city") << "Asia/Calcutta"
                                  << "Asia/Kolkata";
    QTest::newRow("link to a link's zone") << "Europe/Kiev"
                                           << "Europe/Kyiv";
    QTest::newRow("old region name") << "US/Eastern"
                                     << "America/New_York";
    QTest::newRow("link listed as known") << "UTC"
                                          << "UTC";
    QTest::newRow("zone") << "Europe/Stockholm"
                          << "Europe/Stockholm";
    QTest::newRow("unknown") << "Mars/Olympus_Mons"
                             << "Mars/Olympus_Mons";
}

void TestTimeZoneDatabase::canonicalIdentifier()
{
    QFETCH(QString, identifier);
    QFETCH(QString, canonical);
    QCOMPARE(TimeZoneDatabase::canonicalIdentifier(identifier), canonical);
    QCOMPARE(TimeZoneDatabase::lookup().canonical(identifier), canonical);

    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    const QHash<QString, QString> &links = TimeZoneDatabase::linkTargets();
    QVERIFY(links.size() > 100);
    for (auto it = links.cbegin(); it != links.cend(); ++it) {
        QVERIFY2(!known.contains(it.key()) && known.contains(it.value()), qPrintable(it.key()));
        QVERIFY2(TimeZoneDatabase::resolves(it.key()), qPrintable(it.key()));
    }
}

void TestTimeZoneDatabase::localZoneFollowsTz_data()
{
    QTest::addColumn<QByteArray>("tz");
    QTest::addColumn<QByteArray>("expectedId");
    QTest::addColumn<int>("expectedOffset");

    // Consecutive rows name different zones, so a cached answer would show.
    QTest::newRow("name") << QByteArray("Asia/Tokyo") << QByteArray("Asia/Tokyo") << 32400;
    QTest::newRow("link name") << QByteArray("Asia/Calcutta") << QByteArray("Asia/Calcutta")
                               << 19800;
    QTest::newRow("path after colon") << QByteArray(":/usr/share/zoneinfo/America/New_York")
                                      << QByteArray("America/New_York") << -18000;
    QTest::newRow("unnormalised path") << QByteArray("/usr/share/zoneinfo//Europe/../Asia/Tokyo")
                                       << QByteArray("Asia/Tokyo") << 32400;
    // The C library runs on POSIX rules too, so they count for the local zone.
    QTest::newRow("POSIX rule") << QByteArray("EST5") << QByteArray() << -18000;
    // Qt would read this as its own pseudo-zone, five hours east; the C
    // library as a rule five hours west. Neither guess is taken.
    QTest::newRow("Qt offset pseudo-id") << QByteArray("UTC+05:00") << QByteArray() << 0;
    QTest::newRow("empty means UTC") << QByteArray("") << QByteArray() << 0;
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

    QTest::newRow("name after colon") << QByteArray(":Asia/Tokyo") << "Asia/Tokyo";
    QTest::newRow("path into posix tree")
        << QByteArray("/usr/share/zoneinfo/posix/Europe/Paris") << "Europe/Paris";
    QTest::newRow("name in the right tree") << QByteArray("right/Asia/Tokyo") << "Asia/Tokyo";
    // A rule names no zone: the zone that keeps its time stands for it, so
    // that the first city agrees with the local zone of the line.
    QTest::newRow("POSIX rule") << QByteArray("JST-9") << "Etc/GMT-9";
    // A pseudo-id is not taken as the local zone; the answer is never the
    // TZ text itself.
    QTest::newRow("Qt offset pseudo-id") << QByteArray("UTC+05:00") << QString();
    QTest::newRow("empty") << QByteArray("") << QString();
}

void TestTimeZoneDatabase::systemZoneIdFollowsTz()
{
    QFETCH(QByteArray, tz);
    QFETCH(QString, expected);

    setTz(tz);
    const QString id = TimeZoneDatabase::systemZoneId();
    QCOMPARE(TimeZoneDatabase::lookup().systemZoneId(), id);
    if (!expected.isEmpty())
        QCOMPARE(id, expected);
    QVERIFY2(TimeZoneDatabase::resolves(id), qPrintable(id));
    if (expected.isEmpty())
        QCOMPARE_NE(id, QString::fromUtf8(tz));
}

QTEST_GUILESS_MAIN(TestTimeZoneDatabase)
#include "tst_timezonedatabase.moc"
