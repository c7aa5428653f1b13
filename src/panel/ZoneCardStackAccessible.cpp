#include "ZoneCardStackAccessible.h"

#include "AccessibleFactory.h"
#include "ZoneCard.h"
#include "ZoneCardStack.h"

ZoneCardStackAccessible::ZoneCardStackAccessible(ZoneCardStack *stack)
    : QAccessibleWidget(stack, QAccessible::List)
{}

void ZoneCardStackAccessible::install()
{
    AccessibleFactory::install<ZoneCardStackAccessible, ZoneCardStack>();
}

QString ZoneCardStackAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name && widget()->accessibleName().isEmpty())
        return QStringLiteral("Your cities");
    return QAccessibleWidget::text(t);
}

int ZoneCardStackAccessible::childCount() const
{
    return int(stack()->cards().size());
}

QAccessibleInterface *ZoneCardStackAccessible::child(int index) const
{
    const QList<ZoneCard *> &cards = stack()->cards();
    if (index < 0 || index >= cards.size())
        return nullptr;
    return QAccessible::queryAccessibleInterface(cards.at(index));
}

int ZoneCardStackAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    if (!child)
        return -1;
    return int(stack()->cards().indexOf(qobject_cast<ZoneCard *>(child->object())));
}

QAccessibleInterface *ZoneCardStackAccessible::focusChild() const
{
    if (stack()->hasFocus()) {
        for (ZoneCard *card : stack()->cards()) {
            if (card->state().isSelected)
                return QAccessible::queryAccessibleInterface(card);
        }
    }
    return QAccessibleWidget::focusChild();
}

ZoneCardStack *ZoneCardStackAccessible::stack() const
{
    return static_cast<ZoneCardStack *>(widget());
}
