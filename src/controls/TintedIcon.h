#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

// Our SVG symbols are drawn in black; they are shown in one colour taken
// from the palette, rendered at the exact device pixel ratio so that they
// stay crisp on 1x and 2x screens.
namespace TintedIcon {

// The symbol at `size` logical pixels and `devicePixelRatio`, every drawn
// pixel in `color` (its alpha included). Null when the file cannot be read.
QPixmap pixmap(const QString &svgPath, const QColor &color, const QSize &size,
               qreal devicePixelRatio);

// An icon holding the 1x and 2x renderings.
QIcon icon(const QString &svgPath, const QColor &color, const QSize &size);

} // namespace TintedIcon
