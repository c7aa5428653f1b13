#pragma once

#include "CollectionKeys.h"
#include "ZoneCard.h"
#include "ZoneCollectionState.h"
#include "ZoneMenu.h"

#include <QHash>
#include <QList>
#include <QPointer>
#include <QTimeZone>
#include <QUuid>
#include <QWidget>

class Clock;
class QLabel;
class QMenu;
class QScrollArea;
class QStackedLayout;
class ZoneCardStack;
class ZoneStore;

// The editable list of the user's cities, one card per saved zone in the
// store's order, or a placeholder when there is none. Hosted by the panel
// and by the settings window; each instance keeps its own hover, selection,
// rename and confirmation state. Every edit is one store operation.
//
// Cards are kept across updates: a clock tick or an edit updates the texts
// of the existing cards in place, and only cards of added or removed zones
// are made or dropped.
class ZoneCollectionView final : public QWidget
{
    Q_OBJECT

public:
    ZoneCollectionView(ZoneStore &store, Clock &clock, bool showsIdentifiers,
                       QWidget *parent = nullptr);

    bool showsIdentifiers() const { return m_showsIdentifiers; }
    // Read from the desktop at construction; hosts and tests may override it.
    bool reduceMotion() const { return m_reduceMotion; }
    void setReduceMotion(bool reduceMotion);

    const ZoneCollectionState &state() const { return m_state; }

    // Whether the cards' times can be dragged, scrolled, stepped with the
    // arrow keys and typed into to show every city at another moment. Off
    // by default.
    bool canShiftTime() const { return m_canShiftTime; }
    void setCanShiftTime(bool canShift);
    // While shifted, e.g. "+3 h · Tue 15:00 in Tokyo"; empty at now.
    QString shiftText() const { return m_shiftText; }
    void backToNow();
    // Opens the time field of a zone's card, holding `text`, or the time
    // shown, to be typed over, when there is none.
    void beginTimeEntry(const QUuid &id, const QString &text = QString());

    // The list is leaving the screen: an open rename is saved and an open
    // removal confirmation dropped. Also runs when the list is hidden.
    void leave();

    // Gives the list the keyboard; its selection (the first card when there
    // is none) is then announced.
    void focusList();
    // The one widget of the list that takes the keyboard.
    QWidget *focusTarget() const;

    // The context menu of a zone, for keyboard and assistive use; the same
    // as a right click on its card. Null when the zone is unknown.
    QMenu *openMenu(const QUuid &id, const QPoint &globalPosition);

Q_SIGNALS:
    void shiftTextChanged(const QString &text);

protected:
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void rebuild();
    void refreshCards();
    ZoneCard::State cardState(const SavedZone &zone, const QTimeZone &localZone) const;
    ZoneCard *makeCard(const SavedZone &zone);
    void updateTabOrder();
    void updatePlaceholderColours();
    void keepFocusOutOfClosingField();

    std::optional<SavedZone> findZone(const QUuid &id) const;
    void runMenuAction(ZoneMenu::Action action, const QUuid &id);
    void copyTime(const SavedZone &zone);
    void copyAll();
    void shiftSelected(int minutes);
    void updateShiftText();
    void runCommand(CollectionKeys::Command command);
    void selectAdjacent(int step);
    void ensureSelectedVisible();
    void ensureVisibleLater(const QUuid &id);
    void listFocusChanged(bool hasFocus);
    void announceSelection();
    void updateHoverFromPointer();

    ZoneStore &m_store;
    Clock &m_clock;
    const bool m_showsIdentifiers;
    bool m_canShiftTime = false;
    QString m_shiftText;
    bool m_reduceMotion;
    ZoneCollectionState m_state;

    QStackedLayout *m_pages;
    QWidget *m_placeholder;
    QLabel *m_placeholderSymbol;
    QLabel *m_placeholderDescription;
    QScrollArea *m_scroll;
    ZoneCardStack *m_stack;
    QHash<QUuid, ZoneCard *> m_cards;
    QList<QUuid> m_order;
};
