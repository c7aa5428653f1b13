#include "DecorativeAccessible.h"

#include "AccessibleFactory.h"

DecorativeAccessible::DecorativeAccessible(QWidget *widget)
    : QAccessibleWidget(widget, QAccessible::Graphic)
{}

void DecorativeAccessible::hide(QWidget *widget)
{
    AccessibleFactory::mark<DecorativeAccessible>(widget);
}

bool DecorativeAccessible::isHidden(const QWidget *widget)
{
    return widget->property(markProperty).toBool();
}

QAccessible::State DecorativeAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.invisible = true;
    state.focusable = false;
    return state;
}

QString DecorativeAccessible::text(QAccessible::Text) const
{
    return {};
}

int DecorativeAccessible::childCount() const
{
    return 0;
}

QAccessibleInterface *DecorativeAccessible::child(int) const
{
    return nullptr;
}
