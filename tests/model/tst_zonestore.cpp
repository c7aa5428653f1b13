#include "MemoryPreferencesStore.h"
#include "SettingsPreferencesStore.h"
#include "ZoneLimits.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QSet<QString> knownZones{
    QStringLiteral("Europe/Stockholm"), QStringLiteral("Asia/Tokyo"),
    QStringLiteral("America/New_York"), QStringLiteral("Europe/London"),
    QStringLiteral("Asia/Kolkata"),     QStringLiteral("UTC"),
};

// Old names that resolve and are saved as the zone they stand for.
const QHash<QString, QString> oldNames{
    {QStringLiteral("Asia/Calcutta"), QStringLiteral("Asia/Kolkata")},
    {QStringLiteral("Japan"), QStringLiteral("Asia/Tokyo")},
};

TimeZoneLookup testLookup(const QString &systemZone = QStringLiteral("Europe/Stockholm"))
{
    return {[](const QString &id) { return knownZones.contains(id) || oldNames.contains(id); },
            [systemZone] { return systemZone; },
            [](const QString &id) { return oldNames.value(id, id); }};
}

QByteArray encoded(const QList<SavedZone> &zones)
{
    return *ZoneListCodec::encode(zones);
}

SavedZone zoneNamed(const QString &identifier, std::optional<QString> label = std::nullopt)
{
    return {QUuid::createUuid(), identifier, std::move(label), false};
}

QStringList identifiersOf(const QList<SavedZone> &zones)
{
    QStringList ids;
    for (const SavedZone &zone : zones)
        ids.append(zone.identifier);
    return ids;
}

// A store that starts with the zones a, b, c, d (already seeded).
struct Fixture
{
    explicit Fixture(int count = 4)
    {
        const QStringList names{QStringLiteral("Europe/Stockholm"), QStringLiteral("Asia/Tokyo"),
                                QStringLiteral("America/New_York"),
                                QStringLiteral("Europe/London")};
        for (int i = 0; i < count; ++i)
            initial.append(zoneNamed(names.at(i)));
        preferences.writeBytes(ZoneStore::zonesKey, encoded(initial));
        preferences.writeBool(ZoneStore::seededKey, true);
        store = std::make_unique<ZoneStore>(preferences, testLookup());
        writesAtStart = preferences.writeCount(ZoneStore::zonesKey);
    }
    QUuid id(int index) const { return initial.at(index).id; }
    QList<SavedZone> pick(std::initializer_list<int> order) const
    {
        QList<SavedZone> zones;
        for (int index : order)
            zones.append(initial.at(index));
        return zones;
    }
    int writes() const { return preferences.writeCount(ZoneStore::zonesKey) - writesAtStart; }
    std::optional<QList<SavedZone>> stored() const
    {
        return ZoneListCodec::decode(*preferences.readBytes(ZoneStore::zonesKey));
    }

    MemoryPreferencesStore preferences;
    QList<SavedZone> initial;
    std::unique_ptr<ZoneStore> store;
    int writesAtStart = 0;
};

using Ids = QList<int>;

} // namespace

Q_DECLARE_METATYPE(std::optional<int>)

class TestZoneStore final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstStartSeedsSystemZone_data();
    void firstStartSeedsSystemZone();
    void laterStartKeepsEmptyList();
    void seedingKeepsStoredList();
    void unreadableListStaysUntouched();
    void loadsFormat_data();
    void loadsFormat();
    void workingHours_data();
    void workingHours();
    void workingHoursAreSavedOnlyWhenChanged();
    void add_data();
    void add();
    void rename_data();
    void rename();
    void renameBeyondLimitIsIgnored();
    void fullListTakesNoMore();
    void togglePin();
    void removeAlwaysAnnounces();
    void unknownIdIsIgnored();
    void move_data();
    void move();
    void moveZones_data();
    void moveZones();
    void equalListWritesWithoutSignal();
    void equalFormatWritesWithoutSignal();
    void pinnedZonesKeepOrder();
    void writesNothingElse();
    void secondStoreSeesEveryChange();
    void failedSaveKeepsEditsUntilSaved();
    void takesInOutsideChanges();
    void twoStoresNeverOverwriteEachOther();
};

