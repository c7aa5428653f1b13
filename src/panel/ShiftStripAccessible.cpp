#include "ShiftStripAccessible.h"

#include "AccessibleFactory.h"
#include "ShiftStrip.h"

ShiftStripAccessible::ShiftStripAccessible(ShiftStrip *strip)
    : QAccessibleWidget(strip, QAccessible::Notification)
{}

void ShiftStripAccessible::install()
{
    AccessibleFactory::install<ShiftStripAccessible, ShiftStrip>();
}

QString ShiftStripAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name)
        return static_cast<const ShiftStrip *>(widget())->text();
    return QAccessibleWidget::text(t);
}
