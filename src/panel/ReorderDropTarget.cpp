#include "ReorderDropTarget.h"

#include <utility>

ReorderDropTarget::ReorderDropTarget(QList<Span> cards)
    : m_cards(std::move(cards))
{}

int ReorderDropTarget::destination(int y) const
{
    int index = 0;
    for (const Span &card : m_cards) {
        // Twice the middle, to stay in integers.
        if (2 * y < card.top + card.bottom)
            return index;
        ++index;
    }
    return index;
}

int ReorderDropTarget::indicatorY(int destination, int margin) const
{
    if (m_cards.isEmpty())
        return margin;
    if (destination <= 0)
        return m_cards.constFirst().top - margin;
    if (destination >= m_cards.size())
        return m_cards.constLast().bottom + margin;
    return (m_cards.at(destination - 1).bottom + m_cards.at(destination).top) / 2;
}

bool ReorderDropTarget::changesOrder(int offset, int destination)
{
    return destination != offset && destination != offset + 1;
}
