#include "PanelTestSupport.h"
#include "ZoneCollectionState.h"

#include <QSignalSpy>
#include <QTest>

namespace {

// The list a, b, c: Stockholm, New York (nickname "Office"), Tokyo.
struct Fixture
{
    Fixture()
        : panel({makeZone(QStringLiteral("Europe/Stockholm")),
                 makeZone(QStringLiteral("America/New_York"), QStringLiteral("Office")),
                 makeZone(QStringLiteral("Asia/Tokyo"))})
        , state(*panel.store)
    {}
    SavedZone zone(int index) const { return panel.store->zones().at(index); }
    QUuid id(int index) const { return panel.id(index); }

    PanelFixture panel;
    ZoneCollectionState state;
};

} // namespace

class TestZoneCollectionState final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saveStoresTheTrimmedDraft_data();
    void saveStoresTheTrimmedDraft();
    void beginRenameStartsFromTheDisplayName();
    void beginRenameTwiceKeepsTheDraft();
    void beginRenameOfAnotherSavesTheFirst();
    void beginRenameClosesTheConfirmation();
    void lateSaveIsIgnored();
    void cancelDiscardsTheDraft();
    void removalDiscardsTheRename();
    void removalOnAnotherZoneMovesTheConfirmation();
    void confirmationCancelAndRemove();
    void reorderOnlyWhenIdle();
    void hoverLeavingKeepsTheNeighbour();
    void highlightIsHoverOrSelection();
    void moveByStep_data();
    void moveByStep();
    void dragMovesIntoMoveZones_data();
    void dragMovesIntoMoveZones();
    void leaveSavesAndDropsTheConfirmation();
    void renameOfAVanishedZoneIsLeftOpen();
    void saveAnnouncesAClosedRename();
};

void TestZoneCollectionState::saveStoresTheTrimmedDraft_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("draft");
    QTest::addColumn<std::optional<QString>>("stored");
    const std::optional<QString> none;
    QTest::newRow("city's own name") << 1 << "New York" << none;
    QTest::newRow("city's name with spaces") << 1 << "  New York " << none;
    QTest::newRow("surrounded by spaces") << 0 << "  Office  " << std::optional<QString>("Office");
    QTest::newRow("empty") << 1 << "" << none;
    QTest::newRow("only white space") << 1 << " \t\n " << none;
    QTest::newRow("case differs from the city") << 2 << "tokyo" << std::optional<QString>("tokyo");
}

void TestZoneCollectionState::saveStoresTheTrimmedDraft()
{
    QFETCH(int, index);
    QFETCH(QString, draft);
    QFETCH(std::optional<QString>, stored);
    Fixture f;
    f.state.beginRename(f.zone(index));
    f.state.setDraftName(draft);
    f.state.saveRename(f.zone(index));
    QCOMPARE(f.zone(index).customLabel, stored);
    QCOMPARE(f.state.editingId(), std::nullopt);
    QCOMPARE(f.state.draftName(), QString());
}

void TestZoneCollectionState::beginRenameStartsFromTheDisplayName()
{
    Fixture f;
    f.state.beginRename(f.zone(1));
    QCOMPARE(f.state.editingId(), f.id(1));
    QCOMPARE(f.state.draftName(), QStringLiteral("Office"));
    QVERIFY(f.state.isRenaming(f.id(1)));
    QVERIFY(!f.state.isRenaming(f.id(0)));
}

void TestZoneCollectionState::beginRenameTwiceKeepsTheDraft()
{
    // A double-click reaches the rename both from the row and from the list.
    Fixture f;
    QSignalSpy zones(f.panel.store.get(), &ZoneStore::zonesChanged);
    f.state.beginRename(f.zone(0));
    f.state.setDraftName(QStringLiteral("Home"));
    f.state.beginRename(f.zone(0));
    QCOMPARE(f.state.draftName(), QStringLiteral("Home"));
    QCOMPARE(zones.count(), 0);
}

void TestZoneCollectionState::beginRenameOfAnotherSavesTheFirst()
{
    Fixture f;
    f.state.beginRename(f.zone(0));
    f.state.setDraftName(QStringLiteral("Home"));
    f.state.beginRename(f.zone(2));
    QCOMPARE(f.zone(0).customLabel, std::optional<QString>(QStringLiteral("Home")));
    QCOMPARE(f.state.editingId(), f.id(2));
    QCOMPARE(f.state.draftName(), QStringLiteral("Tokyo"));
}

