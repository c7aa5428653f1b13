#include "ZoneCardAccessible.h"

#include "AccessibleFactory.h"
#include "ZoneCard.h"
#include "ZoneRowTexts.h"

ZoneCardAccessible::ZoneCardAccessible(ZoneCard *card)
    : QAccessibleWidget(card, QAccessible::ListItem)
{}

void ZoneCardAccessible::install()
{
    AccessibleFactory::install<ZoneCardAccessible, ZoneCard>();
}

QAccessible::State ZoneCardAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    const ZoneCard::State &card = this->card()->state();
    state.selectable = true;
    state.selected = card.isSelected;
    state.focusable = true;
    state.focused = card.isSelected && this->card()->parentWidget()->hasFocus();
    return state;
}

QString ZoneCardAccessible::text(QAccessible::Text t) const
{
    if (t != QAccessible::Description)
        return QAccessibleWidget::text(t);
    // What a sighted user reads on the card besides its name.
    const ZoneRow::State &row = card()->state().row;
    QStringList parts{ZoneRowTexts::timeText(row.zone, row.format, row.now),
                      ZoneRowTexts::subtitle(row.zone, row.now, row.localZone)};
    if (row.zone.isPinned)
        parts.append(QStringLiteral("pinned"));
    if (row.isOutsideWorkingHours)
        parts.append(QStringLiteral("outside working hours"));
    parts.append(row.changeNotice);
    parts.removeAll(QString());
    return parts.join(QStringLiteral(", "));
}

QList<ZoneCardAccessible::NamedAction> ZoneCardAccessible::actions() const
{
    using Action = ZoneMenu::Action;
    const ZoneRow::State &row = card()->state().row;
    QList<NamedAction> actions{
        {QStringLiteral("Rename"), Action::rename},
        {row.zone.isPinned ? QStringLiteral("Unpin") : QStringLiteral("Pin"), Action::togglePin},
        {QStringLiteral("Copy time"), Action::copyTime},
        {QStringLiteral("Copy all"), Action::copyAll},
        {QStringLiteral("Move up"), Action::moveUp},
        {QStringLiteral("Move down"), Action::moveDown},
        {QStringLiteral("Remove city\u2026"), Action::remove},
    };
    if (row.canShiftTime)
        actions.insert(4, {QStringLiteral("Set time\u2026"), Action::setTime});
    return actions;
}

QStringList ZoneCardAccessible::actionNames() const
{
    QStringList names;
    for (const NamedAction &action : actions())
        names.append(action.name);
    return names;
}

QString ZoneCardAccessible::localizedActionName(const QString &actionName) const
{
    return actionName;
}

void ZoneCardAccessible::doAction(const QString &actionName)
{
    for (const NamedAction &action : actions()) {
        if (action.name == actionName) {
            card()->requestAction(action.action);
            return;
        }
    }
}

ZoneCard *ZoneCardAccessible::card() const
{
    return static_cast<ZoneCard *>(widget());
}
