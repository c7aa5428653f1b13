#include "AddZoneButton.h"
#include "AppStyle.h"
#include "Eyebrow.h"
#include "WorldMark.h"

#include <QAccessible>
#include <QApplication>
#include <QFontInfo>
#include <QSignalSpy>
#include <QTest>

namespace {

QPalette paletteWith(const QColor &window, const QColor &text)
{
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    return palette;
}

const QPalette light = paletteWith(QColor(0xef, 0xef, 0xef), Qt::black);
const QPalette dark = paletteWith(QColor(0x2b, 0x2b, 0x2d), QColor(0xec, 0xec, 0xec));

bool near(const QColor &a, const QColor &b, int tolerance = 2)
{
    return qAbs(a.red() - b.red()) <= tolerance && qAbs(a.green() - b.green()) <= tolerance &&
           qAbs(a.blue() - b.blue()) <= tolerance;
}

QColor over(const QColor &top, qreal alpha, const QColor &bottom)
{
    const auto mix = [alpha](int a, int b) { return qRound(a * alpha + b * (1 - alpha)); };
    return QColor(mix(top.red(), bottom.red()), mix(top.green(), bottom.green()),
                  mix(top.blue(), bottom.blue()));
}

} // namespace

class TestAppStyle final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void accent_data();
    void accent();
    void lineAndSecondaryText_data();
    void lineAndSecondaryText();
    void timesNeverShift();
    void uiFontIsTheSystemFace();
    void symbolsAreCrisp_data();
    void symbolsAreCrisp();
    void eyebrowUpperCases_data();
    void eyebrowUpperCases();
    void eyebrowLook();
    void worldMarkRecoloursLive();
    void worldMarkIsDecoration();
    void addZoneButton();
};

void TestAppStyle::accent_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("light") << light << false << QColor::fromRgbF(0.62f, 0.30f, 0.16f);
    QTest::newRow("dark") << dark << true << QColor::fromRgbF(0.94f, 0.65f, 0.48f);
    QTest::newRow("black window") << paletteWith(Qt::black, Qt::white) << true
                                  << QColor::fromRgbF(0.94f, 0.65f, 0.48f);
    QTest::newRow("white window") << paletteWith(Qt::white, Qt::black) << false
                                  << QColor::fromRgbF(0.62f, 0.30f, 0.16f);
}

void TestAppStyle::accent()
{
    QFETCH(QPalette, palette);
    QFETCH(bool, isDark);
    QFETCH(QColor, expected);
    QCOMPARE(AppStyle::isDark(palette), isDark);
    QCOMPARE(AppStyle::accent(palette), expected);
    QCOMPARE(AppStyle::accent(palette).alpha(), 255);
    // 8-bit values of the design's sRGB fractions.
    QCOMPARE(AppStyle::accent(false).rgb(), qRgb(158, 77, 41));
    QCOMPARE(AppStyle::accent(true).rgb(), qRgb(240, 166, 122));
}

void TestAppStyle::lineAndSecondaryText_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<int>("secondaryAlpha");
    QTest::newRow("light") << light << qRound(0.5 * 255);
    QTest::newRow("dark") << dark << qRound(0.55 * 255);
}

void TestAppStyle::lineAndSecondaryText()
{
    QFETCH(QPalette, palette);
    QFETCH(int, secondaryAlpha);
    const QColor text = palette.color(QPalette::WindowText);
    const QColor line = AppStyle::line(palette);
    QCOMPARE(line.rgb(), text.rgb());
    QCOMPARE(line.alpha(), qRound(0.09 * 255));
    const QColor secondary = AppStyle::secondaryText(palette);
    QCOMPARE(secondary.rgb(), text.rgb());
    QVERIFY(qAbs(secondary.alpha() - secondaryAlpha) <= 1);
}