void TestZoneStore::firstStartSeedsSystemZone_data()
{
    QTest::addColumn<QString>("systemZone");
    QTest::addColumn<QString>("expected");
    QTest::newRow("named zone") << "Asia/Kolkata"
                                << "Asia/Kolkata";
    QTest::newRow("no name") << ""
                             << "UTC";
}

void TestZoneStore::firstStartSeedsSystemZone()
{
    QFETCH(QString, systemZone);
    QFETCH(QString, expected);
    MemoryPreferencesStore preferences;
    ZoneStore store(preferences, testLookup(systemZone));

    QCOMPARE(store.zones().size(), 1);
    const SavedZone &zone = store.zones().first();
    QCOMPARE(zone.identifier, expected);
    QCOMPARE(zone.customLabel, std::nullopt);
    QVERIFY(!zone.isPinned);
    QVERIFY(!zone.id.isNull());
    QVERIFY(preferences.readBool(ZoneStore::seededKey));
    QVERIFY(!preferences.contains(ZoneStore::formatKey));
    QCOMPARE(store.format(), MenuBarFormat::labelTime24);
    QCOMPARE(ZoneListCodec::decode(*preferences.readBytes(ZoneStore::zonesKey)),
             std::optional(store.zones()));
}

void TestZoneStore::laterStartKeepsEmptyList()
{
    MemoryPreferencesStore preferences;
    {
        ZoneStore store(preferences, testLookup());
        store.remove(store.zones().first().id);
        QVERIFY(store.zones().isEmpty());
    }
    ZoneStore again(preferences, testLookup());
    QVERIFY(again.zones().isEmpty());
}

void TestZoneStore::seedingKeepsStoredList()
{
    MemoryPreferencesStore preferences;
    const QList<SavedZone> stored{zoneNamed(QStringLiteral("Asia/Tokyo"))};
    preferences.writeBytes(ZoneStore::zonesKey, encoded(stored));
    ZoneStore store(preferences, testLookup());
    QCOMPARE(store.zones(), stored);
    QVERIFY(preferences.readBool(ZoneStore::seededKey));
}

void TestZoneStore::unreadableListStaysUntouched()
{
    MemoryPreferencesStore preferences;
    const QByteArray garbage("bplist00 but not really");
    preferences.writeBytes(ZoneStore::zonesKey, garbage);
    preferences.writeBool(ZoneStore::seededKey, true);
    ZoneStore store(preferences, testLookup());
    QVERIFY(store.zones().isEmpty());
    QCOMPARE(preferences.readBytes(ZoneStore::zonesKey), std::optional(garbage));
    QVERIFY(preferences.copies().isEmpty());
    // The first write over them keeps a copy of them first, and only that one.
    store.add(QStringLiteral("Asia/Tokyo"));
    store.add(QStringLiteral("UTC"));
    QCOMPARE(preferences.copies().size(), 1);
    QCOMPARE(preferences.copies().constFirst().value(ZoneStore::zonesKey), QVariant(garbage));
    QCOMPARE(identifiersOf(*ZoneListCodec::decode(*preferences.readBytes(ZoneStore::zonesKey))),
             (QStringList{"Asia/Tokyo", "UTC"}));

    // Not yet seeded: the seed replaces the bad bytes at once.
    MemoryPreferencesStore fresh;
    fresh.writeBytes(ZoneStore::zonesKey, garbage);
    ZoneStore seeded(fresh, testLookup());
    QCOMPARE(seeded.zones().size(), 1);
    QCOMPARE(ZoneListCodec::decode(*fresh.readBytes(ZoneStore::zonesKey)),
             std::optional(seeded.zones()));
}

void TestZoneStore::loadsFormat_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<MenuBarFormat>("expected");
    QTest::addColumn<int>("formatWrites");
    QTest::newRow("valid") << "labelTime12" << MenuBarFormat::labelTime12 << 2;
    QTest::newRow("seconds") << "labelTime24Seconds" << MenuBarFormat::labelTime24Seconds << 2;
    QTest::newRow("title, not a raw value") << "Label + 12h" << MenuBarFormat::labelTime24 << 1;
    QTest::newRow("wrong case") << "LabelTime12" << MenuBarFormat::labelTime24 << 1;
}

