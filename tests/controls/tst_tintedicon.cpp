#include "TintedIcon.h"

#include <QImage>
#include <QTemporaryDir>
#include <QTest>

namespace {

// A 10x10 symbol of three one-pixel bars at rows 2, 5 and 8.
const QByteArray bars =
    "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10' viewBox='0 0 10 10'>"
    "<rect x='0' y='2' width='10' height='1'/><rect x='0' y='5' width='10' height='1'/>"
    "<rect x='0' y='8' width='10' height='1'/></svg>";

} // namespace

class TestTintedIcon final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void rendersCrispAtTheRatio_data();
    void rendersCrispAtTheRatio();
    void everyDrawnPixelTakesTheColour();
    void unreadableFileGivesNothing();

private:
    QTemporaryDir m_dir;
    QString m_bars;
};

void TestTintedIcon::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_bars = m_dir.filePath(QStringLiteral("bars.svg"));
    QFile file(m_bars);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bars);
}

void TestTintedIcon::rendersCrispAtTheRatio_data()
{
    QTest::addColumn<qreal>("ratio");
    QTest::addColumn<QList<int>>("opaqueRows");
    QTest::newRow("1x") << 1.0 << QList<int>{2, 5, 8};
    QTest::newRow("2x") << 2.0 << QList<int>{4, 5, 10, 11, 16, 17};
}

void TestTintedIcon::rendersCrispAtTheRatio()
{
    QFETCH(qreal, ratio);
    QFETCH(QList<int>, opaqueRows);
    // The icon holds the same image as the pixmap at this ratio.
    const QPixmap pixmap =
        TintedIcon::icon(m_bars, Qt::black, QSize(10, 10)).pixmap({10, 10}, ratio);
    QCOMPARE(pixmap.deviceIndependentSize(), QSizeF(10, 10));
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(image.height(), qRound(10 * ratio));
    // Whole rows are either fully drawn or fully empty, no blur between.
    for (int y = 0; y < image.height(); ++y)
        QCOMPARE(qAlpha(image.pixel(image.width() / 2, y)), opaqueRows.contains(y) ? 255 : 0);
}

void TestTintedIcon::everyDrawnPixelTakesTheColour()
{
    const QImage image = TintedIcon::pixmap(m_bars, QColor(30, 160, 90, 128), QSize(10, 10), 1)
                             .toImage()
                             .convertToFormat(QImage::Format_ARGB32);
    const QColor drawn = image.pixelColor(5, 2);
    QCOMPARE(drawn.alpha(), 128);
    QVERIFY(qAbs(drawn.red() - 30) <= 1 && qAbs(drawn.green() - 160) <= 1 &&
            qAbs(drawn.blue() - 90) <= 1);
    QCOMPARE(image.pixelColor(5, 3).alpha(), 0);
}

void TestTintedIcon::unreadableFileGivesNothing()
{
    const QString missing = m_dir.filePath(QStringLiteral("missing.svg"));
    QVERIFY(TintedIcon::pixmap(missing, Qt::red, QSize(10, 10), 1).isNull());
    QVERIFY(TintedIcon::icon(missing, Qt::red, QSize(10, 10)).isNull());
}

QTEST_MAIN(TestTintedIcon)
#include "tst_tintedicon.moc"