void TestAppStyle::timesNeverShift()
{
    const QFont font = AppStyle::monospacedFont(22);
    QCOMPARE(font.pixelSize(), 22);
    const QFontMetrics metrics(font);
    // Monospaced as a whole, not only in its digits.
    QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'M'));
    for (const QChar digit : QStringLiteral("0123456789"))
        QCOMPARE(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
    QCOMPARE(metrics.horizontalAdvance(QStringLiteral("11:11")),
             metrics.horizontalAdvance(QStringLiteral("00:00")));
}

void TestAppStyle::uiFontIsTheSystemFace()
{
    const QFont font = AppStyle::uiFont(14, QFont::DemiBold);
    QCOMPARE(font.family(), QApplication::font().family());
    QCOMPARE(font.pixelSize(), 14);
    QCOMPARE(font.weight(), QFont::DemiBold);
}

void TestAppStyle::symbolsAreCrisp_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("side");
    // A pixel (at 1x) on a straight stroke, and its neighbour just off it;
    // (-1, -1) for symbols made only of curves and diagonals.
    QTest::addColumn<QPoint>("solid");
    QTest::addColumn<QPoint>("clear");
    const QPoint none(-1, -1);
    QTest::newRow("world latitude") << "world" << 22 << QPoint(11, 7) << QPoint(11, 6);
    QTest::newRow("drag-handle bar") << "drag-handle" << 10 << QPoint(5, 2) << QPoint(5, 1);
    QTest::newRow("plus bar") << "plus" << 12 << QPoint(2, 5) << QPoint(2, 4);
    QTest::newRow("pin head") << "pin" << 16 << QPoint(8, 1) << QPoint(8, 0);
    QTest::newRow("pin needle") << "pin" << 16 << QPoint(8, 12) << QPoint(7, 12);
    QTest::newRow("filled pin needle") << "pin-fill" << 16 << QPoint(8, 12) << QPoint(7, 12);
    QTest::newRow("copy front sheet") << "copy" << 16 << QPoint(9, 5) << QPoint(9, 4);
    QTest::newRow("arrow-up shaft") << "arrow-up" << 16 << QPoint(8, 10) << QPoint(7, 10);
    QTest::newRow("arrow-down shaft") << "arrow-down" << 16 << QPoint(8, 6) << QPoint(9, 6);
    QTest::newRow("pencil") << "pencil" << 16 << none << none;
    QTest::newRow("xmark") << "xmark" << 16 << none << none;
    QTest::newRow("checkmark") << "checkmark" << 16 << none << none;
}

void TestAppStyle::symbolsAreCrisp()
{
    QFETCH(QString, name);
    QFETCH(int, side);
    QFETCH(QPoint, solid);
    QFETCH(QPoint, clear);
    const QColor tint(40, 120, 200);
    for (const int ratio : {1, 2}) {
        const QImage image = AppStyle::symbolPixmap(name, tint, side, ratio)
                                 .toImage()
                                 .convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), QSize(side, side) * ratio);
        int drawn = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() > 0)
                    ++drawn;
                if (pixel.alpha() == 255)
                    QVERIFY(near(pixel, tint, 1));
            }
        }
        QVERIFY(drawn > side * ratio);
        if (solid.x() < 0)
            continue;
        // Straight strokes sit on whole pixels: fully drawn beside fully empty.
        for (int dy = 0; dy < ratio; ++dy) {
            for (int dx = 0; dx < ratio; ++dx) {
                const QPoint offset(dx, dy);
                QCOMPARE(image.pixelColor(solid * ratio + offset).alpha(), 255);
                QCOMPARE(image.pixelColor(clear * ratio + offset).alpha(), 0);
            }
        }
    }
}

void TestAppStyle::eyebrowUpperCases_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("shown");
    QTest::newRow("count") << "Your cities \u00B7 12"
                           << "YOUR CITIES \u00B7 12";
    QTest::newRow("tagline") << "A little closer, everywhere"
                             << "A LITTLE CLOSER, EVERYWHERE";
    QTest::newRow("accents") << "Zürich café"
                             << "ZÜRICH CAFÉ";
    QTest::newRow("dotted i is not Turkish") << "istanbul"
                                             << "ISTANBUL";
}