void TestZoneStore::loadsFormat()
{
    QFETCH(QString, stored);
    QFETCH(MenuBarFormat, expected);
    QFETCH(int, formatWrites);
    MemoryPreferencesStore preferences;
    preferences.writeText(ZoneStore::formatKey, stored);
    ZoneStore store(preferences, testLookup());
    QCOMPARE(store.format(), expected);
    // A valid format is written back; an unknown text is left as it was.
    QCOMPARE(preferences.writeCount(ZoneStore::formatKey), formatWrites);
    QCOMPARE(preferences.readText(ZoneStore::formatKey), std::optional(stored));
}

void TestZoneStore::workingHours_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("read"); // empty: off
    QTest::addColumn<QStringList>("inside");
    QTest::addColumn<QStringList>("outside");
    QTest::newRow("day") << "09:00-18:00"
                         << "09:00-18:00" << QStringList{"09:00", "17:59:59"}
                         << QStringList{"08:59", "18:00", "00:00"};
    QTest::newRow("across midnight, en dash, spaces")
        << " 22:00 \u2013 6:00 "
        << "22:00-06:00" << QStringList{"22:00", "00:00", "05:59"}
        << QStringList{"06:00", "12:00", "21:59"};
    QTest::newRow("starts where it ends") << "09:00-09:00"
                                          << "" << QStringList() << QStringList();
    QTest::newRow("hour 24") << "09:00-24:00"
                             << "" << QStringList() << QStringList();
    QTest::newRow("trailing text") << "09:00-18:00x"
                                   << "" << QStringList() << QStringList();
    QTest::newRow("off") << "off"
                         << "" << QStringList() << QStringList();
}

void TestZoneStore::workingHours()
{
    QFETCH(QString, stored);
    QFETCH(QString, read);
    QFETCH(QStringList, inside);
    QFETCH(QStringList, outside);
    const std::optional<WorkingHours> parsed = WorkingHours::fromString(stored);
    QCOMPARE(parsed ? parsed->toString() : QString(), read);

    // A value that cannot be read turns the range off and leaves the rest as saved.
    Fixture f;
    f.preferences.writeText(ZoneStore::formatKey, QStringLiteral("labelTime12"));
    f.preferences.writeText(ZoneStore::workingHoursKey, stored);
    const ZoneStore store(f.preferences, testLookup());
    QCOMPARE(store.workingHours(), parsed);
    QCOMPARE(store.zones(), f.initial);
    QCOMPARE(store.format(), MenuBarFormat::labelTime12);
    QCOMPARE(f.preferences.readText(ZoneStore::workingHoursKey), std::optional(stored));

    for (const QString &time : inside)
        QVERIFY2(parsed->contains(QTime::fromString(time, Qt::ISODate)), qPrintable(time));
    for (const QString &time : outside)
        QVERIFY2(!parsed->contains(QTime::fromString(time, Qt::ISODate)), qPrintable(time));
}

void TestZoneStore::workingHoursAreSavedOnlyWhenChanged()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::workingHoursChanged);
    QVERIFY(!f.store->workingHours());
    const WorkingHours night{QTime(22, 0), QTime(6, 0)};
    f.store->setWorkingHours(night);
    f.store->setWorkingHours(night);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(f.preferences.writeCount(ZoneStore::workingHoursKey), 1);
    QCOMPARE(ZoneStore(f.preferences, testLookup()).workingHours(), std::optional(night));

    f.store->setWorkingHours(std::nullopt);
    QCOMPARE(spy.size(), 2);
    QVERIFY(!f.store->workingHours());
    QVERIFY(!ZoneStore(f.preferences, testLookup()).workingHours());
    QCOMPARE(f.store->zones(), f.initial);
}

void TestZoneStore::add_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<std::optional<QString>>("label");
    QTest::addColumn<bool>("appended");
    QTest::addColumn<QString>("saved");
    const auto home = std::optional<QString>(QStringLiteral("Home"));
    QTest::newRow("same nickname") << "Asia/Tokyo" << home << false << QString();
    QTest::newRow("old name of the same zone") << "Japan" << home << false << QString();
    QTest::newRow("old name saved as its zone")
        << "Asia/Calcutta" << std::optional<QString>() << true << "Asia/Kolkata";
    QTest::newRow("no nickname") << "Asia/Tokyo" << std::optional<QString>() << true << QString();
    QTest::newRow("trailing space")
        << "Asia/Tokyo" << std::optional<QString>(QStringLiteral("Home ")) << true << QString();
    QTest::newRow("empty nickname")
        << "Asia/Tokyo" << std::optional<QString>(QString()) << true << QString();
    QTest::newRow("other zone, same nickname") << "Europe/London" << home << true << QString();
    QTest::newRow("unknown zone") << "Mars/Olympus_Mons" << std::optional<QString>() << false
                                  << QString();
    QTest::newRow("wrong case") << "asia/tokyo" << std::optional<QString>() << false << QString();
    const QString longest(ZoneLimits::maximumNicknameLength, u'n');
    QTest::newRow("longest nickname")
        << "Asia/Tokyo" << std::optional(longest) << true << QString();
    QTest::newRow("nickname too long")
        << "Asia/Tokyo" << std::optional<QString>(longest + u'n') << false << QString();
}

