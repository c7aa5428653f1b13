#include "PanelPlacement.h"

#include <algorithm>

namespace PanelPlacement {

QPoint topLeftFor(const QPoint &click, const QSize &size, const QRect &available)
{
    constexpr int gap = 4;
    int x = click.x() - size.width() / 2;
    // Below the click when it is in the upper half of the screen, above otherwise.
    int y = click.y() < available.center().y()
                ? std::max(click.y(), available.top()) + gap
                : std::min(click.y(), available.bottom() + 1) - gap - size.height();
    x = std::clamp(x, available.left(),
                   std::max(available.left(), available.right() + 1 - size.width()));
    y = std::clamp(y, available.top(),
                   std::max(available.top(), available.bottom() + 1 - size.height()));
    return {x, y};
}

} // namespace PanelPlacement
