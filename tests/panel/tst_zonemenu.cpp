#include "PanelTestSupport.h"
#include "ZoneMenu.h"

#include <QTest>

namespace {

QList<SavedZone> threeZones()
{
    return {makeZone(QStringLiteral("Europe/Stockholm"), std::nullopt, true),
            makeZone(QStringLiteral("America/New_York"), QStringLiteral("Office")),
            makeZone(QStringLiteral("Asia/Tokyo"))};
}

QStringList titles(const QList<ZoneMenu::Item> &items)
{
    QStringList result;
    for (const ZoneMenu::Item &item : items)
        result.append(item.action ? item.title : QStringLiteral("---"));
    return result;
}

std::optional<ZoneMenu::Item> itemFor(const QList<ZoneMenu::Item> &items, ZoneMenu::Action action)
{
    for (const ZoneMenu::Item &item : items) {
        if (item.action == action)
            return item;
    }
    return std::nullopt;
}

} // namespace

class TestZoneMenu final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemsInOrder_data();
    void itemsInOrder();
    void moveItemsAtTheEnds_data();
    void moveItemsAtTheEnds();
    void removeIsDestructiveAndAlwaysOffered();
    void targetIsTheFirstInListOrder();
};

void TestZoneMenu::itemsInOrder_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("pinned, no nickname")
        << 0 << QStringList{"Rename",  "Unpin from menu bar", "Copy time", "---",
                            "Move up", "Move down",           "---",       "Remove city\u2026"};
    QTest::newRow("nickname, not pinned")
        << 1 << QStringList{"Rename",    "Use city name", "Pin to menu bar",
                            "Copy time", "---",           "Move up",
                            "Move down", "---",           "Remove city\u2026"};
}

void TestZoneMenu::itemsInOrder()
{
    QFETCH(int, index);
    QFETCH(QStringList, expected);
    const QList<SavedZone> zones = threeZones();
    QCOMPARE(titles(ZoneMenu::items(zones, zones.at(index))), expected);
}

void TestZoneMenu::moveItemsAtTheEnds_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("canMoveUp");
    QTest::addColumn<bool>("canMoveDown");
    QTest::newRow("first") << 3 << 0 << false << true;
    QTest::newRow("middle") << 3 << 1 << true << true;
    QTest::newRow("last") << 3 << 2 << true << false;
    QTest::newRow("only") << 1 << 0 << false << false;
}

void TestZoneMenu::moveItemsAtTheEnds()
{
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(bool, canMoveUp);
    QFETCH(bool, canMoveDown);
    const QList<SavedZone> zones = threeZones().first(count);
    const QList<ZoneMenu::Item> items = ZoneMenu::items(zones, zones.at(index));
    QCOMPARE(itemFor(items, ZoneMenu::Action::moveUp)->isEnabled, canMoveUp);
    QCOMPARE(itemFor(items, ZoneMenu::Action::moveDown)->isEnabled, canMoveDown);
    // Everything else stays enabled at the ends.
    for (const ZoneMenu::Item &item : items) {
        if (item.action && item.action != ZoneMenu::Action::moveUp &&
            item.action != ZoneMenu::Action::moveDown)
            QVERIFY2(item.isEnabled, qPrintable(item.title));
    }
}

void TestZoneMenu::removeIsDestructiveAndAlwaysOffered()
{
    const QList<SavedZone> zones = threeZones();
    for (const SavedZone &zone : zones) {
        const QList<ZoneMenu::Item> items = ZoneMenu::items(zones, zone);
        const std::optional<ZoneMenu::Item> remove = itemFor(items, ZoneMenu::Action::remove);
        QVERIFY(remove);
        QVERIFY(remove->isDestructive);
        QCOMPARE(items.constLast(), *remove);
        QCOMPARE(std::count_if(items.cbegin(), items.cend(),
                               [](const ZoneMenu::Item &item) { return item.isDestructive; }),
                 1);
    }
}

void TestZoneMenu::targetIsTheFirstInListOrder()
{
    const QList<SavedZone> zones = threeZones();
    QCOMPARE(ZoneMenu::target(zones, {zones.at(2).id, zones.at(1).id})->id, zones.at(1).id);
    QCOMPARE(ZoneMenu::target(zones, {QUuid::createUuid()}), std::nullopt);
    QCOMPARE(ZoneMenu::target(zones, {}), std::nullopt);
}

QTEST_MAIN(TestZoneMenu)
#include "tst_zonemenu.moc"
