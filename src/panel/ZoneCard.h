#pragma once

#include "ZoneMenu.h"
#include "ZoneRow.h"

#include <QPainterPath>
#include <QPoint>
#include <QWidget>

#include <optional>

class QPushButton;
class QVariantAnimation;
class TextLine;

// The card around one zone row: a rounded, bordered surface that lights up
// in the accent colour while hovered or selected, grows the "Remove this
// city?" line while a removal is being confirmed, and optionally shows the
// raw identifier. Reports pointer gestures (hover, press, double-click,
// context menu, drag) as signals; the list decides what they do.
class ZoneCard final : public QWidget
{
    Q_OBJECT

public:
    static constexpr qreal cornerRadius = 12;

    struct State
    {
        ZoneRow::State row;
        bool isHighlighted = false;
        bool isSelected = false;
        // Selected in a list the keyboard is in use on: drawn with a focus ring.
        bool showsFocus = false;
        bool isConfirmingRemoval = false;
        bool showsIdentifier = false;
        bool reduceMotion = false;

        friend bool operator==(const State &, const State &) = default;
    };

    explicit ZoneCard(const State &state, QWidget *parent = nullptr);
    ~ZoneCard() override;

    QUuid zoneId() const { return m_state.row.zone.id; }
    const State &state() const { return m_state; }
    void setState(const State &state);

    ZoneRow *row() const { return m_row; }
    // 0 at rest, 1 fully lit; between while the highlight animates.
    qreal highlightAmount() const { return m_highlightAmount; }
    // The card's shape, which is also its hit area, in its own coordinates.
    QPainterPath shape() const;

    // For assistive technology's named actions: the same as the context menu's.
    void requestAction(ZoneMenu::Action action);

Q_SIGNALS:
    void hoverEntered();
    void hoverLeft();
    void pressed();
    void doubleClicked();
    void contextMenuRequested(const QPoint &globalPosition);
    void dragStarted(const QPoint &pressPosition);
    void dragMoved(const QPoint &globalPosition);
    void dragFinished();
    void actionRequested(ZoneMenu::Action action);
    // Planning across zones: the time dragged or scrolled by `steps` of
    // `minutes` each (negative for earlier), or double-clicked to type one.
    void timeShiftRequested(int steps, int minutes);
    void timeEntryRequested();
    void removalCancelled();
    void removalConfirmed();
    void highlightAmountChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void updateHighlight(bool animated);
    void updateRemoveColour();
    void setHighlightAmount(qreal amount);
    bool isOnTime(const QPointF &position) const;

    State m_state;
    ZoneRow *m_row;
    QWidget *m_confirmation;
    QPushButton *m_removeCancel;
    QPushButton *m_removeConfirm;
    TextLine *m_identifier;
    TextLine *m_notice;
    QVariantAnimation *m_highlight;
    qreal m_highlightAmount = 0;
    std::optional<QPoint> m_pressPosition;
    bool m_dragging = false;
    // A press on the time drags the time, not the card.
    bool m_pressedOnTime = false;
    int m_timeStepsDragged = 0;
    int m_wheelRemainder = 0;
};