void TestZoneStore::add()
{
    QFETCH(QString, identifier);
    QFETCH(std::optional<QString>, label);
    QFETCH(bool, appended);
    QFETCH(QString, saved);

    Fixture f(0);
    f.store->add(QStringLiteral("Asia/Tokyo"), QStringLiteral("Home"), true);
    QCOMPARE(f.store->zones().size(), 1);
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    const int writesBefore = f.writes();

    f.store->add(identifier, label, false);
    QCOMPARE(f.store->zones().size(), appended ? 2 : 1);
    QCOMPARE(spy.count(), appended ? 1 : 0);
    QCOMPARE(f.writes() - writesBefore, appended ? 1 : 0);
    if (appended) {
        const SavedZone &added = f.store->zones().last();
        QCOMPARE(added.identifier, saved.isNull() ? identifier : saved);
        QCOMPARE(added.customLabel, label); // stored as given, untrimmed
        QVERIFY(!added.isPinned);
        QVERIFY(added.id != f.store->zones().first().id);
    }
    QCOMPARE(f.stored(), std::optional(f.store->zones()));
}

void TestZoneStore::rename_data()
{
    QTest::addColumn<std::optional<QString>>("text");
    QTest::addColumn<std::optional<QString>>("expected");
    QTest::newRow("trimmed") << std::optional<QString>(QStringLiteral("  Office "))
                             << std::optional<QString>(QStringLiteral("Office"));
    QTest::newRow("spaces only") << std::optional<QString>(QStringLiteral("   "))
                                 << std::optional<QString>();
    QTest::newRow("line breaks") << std::optional<QString>(QStringLiteral("\n\tHQ\r\n"))
                                 << std::optional<QString>(QStringLiteral("HQ"));
    QTest::newRow("empty") << std::optional<QString>(QString()) << std::optional<QString>();
    QTest::newRow("none") << std::optional<QString>() << std::optional<QString>();
}

void TestZoneStore::rename()
{
    QFETCH(std::optional<QString>, text);
    QFETCH(std::optional<QString>, expected);
    Fixture f;
    f.store->rename(f.id(1), QStringLiteral("Before"));
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    const int writesBefore = f.writes();

    f.store->rename(f.id(1), text);
    QCOMPARE(f.store->zones().at(1).customLabel, expected);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.writes() - writesBefore, 1);
    QCOMPARE(f.stored(), std::optional(f.store->zones()));

    // Renaming to the same nickname still announces and writes.
    f.store->rename(f.id(1), text);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(f.writes() - writesBefore, 2);
}

void TestZoneStore::renameBeyondLimitIsIgnored()
{
    Fixture f;
    const QString longest(ZoneLimits::maximumNicknameLength, u'n');
    // Measured after trimming: the spaces around do not count.
    QVERIFY(f.store->rename(f.id(1), u"  " + longest + u"  "));
    QCOMPARE(f.store->zones().at(1).customLabel, std::optional(longest));
    const int writesBefore = f.writes();
    QVERIFY(!f.store->rename(f.id(1), longest + u'n'));
    QCOMPARE(f.store->zones().at(1).customLabel, std::optional(longest));
    QCOMPARE(f.writes(), writesBefore);
}

void TestZoneStore::fullListTakesNoMore()
{
    Fixture f(0);
    QList<SavedZone> full;
    for (qsizetype i = 0; i < ZoneLimits::maximumZones; ++i)
        full.append({QUuid::createUuid(), QStringLiteral("Asia/Tokyo"), QString::number(i), false});
    f.store->setZones(full);
    const int writesBefore = f.writes();
    QVERIFY(!f.store->add(QStringLiteral("Europe/London")));
    QCOMPARE(f.store->zones().size(), ZoneLimits::maximumZones);
    QCOMPARE(f.writes(), writesBefore);
    // Room again once one is gone.
    f.store->remove(full.first().id);
    QVERIFY(f.store->add(QStringLiteral("Europe/London")));
}