void TestAppStyle::eyebrowUpperCases()
{
    QFETCH(QString, title);
    QFETCH(QString, shown);
    Eyebrow eyebrow(title);
    QCOMPARE(eyebrow.text(), shown);
    QCOMPARE(eyebrow.title(), title);
    eyebrow.setTitle(QStringLiteral("Search results"));
    QCOMPARE(eyebrow.text(), QStringLiteral("SEARCH RESULTS"));
}

void TestAppStyle::eyebrowLook()
{
    Eyebrow eyebrow(QStringLiteral("A few places to start"));
    QCOMPARE(eyebrow.font().pixelSize(), 10);
    QCOMPARE(eyebrow.font().weight(), QFont::Medium);
    QCOMPARE(eyebrow.font().letterSpacingType(), QFont::AbsoluteSpacing);
    QCOMPARE(eyebrow.font().letterSpacing(), 1.5);
    const QFontMetrics metrics(eyebrow.font());
    QCOMPARE(metrics.horizontalAdvance(u'I'), metrics.horizontalAdvance(u'W'));
    QCOMPARE(eyebrow.tone(), TextLine::Tone::secondary);
}

void TestAppStyle::worldMarkRecoloursLive()
{
    QWidget window;
    window.setPalette(light);
    auto *mark = new WorldMark(&window);
    window.resize(60, 60);
    QCOMPARE(mark->size(), QSize(44, 44));
    // A corner of the tile, clear of the globe: accent at 9 % over the window.
    const QPoint tile(6, 22);
    const QColor lightTile = mark->grab().toImage().pixelColor(tile);
    QVERIFY2(near(lightTile, over(AppStyle::accent(false), 0.09, light.color(QPalette::Window))),
             qPrintable(lightTile.name()));
    // The globe's rim on the tile's middle row is drawn in the accent colour.
    const QImage lightShot = mark->grab().toImage();

    window.setPalette(dark);
    const QImage darkShot = mark->grab().toImage();
    QVERIFY2(near(darkShot.pixelColor(tile),
                  over(AppStyle::accent(true), 0.09, dark.color(QPalette::Window))),
             qPrintable(darkShot.pixelColor(tile).name()));
    int accentPixels = 0;
    for (int x = 0; x < darkShot.width(); ++x) {
        if (near(darkShot.pixelColor(x, 22), AppStyle::accent(true), 20))
            ++accentPixels;
    }
    QVERIFY(accentPixels >= 2);
    QVERIFY(lightShot != darkShot);
}

void TestAppStyle::worldMarkIsDecoration()
{
    WorldMark mark;
    QAccessibleInterface *face = QAccessible::queryAccessibleInterface(&mark);
    QVERIFY(face);
    QVERIFY(face->state().invisible);
    QVERIFY(!face->state().focusable);
    QVERIFY(face->text(QAccessible::Name).isEmpty());
    QCOMPARE(face->childCount(), 0);
    QCOMPARE(mark.focusPolicy(), Qt::NoFocus);
}

void TestAppStyle::addZoneButton()
{
    AddZoneButton button;
    QCOMPARE(button.text(), QStringLiteral("Add city"));
    QVERIFY(!button.isFlat());
    QVERIFY(!button.icon().isNull());
    const int regular = button.sizeHint().height();
    button.setControlSize(AddZoneButton::ControlSize::small);
    QVERIFY(button.sizeHint().height() < regular);
    QVERIFY(button.font().pixelSize() < 13);
    QSignalSpy clicked(&button, &QPushButton::clicked);
    button.show();
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
}

QTEST_MAIN(TestAppStyle)
#include "tst_appstyle.moc"
