#pragma once

#include "CollectionKeys.h"

#include <QHash>
#include <QImage>
#include <QList>
#include <QPointer>
#include <QWidget>

#include <optional>

class QLabel;
class QVariantAnimation;
class ZoneCard;

// The column of zone cards inside the list's scroll area. It places the
// cards (4 px above and below each, 20 px from the sides), glides them to new
// places when the order changes, draws their shadows under them and the drop
// line while a card is dragged, and turns key presses into list commands.
class ZoneCardStack final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int sideInset = 20;
    static constexpr int verticalInset = 4;

    explicit ZoneCardStack(QWidget *parent = nullptr);
    ~ZoneCardStack() override;

    const QList<ZoneCard *> &cards() const { return m_cards; }
    // The cards in list order. With `animated`, cards already placed glide
    // from where they are to their new places; new cards appear in place.
    void setCards(const QList<ZoneCard *> &cards, bool animated);
    // Places the cards at once, e.g. after a card grew or shrank.
    void relayout();

    bool isDragging() const { return !m_dragCard.isNull(); }
    // Where the dragged card would land, when that changes the order.
    std::optional<int> dropDestination() const { return m_dropDestination; }
    // The y of the drop line, while one is shown.
    std::optional<int> dropIndicatorY() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void commandRequested(CollectionKeys::Command command);
    // A digit typed on the list: the start of a time for the selected city.
    void timeTyped(const QString &text);
    // The card at `offset` was dropped before the card at `destination`
    // (counted before the move; the count means the end).
    void reorderRequested(int offset, int destination);
    // The list took or lost the keyboard.
    void focusChanged(bool hasFocus);

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct Move
    {
        QPointer<ZoneCard> card;
        int fromY = 0;
        int toY = 0;
    };

    void adopt(ZoneCard *card);
    void placeCards(bool animated);
    QList<QRect> targetGeometries() const;
    int contentHeight() const;
    void beginDrag(ZoneCard *card, const QPoint &pressPosition);
    void updateDrag(const QPoint &globalPosition);
    void endDrag(bool drop);
    void updateDropLine();
    QImage shadowFor(const QSize &cardSize);

    QList<ZoneCard *> m_cards;
    QList<QPointer<ZoneCard>> m_adopted;
    QVariantAnimation *m_motion;
    QList<Move> m_moves;
    bool m_placing = false;

    QPointer<ZoneCard> m_dragCard;
    QPoint m_dragGrab;
    QLabel *m_preview;
    // Above the preview, so a drop at the top stays visible under the card.
    QWidget *m_dropLine;
    std::optional<int> m_dropDestination;

    QHash<quint64, QImage> m_shadows;
};
