#include "GlobeIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace GlobeIcon {

QList<int> sizes()
{
    return {16, 22, 24, 32, 48, 64};
}

QImage image(int size)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(QStringLiteral(":/icons/globe.svg"));
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

QIcon icon()
{
    QIcon icon;
    for (int size : sizes())
        icon.addPixmap(QPixmap::fromImage(image(size)));
    return icon;
}

} // namespace GlobeIcon
