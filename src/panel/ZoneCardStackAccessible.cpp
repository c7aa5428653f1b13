#include "ZoneCardStackAccessible.h"

#include "AccessibleRetirement.h"
#include "ZoneCard.h"
#include "ZoneCardStack.h"

namespace {

QAccessibleInterface *stackFactory(const QString &className, QObject *object)
{
    if (AccessibleRetirement::isRetired(object))
        return nullptr;
    if (className == QLatin1String("ZoneCardStack"))
        return new ZoneCardStackAccessible(static_cast<ZoneCardStack *>(object));
    return nullptr;
}

} // namespace

ZoneCardStackAccessible::ZoneCardStackAccessible(ZoneCardStack *stack)
    : QAccessibleWidget(stack, QAccessible::List)
{}

void ZoneCardStackAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(stackFactory);
        return true;
    }();
    Q_UNUSED(installed)
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
