#pragma once

#include <QAccessibleWidget>

class ZoneCard;

// A zone card as assistive technology sees it: a list item named after its
// zone, with the actions "Rename", "Move up" and "Move down".
class ZoneCardAccessible final : public QAccessibleWidget
{
public:
    static const QString renameAction;
    static const QString moveUpAction;
    static const QString moveDownAction;

    explicit ZoneCardAccessible(ZoneCard *card);

    // Registers the interface for every ZoneCard; safe to call repeatedly.
    static void install();

    QStringList actionNames() const override;
    QString localizedActionName(const QString &actionName) const override;
    void doAction(const QString &actionName) override;

private:
    ZoneCard *card() const;
};
