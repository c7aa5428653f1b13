#pragma once

#include <QAccessibleWidget>

class ZoneCardStack;

// The column of cards as assistive technology sees it: one focusable list
// named "Your cities" whose items are the cards, in list order, and nothing
// else (no drag preview, no drop line, no card on its way out).
class ZoneCardStackAccessible final : public QAccessibleWidget
{
public:
    explicit ZoneCardStackAccessible(ZoneCardStack *stack);

    static void install();

    QString text(QAccessible::Text t) const override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *focusChild() const override;

private:
    ZoneCardStack *stack() const;
};
