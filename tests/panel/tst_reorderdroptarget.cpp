#include "ReorderDropTarget.h"

#include <QTest>

namespace {

// Three cards 60 tall, 8 apart, starting at 4: 4-64, 72-132, 140-200.
const QList<ReorderDropTarget::Span> cards{{4, 64}, {72, 132}, {140, 200}};

} // namespace

class TestReorderDropTarget final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void destination_data();
    void destination();
    void indicator_data();
    void indicator();
    void changesOrder_data();
    void changesOrder();
};

void TestReorderDropTarget::destination_data()
{
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("expected");
    QTest::newRow("above the list") << -30 << 0;
    QTest::newRow("lower half of the first") << 40 << 1;
    QTest::newRow("exactly the middle of the second") << 102 << 2;
    QTest::newRow("just above that middle") << 101 << 1;
    QTest::newRow("lower half of the last") << 190 << 3;
    QTest::newRow("below the list") << 500 << 3;
}

void TestReorderDropTarget::destination()
{
    QFETCH(int, y);
    QFETCH(int, expected);
    QCOMPARE(ReorderDropTarget(cards).destination(y), expected);
}

void TestReorderDropTarget::indicator_data()
{
    QTest::addColumn<int>("destination");
    QTest::addColumn<int>("expected");
    QTest::newRow("before the first") << 0 << 2;
    QTest::newRow("between first and second") << 1 << 68;
    QTest::newRow("after the last") << 3 << 202;
}

void TestReorderDropTarget::indicator()
{
    QFETCH(int, destination);
    QFETCH(int, expected);
    QCOMPARE(ReorderDropTarget(cards).indicatorY(destination, 2), expected);
}

void TestReorderDropTarget::changesOrder_data()
{
    QTest::addColumn<int>("offset");
    QTest::addColumn<int>("destination");
    QTest::addColumn<bool>("changes");
    QTest::newRow("onto itself") << 1 << 1 << false;
    QTest::newRow("just after itself") << 1 << 2 << false;
    QTest::newRow("past its neighbour") << 1 << 3 << true;
    QTest::newRow("third to the top") << 2 << 0 << true;
}

void TestReorderDropTarget::changesOrder()
{
    QFETCH(int, offset);
    QFETCH(int, destination);
    QFETCH(bool, changes);
    QCOMPARE(ReorderDropTarget::changesOrder(offset, destination), changes);
}

QTEST_MAIN(TestReorderDropTarget)
#include "tst_reorderdroptarget.moc"
