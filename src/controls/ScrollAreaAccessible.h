#pragma once

#include <QAccessibleWidget>

class QScrollArea;

// How assistive technology sees a scroll area: a plain container of its
// viewport and scroll bars. Qt's own interface looks children up by an index
// it never checks, so a scroll bar hiding between a screen reader's "how
// many children" and "child number n" (a list shrinking after a removal)
// read past the end of a list and crashed the program.
class ScrollAreaAccessible final : public QAccessibleWidget
{
public:
    explicit ScrollAreaAccessible(QScrollArea *area);

    // Takes over every QScrollArea's interface; safe to call repeatedly.
    static void install();
};
