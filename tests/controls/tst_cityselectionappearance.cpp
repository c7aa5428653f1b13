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

void setNativeHighlight(QWidget &widget)
{
    QPalette palette = widget.palette();
    palette.setColor(QPalette::Highlight, nativeHighlight);
    widget.setPalette(palette);
}

} // namespace

class TestCitySelectionAppearance final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outsideItemViewsNothingChanges();
    void selectedItemShowsNoNativeHighlight();
};

void TestCitySelectionAppearance::outsideItemViewsNothingChanges()
{
    QWidget root;
    setNativeHighlight(root);
    auto *area = new QScrollArea(&root);
    area->setWidget(new QWidget);
    CitySelectionAppearance::switchOffNativeHighlight(new QLabel(&root));
    CitySelectionAppearance::switchOffNativeHighlight(new QLabel(area->widget()));
    QCOMPARE(root.palette().color(QPalette::Highlight), nativeHighlight);
    QCOMPARE(area->palette().color(QPalette::Highlight), nativeHighlight);
}

void TestCitySelectionAppearance::selectedItemShowsNoNativeHighlight()
{
    QWidget root;
    setNativeHighlight(root);
    auto *list = new QListWidget(&root);
    list->addItems({QStringLiteral("Tokyo"), QStringLiteral("Oslo")});
    list->resize(200, 100);
    list->setCurrentRow(0);
    // Drawn as the platform draws it first, so this check could see the highlight.
    QVERIFY(containsColour(list->grab().toImage(), nativeHighlight));

    // Switched off from a widget inside the list, for the list alone.
    CitySelectionAppearance::switchOffNativeHighlight(new QLabel(list->viewport()));
    QVERIFY(!containsColour(list->grab().toImage(), nativeHighlight));
    QCOMPARE(list->currentRow(), 0);
    QCOMPARE(root.palette().color(QPalette::Highlight), nativeHighlight);
}

QTEST_MAIN(TestCitySelectionAppearance)
#include "tst_cityselectionappearance.moc"