void TestZoneCollectionState::beginRenameClosesTheConfirmation()
{
    Fixture f;
    f.state.openRemoval(f.zone(0));
    f.state.beginRename(f.zone(2));
    QCOMPARE(f.state.removingZone(), std::nullopt);
    QCOMPARE(f.panel.store->zones().size(), 3);
}

void TestZoneCollectionState::lateSaveIsIgnored()
{
    Fixture f;
    QSignalSpy zones(f.panel.store.get(), &ZoneStore::zonesChanged);
    f.state.beginRename(f.zone(0));
    f.state.setDraftName(QStringLiteral("Home"));
    f.state.saveRename(f.zone(2));
    QCOMPARE(zones.count(), 0);
    QCOMPARE(f.state.editingId(), f.id(0));
    QCOMPARE(f.state.draftName(), QStringLiteral("Home"));
}

void TestZoneCollectionState::cancelDiscardsTheDraft()
{
    Fixture f;
    QSignalSpy zones(f.panel.store.get(), &ZoneStore::zonesChanged);
    f.state.beginRename(f.zone(1));
    f.state.setDraftName(QStringLiteral("Elsewhere"));
    f.state.cancelRename();
    QCOMPARE(zones.count(), 0);
    QCOMPARE(f.zone(1).customLabel, std::optional<QString>(QStringLiteral("Office")));
    QCOMPARE(f.state.editingId(), std::nullopt);
    QCOMPARE(f.state.draftName(), QString());
}

void TestZoneCollectionState::removalDiscardsTheRename()
{
    Fixture f;
    f.state.beginRename(f.zone(0));
    f.state.setDraftName(QStringLiteral("Home"));
    f.state.openRemoval(f.zone(1));
    QCOMPARE(f.zone(0).customLabel, std::nullopt);
    QCOMPARE(f.state.editingId(), std::nullopt);
    QVERIFY(f.state.isConfirmingRemoval(f.id(1)));
    QVERIFY(!f.state.isConfirmingRemoval(f.id(0)));
}

void TestZoneCollectionState::removalOnAnotherZoneMovesTheConfirmation()
{
    Fixture f;
    f.state.openRemoval(f.zone(0));
    f.state.openRemoval(f.zone(2));
    QVERIFY(!f.state.isConfirmingRemoval(f.id(0)));
    QVERIFY(f.state.isConfirmingRemoval(f.id(2)));
}

void TestZoneCollectionState::confirmationCancelAndRemove()
{
    Fixture f;
    f.state.openRemoval(f.zone(1));
    f.state.cancelRemoval();
    QCOMPARE(f.panel.store->zones().size(), 3);
    QCOMPARE(f.state.removingZone(), std::nullopt);

    const QUuid removed = f.id(1);
    f.state.openRemoval(f.zone(1));
    f.state.confirmRemoval();
    QCOMPARE(f.panel.displayNames(), (QStringList{"Stockholm", "Tokyo"}));
    QVERIFY(!f.panel.store->zone(removed));
    QCOMPARE(f.state.removingZone(), std::nullopt);
}

void TestZoneCollectionState::reorderOnlyWhenIdle()
{
    Fixture f;
    QVERIFY(f.state.canReorder());
    f.state.beginRename(f.zone(0));
    QVERIFY(!f.state.canReorder());
    f.state.cancelRename();
    QVERIFY(f.state.canReorder());
    f.state.openRemoval(f.zone(2));
    QVERIFY(!f.state.canReorder());
    f.state.cancelRemoval();
    QVERIFY(f.state.canReorder());
}

void TestZoneCollectionState::hoverLeavingKeepsTheNeighbour()
{
    Fixture f;
    f.state.hoverEntered(f.id(0));
    f.state.hoverEntered(f.id(1));
    f.state.hoverLeft(f.id(0));
    QCOMPARE(f.state.hoveredId(), f.id(1));
    f.state.hoverLeft(f.id(1));
    QCOMPARE(f.state.hoveredId(), std::nullopt);
}

void TestZoneCollectionState::highlightIsHoverOrSelection()
{
    Fixture f;
    f.state.setSelectedId(f.id(0));
    f.state.hoverEntered(f.id(2));
    QVERIFY(f.state.isHighlighted(f.id(0)));
    QVERIFY(!f.state.isHighlighted(f.id(1)));
    QVERIFY(f.state.isHighlighted(f.id(2)));
}

