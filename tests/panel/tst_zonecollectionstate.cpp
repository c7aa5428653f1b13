#include "PanelTestSupport.h"
#include "ZoneCollectionState.h"

#include <QSignalSpy>
#include <QTest>

namespace {

// The list Stockholm, New York (nickname "Office"), Tokyo.
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
    std::optional<QUuid> idOrNone(int index) const
    {
        return index < 0 ? std::nullopt : std::optional<QUuid>(id(index));
    }

    PanelFixture panel;
    ZoneCollectionState state;
};

const QStringList unchanged{"Stockholm", "Office", "Tokyo"};

} // namespace

class TestZoneCollectionState final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void saveStoresTheTrimmedDraft_data();
    void saveStoresTheTrimmedDraft();
    void renameAndRemoval_data();
    void renameAndRemoval();
    void moveByStep_data();
    void moveByStep();
    void dragMovesIntoMoveZones_data();
    void dragMovesIntoMoveZones();
    void renameOfAVanishedZoneIsLeftOpen();
};

void TestZoneCollectionState::saveStoresTheTrimmedDraft_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("draft");
    QTest::addColumn<std::optional<QString>>("stored");
    const std::optional<QString> none;
    QTest::newRow("city's own name") << 1 << "  New York " << none;
    QTest::newRow("surrounded by spaces") << 0 << "  Office  " << std::optional<QString>("Office");
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
    // Whoever redraws on the store's announcement already sees no rename open.
    std::optional<QUuid> editingSeen = f.id(index);
    connect(f.panel.store.get(), &ZoneStore::zonesChanged, this,
            [&] { editingSeen = f.state.editingId(); });
    f.state.saveRename(f.zone(index));
    QCOMPARE(editingSeen, std::nullopt);
    QCOMPARE(f.zone(index).customLabel, stored);
    QCOMPARE(f.state.editingId(), std::nullopt);
    QCOMPARE(f.state.draftName(), QString());
}

void TestZoneCollectionState::renameAndRemoval_data()
{
    // Steps: "rename N", "type TEXT", "save N", "cancel", "remove N" (open the
    // confirmation), "keep" (cancel it), "confirm", "leave".
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("saves");
    QTest::addColumn<int>("editing"); // -1 for none
    QTest::addColumn<QString>("draft");
    QTest::addColumn<int>("removing"); // -1 for none
    QTest::newRow("rename starts from the display name")
        << QStringList{"rename 1"} << unchanged << 0 << 1 << "Office" << -1;
    QTest::newRow("second begin keeps the draft")
        << QStringList{"rename 0", "type Home", "rename 0"} << unchanged << 0 << 0 << "Home" << -1;
    QTest::newRow("begin on another saves the first")
        << QStringList{"rename 0", "type Home", "rename 2"}
        << QStringList{"Home", "Office", "Tokyo"} << 1 << 2 << "Tokyo" << -1;
    QTest::newRow("late save of another is ignored")
        << QStringList{"rename 0", "type Home", "save 2"} << unchanged << 0 << 0 << "Home" << -1;
    QTest::newRow("cancel discards")
        << QStringList{"rename 1", "type Elsewhere", "cancel"} << unchanged << 0 << -1 << "" << -1;
    QTest::newRow("begin closes the confirmation")
        << QStringList{"remove 0", "rename 2"} << unchanged << 0 << 2 << "Tokyo" << -1;
    QTest::newRow("removal discards the rename")
        << QStringList{"rename 0", "type Home", "remove 1"} << unchanged << 0 << -1 << "" << 1;
    QTest::newRow("removal on another moves the confirmation")
        << QStringList{"remove 0", "remove 2"} << unchanged << 0 << -1 << "" << 2;
    QTest::newRow("keep the city")
        << QStringList{"remove 1", "keep"} << unchanged << 0 << -1 << "" << -1;
    QTest::newRow("confirm removes") << QStringList{"remove 1", "confirm"}
                                     << QStringList{"Stockholm", "Tokyo"} << 1 << -1 << "" << -1;
    QTest::newRow("leave saves") << QStringList{"rename 2", "type Home", "leave"}
                                 << QStringList{"Stockholm", "Office", "Home"} << 1 << -1 << ""
                                 << -1;
    QTest::newRow("leave drops the confirmation")
        << QStringList{"remove 0", "leave"} << unchanged << 0 << -1 << "" << -1;
}

void TestZoneCollectionState::renameAndRemoval()
{
    QFETCH(QStringList, steps);
    QFETCH(QStringList, names);
    QFETCH(int, saves);
    QFETCH(int, editing);
    QFETCH(QString, draft);
    QFETCH(int, removing);
    Fixture f;
    QSignalSpy zones(f.panel.store.get(), &ZoneStore::zonesChanged);
    for (const QString &step : std::as_const(steps)) {
        const QString verb = step.section(u' ', 0, 0);
        const QString argument = step.section(u' ', 1);
        if (verb == "rename")
            f.state.beginRename(f.zone(argument.toInt()));
        else if (verb == "type")
            f.state.setDraftName(argument);
        else if (verb == "save")
            f.state.saveRename(f.zone(argument.toInt()));
        else if (verb == "cancel")
            f.state.cancelRename();
        else if (verb == "remove")
            f.state.openRemoval(f.zone(argument.toInt()));
        else if (verb == "keep")
            f.state.cancelRemoval();
        else if (verb == "confirm")
            f.state.confirmRemoval();
        else
            f.state.leave();
    }
    QCOMPARE(f.panel.displayNames(), names);
    QCOMPARE(zones.count(), saves);
    QCOMPARE(f.state.editingId(), f.idOrNone(editing));
    QCOMPARE(f.state.draftName(), draft);
    QCOMPARE(f.state.removingZone() ? std::optional(f.state.removingZone()->id) : std::nullopt,
             f.idOrNone(removing));
    // Cards can be dragged only while nothing is open.
    QCOMPARE(f.state.canReorder(), editing < 0 && removing < 0);
}

void TestZoneCollectionState::moveByStep_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("step");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<bool>("selects");
    QTest::newRow("middle up") << 1 << -1 << QStringList{"Office", "Stockholm", "Tokyo"} << true;
    QTest::newRow("middle down") << 1 << 1 << QStringList{"Stockholm", "Tokyo", "Office"} << true;
    QTest::newRow("first up") << 0 << -1 << unchanged << false;
    QTest::newRow("last down") << 2 << 1 << unchanged << false;
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
    QTest::newRow("past the end") << QList<int>{0} << 7
                                  << QStringList{"Office", "Tokyo", "Stockholm"} << 0;
    QTest::newRow("out of range skipped")
        << QList<int>{5, 1} << 0 << QStringList{"Office", "Stockholm", "Tokyo"} << 1;
    QTest::newRow("offsets in any order")
        << QList<int>{2, 0} << 1 << QStringList{"Stockholm", "Tokyo", "Office"} << 0;
    QTest::newRow("nothing in range") << QList<int>{9} << 0 << unchanged << -1;
}

void TestZoneCollectionState::dragMovesIntoMoveZones()
{
    QFETCH(QList<int>, offsets);
    QFETCH(int, destination);
    QFETCH(QStringList, order);
    QFETCH(int, selected);
    Fixture f;
    const std::optional<QUuid> expected = f.idOrNone(selected);
    f.state.setSelectedId(f.id(1));
    f.state.moveDragged(offsets, destination);
    QCOMPARE(f.panel.displayNames(), order);
    QCOMPARE(f.state.selectedId(), expected);
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

QTEST_MAIN(TestZoneCollectionState)
#include "tst_zonecollectionstate.moc"
