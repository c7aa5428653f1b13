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

} // namespace

namespace TintedIcon {

QPixmap pixmap(const QString &svgPath, const QColor &color, const QSize &size,
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
    return QPixmap::fromImage(std::move(image));
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