void TestZoneCollectionState::moveByStep_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("step");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<bool>("selects");
    QTest::newRow("middle up") << 1 << -1 << QStringList{"Office", "Stockholm", "Tokyo"} << true;
    QTest::newRow("middle down") << 1 << 1 << QStringList{"Stockholm", "Tokyo", "Office"} << true;
    QTest::newRow("first down") << 0 << 1 << QStringList{"Office", "Stockholm", "Tokyo"} << true;
    QTest::newRow("first up") << 0 << -1 << QStringList{"Stockholm", "Office", "Tokyo"} << false;
    QTest::newRow("last down") << 2 << 1 << QStringList{"Stockholm", "Office", "Tokyo"} << false;
}

void TestZoneCollectionState::moveByStep()
{
    QFETCH(int, index);
    QFETCH(int, step);
    QFETCH(QStringList, order);
    QFETCH(bool, selects);
    Fixture f;
    const SavedZone moved = f.zone(index);
    f.state.move(moved, step);
    QCOMPARE(f.panel.displayNames(), order);
    QCOMPARE(f.state.selectedId(), selects ? std::optional<QUuid>(moved.id) : std::nullopt);
}

void TestZoneCollectionState::dragMovesIntoMoveZones_data()
{
    QTest::addColumn<QList<int>>("offsets");
    QTest::addColumn<int>("destination");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<int>("selected"); // index in the original list, -1 for none
    QTest::newRow("third to the top")
        << QList<int>{2} << 0 << QStringList{"Tokyo", "Stockholm", "Office"} << 2;
    QTest::newRow("first to the end")
        << QList<int>{0} << 3 << QStringList{"Office", "Tokyo", "Stockholm"} << 0;
    QTest::newRow("past the end") << QList<int>{0} << 7
                                  << QStringList{"Office", "Tokyo", "Stockholm"} << 0;
    QTest::newRow("out of range skipped")
        << QList<int>{5, 1} << 0 << QStringList{"Office", "Stockholm", "Tokyo"} << 1;
    QTest::newRow("offsets in any order")
        << QList<int>{2, 0} << 1 << QStringList{"Stockholm", "Tokyo", "Office"} << 0;
    QTest::newRow("nothing in range")
        << QList<int>{9} << 0 << QStringList{"Stockholm", "Office", "Tokyo"} << -1;
}

void TestZoneCollectionState::dragMovesIntoMoveZones()
{
    QFETCH(QList<int>, offsets);
    QFETCH(int, destination);
    QFETCH(QStringList, order);
    QFETCH(int, selected);
    Fixture f;
    const std::optional<QUuid> expected =
        selected < 0 ? std::nullopt : std::optional<QUuid>(f.id(selected));
    f.state.setSelectedId(f.id(1));
    f.state.moveDragged(offsets, destination);
    QCOMPARE(f.panel.displayNames(), order);
    QCOMPARE(f.state.selectedId(), expected);
}

void TestZoneCollectionState::leaveSavesAndDropsTheConfirmation()
{
    Fixture f;
    f.state.beginRename(f.zone(2));
    f.state.setDraftName(QStringLiteral("Home"));
    f.state.leave();
    QCOMPARE(f.zone(2).customLabel, std::optional<QString>(QStringLiteral("Home")));
    QCOMPARE(f.state.editingId(), std::nullopt);

    f.state.openRemoval(f.zone(0));
    f.state.leave();
    QCOMPARE(f.state.removingZone(), std::nullopt);
    QCOMPARE(f.panel.store->zones().size(), 3);
}

void TestZoneCollectionState::renameOfAVanishedZoneIsLeftOpen()
{
    Fixture f;
    const QUuid gone = f.id(2);
    f.state.beginRename(f.zone(2));
    f.panel.store->remove(gone);
    QSignalSpy zones(f.panel.store.get(), &ZoneStore::zonesChanged);
    f.state.finishCurrentRename();
    QCOMPARE(zones.count(), 0);
    QCOMPARE(f.state.editingId(), gone);
}

void TestZoneCollectionState::saveAnnouncesAClosedRename()
{
    // Whoever redraws on the store's announcement already sees no rename open.
    Fixture f;
    f.state.beginRename(f.zone(0));
    f.state.setDraftName(QStringLiteral("Home"));
    std::optional<QUuid> editingSeen = f.id(0);
    connect(f.panel.store.get(), &ZoneStore::zonesChanged, this,
            [&] { editingSeen = f.state.editingId(); });
    f.state.saveRename(f.zone(0));
    QCOMPARE(editingSeen, std::nullopt);
}

QTEST_MAIN(TestZoneCollectionState)
#include "tst_zonecollectionstate.moc"
