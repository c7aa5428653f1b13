#include "ZoneCardAccessible.h"

#include "ZoneCard.h"

const QString ZoneCardAccessible::renameAction = QStringLiteral("Rename");
const QString ZoneCardAccessible::moveUpAction = QStringLiteral("Move up");
const QString ZoneCardAccessible::moveDownAction = QStringLiteral("Move down");

namespace {

QAccessibleInterface *zoneCardFactory(const QString &className, QObject *object)
{
    if (className == QLatin1String("ZoneCard"))
        return new ZoneCardAccessible(static_cast<ZoneCard *>(object));
    return nullptr;
}

} // namespace

ZoneCardAccessible::ZoneCardAccessible(ZoneCard *card)
    : QAccessibleWidget(card, QAccessible::ListItem)
{}

void ZoneCardAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(zoneCardFactory);
        return true;
    }();
    Q_UNUSED(installed)
}

QStringList ZoneCardAccessible::actionNames() const
{
    return QStringList{renameAction, moveUpAction, moveDownAction} +
           QAccessibleWidget::actionNames();
}

QString ZoneCardAccessible::localizedActionName(const QString &actionName) const
{
    if (actionName == renameAction || actionName == moveUpAction || actionName == moveDownAction)
        return actionName;
    return QAccessibleWidget::localizedActionName(actionName);
}

void ZoneCardAccessible::doAction(const QString &actionName)
{
    if (actionName == renameAction)
        card()->requestRename();
    else if (actionName == moveUpAction)
        card()->requestMove(-1);
    else if (actionName == moveDownAction)
        card()->requestMove(+1);
    else
        QAccessibleWidget::doAction(actionName);
}

ZoneCard *ZoneCardAccessible::card() const
{
    return static_cast<ZoneCard *>(widget());
}
