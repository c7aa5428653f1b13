#include "CitySelectionAppearance.h"

#include <QAbstractItemView>
#include <QPalette>

namespace CitySelectionAppearance {

void switchOffNativeHighlight(QWidget *widget)
{
    QWidget *ancestor = widget;
    while (ancestor && !qobject_cast<QAbstractScrollArea *>(ancestor))
        ancestor = ancestor->parentWidget();
    auto *view = qobject_cast<QAbstractItemView *>(ancestor);
    if (!view)
        return;
    QPalette palette = view->palette();
    for (const QPalette::ColorGroup group :
         {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Highlight, Qt::transparent);
        palette.setColor(group, QPalette::HighlightedText, palette.color(group, QPalette::Text));
    }
    view->setPalette(palette);
}

} // namespace CitySelectionAppearance
