#include "PanelPlacement.h"

#include <QTest>

class TestPanelPlacement final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placement_data();
    void placement();
};

void TestPanelPlacement::placement_data()
{
    QTest::addColumn<QPoint>("click");
    QTest::addColumn<QRect>("available");
    QTest::addColumn<QPoint>("expected");
    const QRect topBar(0, 28, 1280, 772);   // panel along the top
    const QRect bottomBar(0, 0, 1280, 760); // panel along the bottom
    QTest::newRow("centred under the click") << QPoint(640, 14) << topBar << QPoint(440, 32);
    QTest::newRow("kept off the right edge") << QPoint(1270, 14) << topBar << QPoint(880, 32);
    QTest::newRow("kept off the left edge") << QPoint(10, 14) << topBar << QPoint(0, 32);
    QTest::newRow("above a bottom tray") << QPoint(1200, 780) << bottomBar << QPoint(880, 276);
    QTest::newRow("second screen")
        << QPoint(1300, 10) << QRect(1280, 24, 1920, 1056) << QPoint(1280, 28);
    QTest::newRow("screen smaller than the panel")
        << QPoint(100, 10) << QRect(0, 0, 300, 400) << QPoint(0, 0);
}

void TestPanelPlacement::placement()
{
    QFETCH(QPoint, click);
    QFETCH(QRect, available);
    QFETCH(QPoint, expected);
    const QSize size(400, 480);
    const QPoint topLeft = PanelPlacement::topLeftFor(click, size, available);
    QCOMPARE(topLeft, expected);
    if (available.width() >= size.width() && available.height() >= size.height())
        QVERIFY(available.contains(QRect(topLeft, size)));
}

QTEST_GUILESS_MAIN(TestPanelPlacement)
#include "tst_panelplacement.moc"
