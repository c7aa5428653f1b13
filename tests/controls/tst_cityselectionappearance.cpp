#include "CitySelectionAppearance.h"

#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QTest>

namespace {

const QColor nativeHighlight(0, 120, 215);

bool containsColour(const QImage &image, const QColor &colour)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            if (QColor(pixels.pixel(x, y)) == colour)
                return true;
        }
    }
    return false;
}

QPalette withNativeHighlight(QPalette palette)
{
    palette.setColor(QPalette::Highlight, nativeHighlight);
    return palette;
}

} // namespace

class TestCitySelectionAppearance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyItemViewsChange_data();
    void onlyItemViewsChange();
    void selectedItemShowsNoNativeHighlight();
};

void TestCitySelectionAppearance::onlyItemViewsChange_data()
{
    QTest::addColumn<QString>("container");
    QTest::addColumn<bool>("switchedOff");
    QTest::newRow("outside any scroll area") << "none" << false;
    QTest::newRow("in a scroll area of plain widgets") << "scroll" << false;
    QTest::newRow("in an item view") << "list" << true;
}

void TestCitySelectionAppearance::onlyItemViewsChange()
{
    QFETCH(QString, container);
    QFETCH(bool, switchedOff);
    QWidget root;
    root.setPalette(withNativeHighlight(root.palette()));
    QWidget *marker = nullptr;
    QWidget *scroller = &root;
    if (container == "none") {
        marker = new QLabel(&root);
    } else if (container == "scroll") {
        auto *area = new QScrollArea(&root);
        area->setWidget(new QWidget);
        marker = new QLabel(area->widget());
        scroller = area;
    } else {
        auto *list = new QListWidget(&root);
        marker = new QLabel(list->viewport());
        scroller = list;
    }
    CitySelectionAppearance::switchOffNativeHighlight(marker);
    const QColor highlight = scroller->palette().color(QPalette::Highlight);
    QCOMPARE(highlight.alpha() == 0, switchedOff);
    QCOMPARE(root.palette().color(QPalette::Highlight), nativeHighlight);
}

void TestCitySelectionAppearance::selectedItemShowsNoNativeHighlight()
{
    QListWidget list;
    list.setPalette(withNativeHighlight(list.palette()));
    list.addItems({QStringLiteral("Tokyo"), QStringLiteral("Oslo")});
    list.resize(200, 100);
    list.setCurrentRow(0);
    // Drawn as the platform draws it first, so this check could see the highlight.
    QVERIFY(containsColour(list.grab().toImage(), nativeHighlight));

    CitySelectionAppearance::switchOffNativeHighlight(list.viewport());
    QVERIFY(!containsColour(list.grab().toImage(), nativeHighlight));
    QCOMPARE(list.currentRow(), 0);
}

QTEST_MAIN(TestCitySelectionAppearance)
#include "tst_cityselectionappearance.moc"
