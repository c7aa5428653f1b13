#include "ScrollAreaAccessible.h"

#include "AccessibleFactory.h"

#include <QScrollArea>

ScrollAreaAccessible::ScrollAreaAccessible(QScrollArea *area)
    : QAccessibleWidget(area, QAccessible::Client)
{}

void ScrollAreaAccessible::install()
{
    AccessibleFactory::install<ScrollAreaAccessible, QScrollArea>();
}