void TestZoneStore::togglePin()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->togglePin(f.id(2));
    QVERIFY(f.store->zones().at(2).isPinned);
    f.store->togglePin(f.id(0));
    f.store->togglePin(f.id(2));
    QVERIFY(!f.store->zones().at(2).isPinned);
    QVERIFY(f.store->zones().at(0).isPinned);
    QCOMPARE(spy.count(), 3);
    QCOMPARE(f.writes(), 3);
}

void TestZoneStore::removeAlwaysAnnounces()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->remove(f.id(1));
    QCOMPARE(f.store->zones(), f.pick({0, 2, 3}));
    f.store->remove(QUuid::createUuid());
    QCOMPARE(f.store->zones(), f.pick({0, 2, 3}));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(f.writes(), 2);
}

void TestZoneStore::unknownIdIsIgnored()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->rename(QUuid::createUuid(), QStringLiteral("Nowhere"));
    f.store->togglePin(QUuid::createUuid());
    QCOMPARE(f.store->zones(), f.initial);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(f.writes(), 0);
}

void TestZoneStore::move_data()
{
    QTest::addColumn<Ids>("offsets");
    QTest::addColumn<int>("destination");
    QTest::addColumn<Ids>("expected");
    // Three zones a, b, c.
    QTest::newRow("first down one") << Ids{0} << 2 << Ids{1, 0, 2};
    QTest::newRow("last to top") << Ids{2} << 0 << Ids{2, 0, 1};
    QTest::newRow("first to end") << Ids{0} << 3 << Ids{1, 2, 0};
    QTest::newRow("in place") << Ids{1} << 1 << Ids{0, 1, 2};
    QTest::newRow("just below itself") << Ids{1} << 2 << Ids{0, 1, 2};
    QTest::newRow("two to top, in order") << Ids{2, 1} << 0 << Ids{1, 2, 0};
    QTest::newRow("around the anchor") << Ids{0, 2} << 1 << Ids{0, 2, 1};
}

void TestZoneStore::move()
{
    QFETCH(Ids, offsets);
    QFETCH(int, destination);
    QFETCH(Ids, expected);
    Fixture f(3);
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->move(offsets, destination);
    QList<SavedZone> want;
    for (int index : expected)
        want.append(f.initial.at(index));
    QCOMPARE(identifiersOf(f.store->zones()), identifiersOf(want));
    QCOMPARE(f.store->zones(), want);
    // An in-place change: announced and written even when nothing moved.
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.writes(), 1);
}

void TestZoneStore::moveZones_data()
{
    QTest::addColumn<Ids>("moving");
    QTest::addColumn<std::optional<int>>("before");
    QTest::addColumn<Ids>("expected");
    QTest::addColumn<bool>("changes");
    // Four zones a, b, c, d; index 9 names a zone that is not in the list.
    QTest::newRow("c and a before b")
        << Ids{2, 0} << std::optional<int>(1) << Ids{0, 2, 1, 3} << true;
    QTest::newRow("a and c to the end")
        << Ids{0, 2} << std::optional<int>() << Ids{1, 3, 0, 2} << true;
    QTest::newRow("d to the top") << Ids{3} << std::optional<int>(0) << Ids{3, 0, 1, 2} << true;
    QTest::newRow("unknown ids ignored")
        << Ids{9, 3} << std::optional<int>(1) << Ids{0, 3, 1, 2} << true;
    QTest::newRow("before itself") << Ids{1} << std::optional<int>(1) << Ids{0, 1, 2, 3} << false;
    QTest::newRow("nothing to move") << Ids{} << std::optional<int>(1) << Ids{0, 1, 2, 3} << false;
    QTest::newRow("anchor not in list")
        << Ids{0} << std::optional<int>(9) << Ids{0, 1, 2, 3} << false;
    QTest::newRow("only unknown ids") << Ids{9} << std::optional<int>() << Ids{0, 1, 2, 3} << false;
    QTest::newRow("already there") << Ids{0} << std::optional<int>(1) << Ids{0, 1, 2, 3} << false;
    QTest::newRow("last to end") << Ids{3} << std::optional<int>() << Ids{0, 1, 2, 3} << false;
}

