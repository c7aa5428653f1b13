#include "WindowAccessible.h"

#include "AccessibleFactory.h"

WindowAccessible::WindowAccessible(QWidget *widget)
    : QAccessibleWidget(widget, QAccessible::Window)
{}

void WindowAccessible::mark(QWidget *widget)
{
    AccessibleFactory::mark<WindowAccessible>(widget);
}

QString WindowAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name)
        return widget()->windowTitle();
    return QAccessibleWidget::text(t);
}
