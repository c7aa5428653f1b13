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

// The menu as text: separators as "---", disabled items in brackets, the
// destructive item marked with "!".
QStringList titles(const QList<ZoneMenu::Item> &items)
{
    QStringList result;
    for (const ZoneMenu::Item &item : items) {
        QString title = item.action ? item.title : QStringLiteral("---");
        if (item.action && !item.isEnabled)
            title = '(' + title + ')';
        if (item.isDestructive)
            title += '!';
        result.append(title);
    }
    return result;
}

} // namespace

class TestZoneMenu final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void items_data();
    void items();
    void targetIsTheFirstInListOrder();
};

void TestZoneMenu::items_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("index");
    QTest::addColumn<bool>("canShiftTime");
    QTest::addColumn<QStringList>("expected");
    const QString remove = QStringLiteral("Remove city\u2026!");
    QTest::newRow("first, pinned, no nickname")
        << 3 << 0 << false
        << QStringList{"Rename",    "Unpin from menu bar", "Copy time", "Copy all", "---",
                       "(Move up)", "Move down",           "---",       remove};
    QTest::newRow("middle, nickname, not pinned")
        << 3 << 1 << false
        << QStringList{"Rename", "Use city name", "Pin to menu bar", "Copy time", "Copy all",
                       "---",    "Move up",       "Move down",       "---",       remove};
    QTest::newRow("last, in the panel")
        << 3 << 2 << true
        << QStringList{"Rename", "Pin to menu bar", "Copy time",   "Copy all", "Set time\u2026",
                       "---",    "Move up",         "(Move down)", "---",      remove};
    QTest::newRow("only") << 1 << 0 << false
                          << QStringList{"Rename", "Unpin from menu bar", "Copy time",   "Copy all",
                                         "---",    "(Move up)",           "(Move down)", "---",
                                         remove};
}

void TestZoneMenu::items()
{
    QFETCH(int, count);
    QFETCH(int, index);
    QFETCH(bool, canShiftTime);
    QFETCH(QStringList, expected);
    const QList<SavedZone> zones = threeZones().first(count);
    QCOMPARE(titles(ZoneMenu::items(zones, zones.at(index), canShiftTime)), expected);
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
