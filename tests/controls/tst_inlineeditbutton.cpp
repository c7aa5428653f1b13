#include "InlineEditButton.h"

#include <QImage>
#include <QTest>

namespace {

const QString symbol = QStringLiteral(":/icons/search.svg");

// The colours of the opaque pixels of an icon, at one device pixel ratio.
QSet<QRgb> opaqueColours(const QIcon &icon, qreal ratio)
{
    const QImage image =
        icon.pixmap(QSize(16, 16), ratio).toImage().convertToFormat(QImage::Format_ARGB32);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) == 255)
                colours.insert(image.pixel(x, y));
        }
    }
    return colours;
}

} // namespace

class TestInlineEditButton final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isAnIconOnlyEditAction();
    void symbolFollowsThePalette();
};

void TestInlineEditButton::isAnIconOnlyEditAction()
{
    InlineEditButton button(symbol, QStringLiteral("Before"));
    QCOMPARE(button.objectName(), QStringLiteral("inline-rename-action"));
    QCOMPARE(button.focusPolicy(), Qt::NoFocus);
    QVERIFY(button.text().isEmpty());
    QVERIFY(!button.icon().isNull());
    button.setTitle(QStringLiteral("Save name (Return)"));
    QCOMPARE(button.toolTip(), QStringLiteral("Save name (Return)"));
    QCOMPARE(button.accessibleName(), QStringLiteral("Save name (Return)"));
}

void TestInlineEditButton::symbolFollowsThePalette()
{
    InlineEditButton button(symbol, QStringLiteral("Save name (Return)"));
    QPalette palette = button.palette();
    palette.setColor(QPalette::WindowText, QColor(200, 20, 20));
    button.setPalette(palette);
    QCOMPARE(opaqueColours(button.icon(), 2), QSet<QRgb>{qRgb(200, 20, 20)});
    palette.setColor(QPalette::WindowText, QColor(20, 20, 200));
    button.setPalette(palette);
    QCOMPARE(opaqueColours(button.icon(), 1), QSet<QRgb>{qRgb(20, 20, 200)});
}

QTEST_MAIN(TestInlineEditButton)
#include "tst_inlineeditbutton.moc"
