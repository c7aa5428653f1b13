#include "AddZoneButton.h"
#include "AppStyle.h"
#include "Eyebrow.h"
#include "WorldMark.h"

#include <QAccessible>
#include <QLocale>
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
    void timesNeverShift();
    void symbolsAreCrisp_data();
    void symbolsAreCrisp();
    void eyebrowUpperCases_data();
    void eyebrowUpperCases();
    void worldMarkRecoloursLive();
    void addZoneButton();
};

void TestAppStyle::accent_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::addColumn<bool>("isDark");
    QTest::addColumn<QRgb>("expected");
    // 8-bit values of the design's sRGB fractions (0.62, 0.30, 0.16) and (0.94, 0.65, 0.48).
    QTest::newRow("light") << light << false << qRgb(158, 77, 41);
    QTest::newRow("dark") << dark << true << qRgb(240, 166, 122);
}

void TestAppStyle::accent()
{
    QFETCH(QPalette, palette);
    QFETCH(bool, isDark);
    QFETCH(QRgb, expected);
    QCOMPARE(AppStyle::isDark(palette), isDark);
    QCOMPARE(AppStyle::accent(palette).rgba(), expected);
    QCOMPARE(AppStyle::accent(isDark).rgba(), expected);
}

void TestAppStyle::timesNeverShift()
{
    const QFontMetrics metrics(AppStyle::monospacedFont(22));
    for (const QChar digit : QStringLiteral("0123456789:"))
        QCOMPARE(metrics.horizontalAdvance(digit), metrics.horizontalAdvance(u'0'));
}

void TestAppStyle::symbolsAreCrisp_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("side");
    // A pixel (at 1x) on a straight stroke, and its neighbour just off it.
    QTest::addColumn<QPoint>("solid");
    QTest::addColumn<QPoint>("clear");
    QTest::newRow("drag-handle bar") << "drag-handle" << 10 << QPoint(5, 2) << QPoint(5, 1);
    QTest::newRow("pin needle") << "pin" << 16 << QPoint(8, 12) << QPoint(7, 12);
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
        // Straight strokes sit on whole pixels: fully drawn in the tint beside fully empty.
        for (int dy = 0; dy < ratio; ++dy) {
            for (int dx = 0; dx < ratio; ++dx) {
                const QPoint offset(dx, dy);
                QCOMPARE(image.pixelColor(solid * ratio + offset).alpha(), 255);
                QVERIFY(near(image.pixelColor(solid * ratio + offset), tint, 1));
                QCOMPARE(image.pixelColor(clear * ratio + offset).alpha(), 0);
            }
        }
    }
}

void TestAppStyle::eyebrowUpperCases_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("shown");
    QTest::newRow("accents") << "Zürich café \u00B7 12"
                             << "ZÜRICH CAFÉ \u00B7 12";
    QTest::newRow("dotted i is not Turkish") << "istanbul"
                                             << "ISTANBUL";
}

void TestAppStyle::eyebrowUpperCases()
{
    QFETCH(QString, title);
    QFETCH(QString, shown);
    // Under Turkish rules a dotted i would upper-case to a dotted capital.
    QLocale::setDefault(QLocale(QLocale::Turkish, QLocale::Turkey));
    Eyebrow eyebrow(QStringLiteral("Before"));
    eyebrow.setTitle(title);
    QLocale::setDefault(QLocale::c());
    QCOMPARE(eyebrow.text(), shown);
    QCOMPARE(eyebrow.title(), title);
}

void TestAppStyle::worldMarkRecoloursLive()
{
    QWidget window;
    window.setPalette(light);
    auto *mark = new WorldMark(&window);
    window.resize(60, 60);
    // A corner of the tile, clear of the globe: accent at 9 % over the window.
    const QPoint tile(6, 22);
    const auto tileColour = [mark, tile] { return mark->grab().toImage().pixelColor(tile); };
    QVERIFY2(near(tileColour(), over(AppStyle::accent(false), 0.09, light.color(QPalette::Window))),
             qPrintable(tileColour().name()));
    window.setPalette(dark);
    QVERIFY2(near(tileColour(), over(AppStyle::accent(true), 0.09, dark.color(QPalette::Window))),
             qPrintable(tileColour().name()));
    // Decoration only: nothing for assistive technology or the keyboard.
    QVERIFY(QAccessible::queryAccessibleInterface(mark)->state().invisible);
    QCOMPARE(mark->focusPolicy(), Qt::NoFocus);
}

void TestAppStyle::addZoneButton()
{
    AddZoneButton button;
    QCOMPARE(button.text(), QStringLiteral("Add city"));
    const int regular = button.sizeHint().height();
    button.setControlSize(AddZoneButton::ControlSize::small);
    QVERIFY(button.sizeHint().height() < regular);
    QSignalSpy clicked(&button, &QPushButton::clicked);
    button.show();
    QTest::mouseClick(&button, Qt::LeftButton);
    QCOMPARE(clicked.count(), 1);
}

QTEST_MAIN(TestAppStyle)
#include "tst_appstyle.moc"
