#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace PanelPlacement {

// Where a panel of the given size goes for a click at a point: centred under
// the point when the tray is at the top of the screen, above it when the tray
// is at the bottom, and always inside the available area.
QPoint topLeftFor(const QPoint &click, const QSize &size, const QRect &available);

} // namespace PanelPlacement
