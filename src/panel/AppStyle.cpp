#include "AppStyle.h"

#include "TintedIcon.h"

#include <QFontDatabase>
#include <QGuiApplication>

namespace {

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(float(color.alphaF() * alpha));
    return color;
}

} // namespace

namespace AppStyle {

QColor accent(bool isDark)
{
    return isDark ? QColor::fromRgbF(0.94f, 0.65f, 0.48f) : QColor::fromRgbF(0.62f, 0.30f, 0.16f);
}

QColor accent(const QPalette &palette)
{
    return accent(isDark(palette));
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightnessF() < 0.5;
}

QColor line(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::WindowText), 0.09);
}

QPalette tinted(const QPalette &palette)
{
    QPalette tinted = palette;
    const QColor tint = accent(palette);
    tinted.setColor(QPalette::Highlight, tint);
    tinted.setColor(QPalette::HighlightedText, isDark(palette) ? Qt::black : Qt::white);
    tinted.setColor(QPalette::Link, tint);
    return tinted;
}

QColor errorText(const QPalette &palette)
{
    return isDark(palette) ? QColor(255, 105, 97) : QColor(200, 30, 30);
}

QColor secondaryText(const QPalette &palette)
{
    return withAlpha(palette.color(QPalette::WindowText), isDark(palette) ? 0.55 : 0.5);
}

QFont uiFont(qreal pixelSize, QFont::Weight weight)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(qRound(pixelSize));
    font.setWeight(weight);
    return font;
}

QFont monospacedFont(qreal pixelSize, QFont::Weight weight)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(qRound(pixelSize));
    font.setWeight(weight);
    font.setFixedPitch(true);
    return font;
}

QString symbolPath(const QString &name)
{
    return QStringLiteral(":/icons/") + name + QStringLiteral(".svg");
}

QIcon symbol(const QString &name, const QColor &color, int size)
{
    return TintedIcon::icon(symbolPath(name), color, QSize(size, size));
}

QPixmap symbolPixmap(const QString &name, const QColor &color, int size, qreal devicePixelRatio)
{
    return TintedIcon::pixmap(symbolPath(name), color, QSize(size, size), devicePixelRatio);
}

} // namespace AppStyle
