#pragma once

#include <QList>

// Where a card dragged over the list would land. Works on the cards'
// vertical spans in list order, in the list's own coordinates.
class ReorderDropTarget final
{
public:
    struct Span
    {
        int top = 0;
        int bottom = 0; // exclusive
    };

    explicit ReorderDropTarget(QList<Span> cards);

    // The destination offset (0 to the count, counted before the move) for
    // the pointer at `y`: in front of the first card whose middle is below it.
    int destination(int y) const;

    // Where the drop line is drawn for a destination: midway in the gap
    // between the cards around it, or `margin` outside the first or last.
    int indicatorY(int destination, int margin) const;

    // Whether moving the card at `offset` to `destination` changes the order.
    static bool changesOrder(int offset, int destination);

private:
    QList<Span> m_cards;
};
