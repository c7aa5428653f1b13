#pragma once

#include "SavedZone.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

class ZoneStore;

// The transient interaction state of one zone list (hover, selection, the
// rename in progress and the removal being confirmed) and the rules that
// move between its states. Every change of the data is one call of a store
// operation; nothing here touches the list itself.
class ZoneCollectionState final : public QObject
{
    Q_OBJECT

public:
    explicit ZoneCollectionState(ZoneStore &store, QObject *parent = nullptr);

    std::optional<QUuid> hoveredId() const { return m_hoveredId; }
    std::optional<QUuid> selectedId() const { return m_selectedId; }
    std::optional<QUuid> editingId() const { return m_editingId; }
    QString draftName() const { return m_draftName; }
    std::optional<SavedZone> removingZone() const { return m_removingZone; }

    // The moment the list shows instead of now while the user plans across
    // zones, and the city whose clock was set last, which the strip names.
    std::optional<QDateTime> shiftedMoment() const { return m_shiftedMoment; }
    std::optional<QUuid> shiftAnchorId() const { return m_shiftAnchorId; }
    QDateTime shownMoment(const QDateTime &now) const { return m_shiftedMoment.value_or(now); }

    // Hovered or selected.
    bool isHighlighted(const QUuid &id) const;
    // No rename and no confirmation open anywhere in the list.
    bool canReorder() const;
    bool isRenaming(const QUuid &id) const;
    bool isConfirmingRemoval(const QUuid &id) const;

    void hoverEntered(const QUuid &id);
    // Clears the hover only if it is still this card's, so that leaving a
    // card after its neighbour was entered keeps the neighbour lit.
    void hoverLeft(const QUuid &id);
    void hoverCleared();
    void setSelectedId(const std::optional<QUuid> &id);
    void setDraftName(const QString &draftName);

    // Saves a rename open on another zone, closes a confirmation, and starts
    // editing with the zone's display name. Repeated requests are harmless.
    void beginRename(const SavedZone &zone);
    // Saves the rename in progress, if its zone still exists.
    void finishCurrentRename();
    // Stores the trimmed draft as the nickname (none when it is blank or the
    // city's own name). Ignored unless `zone` is the one being edited.
    void saveRename(const SavedZone &zone);
    // Drops the draft; the store is not touched.
    void cancelRename();

    // One place up (-1) or down (+1), selecting the zone; nothing at the ends.
    void move(const SavedZone &zone, int step);
    // A drag of the rows at `offsets` onto the slot before `destination`
    // (counted before the move; the count means the end). Selects the first
    // moved zone.
    void moveDragged(const QList<int> &offsets, int destination);

    // Discards any rename in progress and asks to confirm the removal.
    void openRemoval(const SavedZone &zone);
    void cancelRemoval();
    // Removes the zone of the open confirmation.
    void confirmRemoval();

    // Moves the shown moment by `minutes` from where it is, onto the quarter
    // hours; `anchor` is the city whose clock was moved.
    void shiftBy(const QDateTime &now, int minutes, const QUuid &anchor);
    void shiftTo(const QDateTime &moment, const QUuid &anchor);
    void backToNow();

    // The list is going off screen: an open rename is saved, an open
    // confirmation dropped, and the list goes back to now.
    void leave();

Q_SIGNALS:
    void hoveredIdChanged();
    void selectedIdChanged();
    void editingIdChanged();
    void draftNameChanged();
    void removingZoneChanged();
    void shiftedMomentChanged();

private:
    void setHoveredId(const std::optional<QUuid> &id);
    void setEditingId(const std::optional<QUuid> &id);
    void setRemovingZone(const std::optional<SavedZone> &zone);

    ZoneStore &m_store;
    std::optional<QUuid> m_hoveredId;
    std::optional<QUuid> m_selectedId;
    std::optional<QUuid> m_editingId;
    QString m_draftName;
    std::optional<SavedZone> m_removingZone;
    std::optional<QDateTime> m_shiftedMoment;
    std::optional<QUuid> m_shiftAnchorId;
};
