#pragma once

#include <QAccessibleWidget>

class ShiftStrip;

// The strip as a notification named with its text, so that screen readers
// speak it when it appears and when it changes, as they would a live region.
class ShiftStripAccessible final : public QAccessibleWidget
{
public:
    explicit ShiftStripAccessible(ShiftStrip *strip);

    static void install();

    QString text(QAccessible::Text t) const override;
};
