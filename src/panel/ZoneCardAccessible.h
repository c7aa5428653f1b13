#pragma once

#include "ZoneMenu.h"

#include <QAccessibleWidget>

class ZoneCard;

// A zone card as assistive technology sees it: a list item named after its
// zone, described by its time and offset, selectable, focused while it is
// the list's selection and the list has the keyboard, and offering the
// actions of its context menu.
class ZoneCardAccessible final : public QAccessibleWidget
{
public:
    explicit ZoneCardAccessible(ZoneCard *card);

    // Registers the interface for every ZoneCard; safe to call repeatedly.
    static void install();

    QAccessible::State state() const override;
    QString text(QAccessible::Text t) const override;
    QStringList actionNames() const override;
    QString localizedActionName(const QString &actionName) const override;
    void doAction(const QString &actionName) override;

private:
    struct NamedAction
    {
        QString name;
        ZoneMenu::Action action;
    };
    QList<NamedAction> actions() const;
    ZoneCard *card() const;
};
