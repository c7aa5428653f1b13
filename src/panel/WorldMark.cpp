#include "WorldMark.h"

#include "AppStyle.h"
#include "DecorativeAccessible.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int side = 44;
constexpr int symbolSide = 22;
constexpr qreal cornerRadius = 12;

} // namespace

WorldMark::WorldMark(QWidget *parent)
    : QWidget(parent)
{
    DecorativeAccessible::hide(this);
    setFixedSize(side, side);
}

QSize WorldMark::sizeHint() const
{
    return {side, side};
}

void WorldMark::paintEvent(QPaintEvent *)
{
    const QColor accent = AppStyle::accent(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor tile = accent;
    tile.setAlphaF(0.09f);
    QPainterPath shape;
    shape.addRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
    painter.fillPath(shape, tile);
    const QPixmap globe =
        AppStyle::symbolPixmap(QStringLiteral("world"), accent, symbolSide, devicePixelRatioF());
    const int offset = (side - symbolSide) / 2;
    painter.drawPixmap(offset, offset, globe);
}