void TestZoneStore::moveZones()
{
    QFETCH(Ids, moving);
    QFETCH(std::optional<int>, before);
    QFETCH(Ids, expected);
    QFETCH(bool, changes);
    Fixture f;
    const QUuid stranger = QUuid::createUuid();
    const auto idAt = [&](int index) { return index < 4 ? f.id(index) : stranger; };
    QList<QUuid> ids;
    for (int index : moving)
        ids.append(idAt(index));
    std::optional<QUuid> anchor;
    if (before)
        anchor = idAt(*before);

    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->moveZones(ids, anchor);
    QList<SavedZone> want;
    for (int index : expected)
        want.append(f.initial.at(index));
    QCOMPARE(identifiersOf(f.store->zones()), identifiersOf(want));
    QCOMPARE(spy.count(), changes ? 1 : 0);
    QCOMPARE(f.writes(), changes ? 1 : 0);
    QCOMPARE(f.stored(), std::optional(want));
}

void TestZoneStore::equalListWritesWithoutSignal()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::zonesChanged);
    f.store->setZones(f.initial);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(f.writes(), 1);

    f.store->setZones(f.pick({1, 0, 2, 3}));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.writes(), 2);
}

void TestZoneStore::equalFormatWritesWithoutSignal()
{
    Fixture f;
    QSignalSpy spy(f.store.get(), &ZoneStore::formatChanged);
    f.store->setFormat(MenuBarFormat::labelTime24);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(f.preferences.writeCount(ZoneStore::formatKey), 1);
    QCOMPARE(f.preferences.readText(ZoneStore::formatKey),
             std::optional(QStringLiteral("labelTime24")));

    f.store->setFormat(MenuBarFormat::labelDayTime24);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(f.preferences.readText(ZoneStore::formatKey),
             std::optional(QStringLiteral("labelDayTime24")));
}

void TestZoneStore::pinnedZonesKeepOrder()
{
    Fixture f;
    f.store->togglePin(f.id(3));
    f.store->togglePin(f.id(1));
    QCOMPARE(identifiersOf(f.store->pinnedZones()),
             (QStringList{QStringLiteral("Asia/Tokyo"), QStringLiteral("Europe/London")}));
}

void TestZoneStore::writesNothingElse()
{
    MemoryPreferencesStore preferences;
    preferences.writeText(QStringLiteral("someone.else"), QStringLiteral("theirs"));
    ZoneStore store(preferences, testLookup());
    store.add(QStringLiteral("Asia/Tokyo"));
    store.setFormat(MenuBarFormat::timeOnly24);
    store.remove(store.zones().first().id);
    QStringList keys = preferences.keys();
    keys.sort();
    QCOMPARE(keys, (QStringList{QStringLiteral("someone.else"), ZoneStore::formatKey,
                                ZoneStore::seededKey, ZoneStore::zonesKey}));
    QCOMPARE(preferences.readText(QStringLiteral("someone.else")),
             std::optional(QStringLiteral("theirs")));
}

void TestZoneStore::secondStoreSeesEveryChange()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    SettingsPreferencesStore preferences(file);
    ZoneStore store(preferences, testLookup());

    const auto check = [&](const char *step) {
        SettingsPreferencesStore otherPreferences(file);
        ZoneStore other(otherPreferences, testLookup());
        QVERIFY2(other.zones() == store.zones(), step);
        QVERIFY2(other.format() == store.format(), step);
    };
    check("seeded");
    store.add(QStringLiteral("Asia/Tokyo"), QStringLiteral(" Tokyo office "), true);
    check("add");
    store.add(QStringLiteral("America/New_York"));
    check("add another");
    store.rename(store.zones().at(2).id, QStringLiteral("  NYC office"));
    check("rename");
    store.togglePin(store.zones().at(0).id);
    check("toggle pin");
    store.move({2}, 0);
    check("move");
    store.moveZones({store.zones().at(0).id}, std::nullopt);
    check("move zones");
    store.setFormat(MenuBarFormat::labelTime12);
    check("format");
    store.remove(store.zones().at(1).id);
    check("remove");
    store.setZones({});
    check("cleared");
}

