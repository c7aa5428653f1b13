#include "TintedIcon.h"

#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cmath>
#include <memory>

namespace {

QSvgRenderer *rendererFor(const QString &svgPath)
{
    // Parsing is the costly part; symbols are re-tinted on every palette change.
    static QHash<QString, std::shared_ptr<QSvgRenderer>> renderers;
    auto it = renderers.find(svgPath);
    if (it == renderers.end())
        it = renderers.insert(svgPath, std::make_shared<QSvgRenderer>(svgPath));
    return it.value()->isValid() ? it.value().get() : nullptr;
}

QImage render(const QString &svgPath, const QColor &color, const QSize &size,
              qreal devicePixelRatio)
{
    QSvgRenderer *renderer = rendererFor(svgPath);
    if (!renderer || size.isEmpty())
        return {};
    const QSize pixels(int(std::lround(size.width() * devicePixelRatio)),
                       int(std::lround(size.height() * devicePixelRatio)));
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        renderer->render(&painter, QRectF(QPointF(0, 0), QSizeF(pixels)));
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), color);
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

} // namespace

namespace TintedIcon {

QPixmap pixmap(const QString &svgPath, const QColor &color, const QSize &size,
               qreal devicePixelRatio)
{
    // Each symbol is drawn once per colour and size: rows ask again whenever
    // their state changes, and drawing SVG is far dearer than a lookup.
    // Palettes come and go, so the cache starts over once it is large. Kept
    // as images, which outlive the application object safely.
    constexpr qsizetype maximumKept = 512;
    static QHash<QString, QImage> drawn;
    const QString key = QStringLiteral("%1|%2|%3x%4@%5")
                            .arg(svgPath)
                            .arg(color.rgba(), 8, 16)
                            .arg(size.width())
                            .arg(size.height())
                            .arg(devicePixelRatio);
    auto found = drawn.constFind(key);
    if (found == drawn.cend()) {
        if (drawn.size() >= maximumKept)
            drawn.clear();
        found = drawn.insert(key, render(svgPath, color, size, devicePixelRatio));
    }
    return found->isNull() ? QPixmap() : QPixmap::fromImage(*found);
}

QIcon icon(const QString &svgPath, const QColor &color, const QSize &size)
{
    QIcon result;
    for (const qreal ratio : {1.0, 2.0}) {
        const QPixmap rendered = pixmap(svgPath, color, size, ratio);
        if (!rendered.isNull())
            result.addPixmap(rendered);
    }
    return result;
}

} // namespace TintedIcon
