#include "Clock.h"
#include "MemoryPreferencesStore.h"
#include "MenuBarLabel.h"
#include "TimeZoneDatabase.h"
#include "ZoneStore.h"

#include <QSignalSpy>
#include <QTest>

namespace {

class IdleTimer final : public ClockTimer
{
public:
    void start(std::chrono::milliseconds, std::function<void()>) override {}
    void stop() override {}
};

// Monday 5 January 2026, 20:00:07 in New York.
const QDateTime mondayEvening(QDate(2026, 1, 6), QTime(1, 0, 7), QTimeZone::utc());

} // namespace

class TestMenuBarLabel final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void globeUntilSomethingIsPinned();
    void followsFormat_data();
    void followsFormat();
    void followsTheClock();
    void unknownPinnedZoneShowsGlobe();

private:
    QDateTime m_time;
    std::unique_ptr<MemoryPreferencesStore> m_preferences;
    std::unique_ptr<ZoneStore> m_store;
    std::unique_ptr<Clock> m_clock;
};

void TestMenuBarLabel::initTestCase()
{
    qputenv("TZ", "America/New_York");
}

void TestMenuBarLabel::init()
{
    m_time = mondayEvening;
    m_preferences = std::make_unique<MemoryPreferencesStore>();
    m_preferences->writeBool(ZoneStore::seededKey, true);
    m_store = std::make_unique<ZoneStore>(*m_preferences, TimeZoneDatabase::lookup());
    m_clock = std::make_unique<Clock>([this] { return m_time; }, &TimeZoneDatabase::localZone,
                                      std::make_unique<IdleTimer>());
    m_store->add(QStringLiteral("America/New_York"));
    m_store->add(QStringLiteral("Europe/London"));
    m_store->add(QStringLiteral("Asia/Tokyo"), QStringLiteral("Tokyo office"));
}

void TestMenuBarLabel::cleanup()
{
    m_clock.reset();
    m_store.reset();
}

void TestMenuBarLabel::globeUntilSomethingIsPinned()
{
    MenuBarLabel label(*m_store, *m_clock);
    QSignalSpy spy(&label, &MenuBarLabel::textChanged);
    QVERIFY(label.showsGlobe());
    QCOMPARE(label.text(), QString());
    QCOMPARE(label.accessibleName(), QStringLiteral("Zonara"));

    m_store->togglePin(m_store->zones().at(1).id);
    QCOMPARE(spy.count(), 1);
    QVERIFY(!label.showsGlobe());
    QCOMPARE(label.text(), QStringLiteral("LON 01:00"));
    QCOMPARE(label.accessibleName(), QStringLiteral("Zonara, LON 01:00"));

    m_store->togglePin(m_store->zones().at(2).id);
    QCOMPARE(label.text(), QStringLiteral("LON 01:00  Tokyo office 10:00"));

    m_store->togglePin(m_store->zones().at(1).id);
    m_store->togglePin(m_store->zones().at(2).id);
    QVERIFY(label.showsGlobe());
    QCOMPARE(label.accessibleName(), QStringLiteral("Zonara"));
    QCOMPARE(spy.count(), 4);
}

void TestMenuBarLabel::followsFormat_data()
{
    QTest::addColumn<MenuBarFormat>("format");
    QTest::addColumn<QString>("expected");
    QTest::newRow("12h") << MenuBarFormat::labelTime12
                         << "NYC 8:00p  LON 1:00a  Tokyo office 10:00a";
    QTest::newRow("day") << MenuBarFormat::labelDayTime24
                         << "NYC 20:00  LON Tue 01:00  Tokyo office Tue 10:00";
    QTest::newRow("seconds") << MenuBarFormat::labelTime24Seconds
                             << "NYC 20:00:07  LON 01:00:07  Tokyo office 10:00:07";
}

void TestMenuBarLabel::followsFormat()
{
    QFETCH(MenuBarFormat, format);
    QFETCH(QString, expected);
    for (const SavedZone &zone : m_store->zones())
        m_store->togglePin(zone.id);
    MenuBarLabel label(*m_store, *m_clock);
    QCOMPARE(label.text(), QStringLiteral("NYC 20:00  LON 01:00  Tokyo office 10:00"));
    m_store->setFormat(format);
    QCOMPARE(label.text(), expected);
    QCOMPARE(label.accessibleName(), QStringLiteral("Zonara, ") + expected);
}

void TestMenuBarLabel::followsTheClock()
{
    m_store->togglePin(m_store->zones().at(0).id);
    MenuBarLabel label(*m_store, *m_clock);
    QSignalSpy spy(&label, &MenuBarLabel::textChanged);
    m_clock->setNow(mondayEvening.addSecs(30)); // same minute: same text, no change
    QCOMPARE(spy.count(), 0);
    m_clock->setNow(mondayEvening.addSecs(60));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(label.text(), QStringLiteral("NYC 20:01"));
}

void TestMenuBarLabel::unknownPinnedZoneShowsGlobe()
{
    MemoryPreferencesStore preferences;
    preferences.writeBool(ZoneStore::seededKey, true);
    ZoneStore store(preferences, TimeZoneDatabase::lookup());
    store.setZones(
        {{QUuid::createUuid(), QStringLiteral("Mars/Olympus_Mons"), std::nullopt, true}});
    MenuBarLabel label(store, *m_clock);
    QVERIFY(label.showsGlobe());
    QCOMPARE(label.accessibleName(), QStringLiteral("Zonara"));
}

QTEST_GUILESS_MAIN(TestMenuBarLabel)
#include "tst_menubarlabel.moc"