void TestZoneStore::failedSaveKeepsEditsUntilSaved()
{
    Fixture f;
    QSignalSpy failures(f.store.get(), &ZoneStore::saveFailedChanged);
    QSignalSpy changes(f.store.get(), &ZoneStore::zonesChanged);
    f.preferences.setSavesFail(true);
    QVERIFY(f.store->add(QStringLiteral("UTC")));
    QVERIFY(f.store->togglePin(f.id(0)));
    f.store->setFormat(MenuBarFormat::timeOnly24);
    QVERIFY(f.store->saveFailed());
    QCOMPARE(failures.size(), 1);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(f.store->zones().size(), 5);
    QCOMPARE(f.stored(), std::optional(f.initial));
    QVERIFY(!f.preferences.contains(ZoneStore::formatKey));

    // Saved outside meanwhile: the held edits go on top of it, still unsaved.
    QList<SavedZone> outside = f.initial;
    outside.removeAt(1);
    f.preferences.writeFromOutside(ZoneStore::zonesKey, encoded(outside));
    QCOMPARE(identifiersOf(f.store->zones()),
             (QStringList{"Europe/Stockholm", "America/New_York", "Europe/London", "UTC"}));

    // The next edit saves them all.
    f.preferences.setSavesFail(false);
    QVERIFY(f.store->rename(f.id(2), QStringLiteral("Office")));
    QVERIFY(!f.store->saveFailed());
    QCOMPARE(failures.size(), 2);
    QCOMPARE(f.stored(), std::optional(f.store->zones()));
    QVERIFY(f.store->zones().at(0).isPinned);
    QCOMPARE(f.preferences.readText(ZoneStore::formatKey),
             std::optional(QStringLiteral("timeOnly24")));
}

void TestZoneStore::takesInOutsideChanges()
{
    Fixture f;
    QSignalSpy zones(f.store.get(), &ZoneStore::zonesChanged);
    QSignalSpy formats(f.store.get(), &ZoneStore::formatChanged);
    QSignalSpy hours(f.store.get(), &ZoneStore::workingHoursChanged);
    const QList<SavedZone> outside = f.pick({3, 2});
    f.preferences.writeFromOutside(ZoneStore::zonesKey, encoded(outside));
    f.preferences.writeFromOutside(ZoneStore::formatKey, QStringLiteral("labelTime12"));
    f.preferences.writeFromOutside(ZoneStore::workingHoursKey, QStringLiteral("08:00-16:30"));
    QCOMPARE(f.store->zones(), outside);
    QCOMPARE(f.store->format(), MenuBarFormat::labelTime12);
    QCOMPARE(f.store->workingHours(), WorkingHours::fromString(u"08:00-16:30"));
    QCOMPARE(zones.size(), 1);
    QCOMPARE(formats.size(), 1);
    QCOMPARE(hours.size(), 1);
    // Damage from outside is not taken in: the list stays as it was.
    f.preferences.writeFromOutside(ZoneStore::zonesKey, QByteArray("garbage"));
    QCOMPARE(f.store->zones(), outside);
    QCOMPARE(zones.size(), 1);
}

void TestZoneStore::twoStoresNeverOverwriteEachOther()
{
    // Each edit reads the file afresh under the lock, without waiting for
    // the other store to notice the change.
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    SettingsPreferencesStore firstPreferences(file);
    SettingsPreferencesStore secondPreferences(file);
    ZoneStore first(firstPreferences, testLookup());
    ZoneStore second(secondPreferences, testLookup());
    QVERIFY(first.add(QStringLiteral("Asia/Tokyo")));
    QVERIFY(second.add(QStringLiteral("UTC")));
    QVERIFY(!second.add(QStringLiteral("Asia/Tokyo"))); // a duplicate of the other's
    QVERIFY(first.togglePin(second.zones().at(2).id));
    second.setFormat(MenuBarFormat::labelTime12);
    QVERIFY(first.add(QStringLiteral("Asia/Kolkata")));
    SettingsPreferencesStore reader(file);
    const ZoneStore third(reader, testLookup());
    QCOMPARE(identifiersOf(third.zones()),
             (QStringList{"Europe/Stockholm", "Asia/Tokyo", "UTC", "Asia/Kolkata"}));
    QVERIFY(third.zones().at(2).isPinned);
    QCOMPARE(third.format(), MenuBarFormat::labelTime12);
    QCOMPARE(first.zones(), third.zones());
}

QTEST_GUILESS_MAIN(TestZoneStore)
#include "tst_zonestore.moc"
