#include "ZoneCollectionView.h"

#include "AccessibleRetirement.h"
#include "AppStyle.h"
#include "CitySelectionAppearance.h"
#include "Clock.h"
#include "NameField.h"
#include "ReduceMotion.h"
#include "ScrollAreaAccessible.h"
#include "ShownUpdate.h"
#include "TextLine.h"
#include "TimeShift.h"
#include "TimeZoneDatabase.h"
#include "ZoneCardStack.h"
#include "ZoneRowTexts.h"
#include "ZoneStore.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedLayout>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int placeholderSymbolSide = 44;

void putOnClipboard(const QString &text)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

} // namespace

ZoneCollectionView::ZoneCollectionView(ZoneStore &store, Clock &clock, bool showsIdentifiers,
                                       QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_clock(clock)
    , m_showsIdentifiers(showsIdentifiers)
    , m_reduceMotion(ReduceMotion::isOn())
    , m_state(store)
    , m_pages(new QStackedLayout(this))
    , m_placeholder(new QWidget(this))
    , m_placeholderSymbol(new QLabel(m_placeholder))
    , m_placeholderDescription(new QLabel(m_placeholder))
    , m_scroll(new QScrollArea(this))
    , m_stack(new ZoneCardStack)
{
    ScrollAreaAccessible::install();
    setObjectName(QStringLiteral("zone-collection"));

    // The empty state: symbol, title and a line of help, centred.
    m_placeholder->setObjectName(QStringLiteral("empty-placeholder"));
    m_placeholderSymbol->setAlignment(Qt::AlignCenter);
    auto *title =
        new TextLine(AppStyle::uiFont(17, QFont::Bold), TextLine::Tone::primary, m_placeholder);
    title->setObjectName(QStringLiteral("empty-title"));
    title->setText(QStringLiteral("Your world starts here"));
    title->setAlignment(Qt::AlignCenter);
    m_placeholderDescription->setObjectName(QStringLiteral("empty-description"));
    m_placeholderDescription->setText(
        QStringLiteral("Add a city above. Pin it to keep its time in your menu bar."));
    m_placeholderDescription->setFont(AppStyle::uiFont(13));
    m_placeholderDescription->setAlignment(Qt::AlignCenter);
    m_placeholderDescription->setWordWrap(true);
    auto *placeholderLayout = new QVBoxLayout(m_placeholder);
    placeholderLayout->setContentsMargins(40, 20, 40, 20);
    placeholderLayout->setSpacing(8);
    placeholderLayout->addStretch(1);
    placeholderLayout->addWidget(m_placeholderSymbol);
    placeholderLayout->addSpacing(4);
    placeholderLayout->addWidget(title);
    placeholderLayout->addWidget(m_placeholderDescription);
    placeholderLayout->addStretch(1);

    // The host's background shows through the list.
    m_scroll->setObjectName(QStringLiteral("zone-scroll"));
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // One tab stop for the whole list: the cards' column, never the scroll area.
    m_scroll->setFocusPolicy(Qt::NoFocus);
    setFocusProxy(m_stack);
    m_scroll->setWidget(m_stack);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->viewport()->setBackgroundRole(QPalette::Window);
    m_stack->setAutoFillBackground(false);

    m_pages->addWidget(m_placeholder);
    m_pages->addWidget(m_scroll);

    connect(&m_store, &ZoneStore::zonesChanged, this, &ZoneCollectionView::rebuild);
    // Only the visible list follows the clock; a hidden one catches up when shown.
    auto *timesUpdate = new ShownUpdate(this, [this] { refreshCards(); });
    connect(&m_store, &ZoneStore::formatChanged, timesUpdate, &ShownUpdate::request);
    connect(&m_store, &ZoneStore::workingHoursChanged, timesUpdate, &ShownUpdate::request);
    connect(&m_clock, &Clock::nowChanged, timesUpdate, &ShownUpdate::request);
    for (const auto signal :
         {&ZoneCollectionState::hoveredIdChanged, &ZoneCollectionState::selectedIdChanged,
          &ZoneCollectionState::editingIdChanged, &ZoneCollectionState::draftNameChanged,
          &ZoneCollectionState::removingZoneChanged})
        connect(&m_state, signal, this, &ZoneCollectionView::refreshCards);
    connect(&m_state, &ZoneCollectionState::shiftedMomentChanged, this,
            &ZoneCollectionView::refreshCards);
    connect(&m_state, &ZoneCollectionState::selectedIdChanged, this,
            &ZoneCollectionView::ensureSelectedVisible);
    connect(&m_state, &ZoneCollectionState::selectedIdChanged, this,
            &ZoneCollectionView::announceSelection);
    // A confirmation grows its card: show all of it once the card has its new size.
    connect(&m_state, &ZoneCollectionState::removingZoneChanged, this, [this] {
        if (const std::optional<SavedZone> removing = m_state.removingZone())
            ensureVisibleLater(removing->id);
    });
    connect(m_stack, &ZoneCardStack::focusChanged, this, &ZoneCollectionView::listFocusChanged);
    // The card under the pointer changes when the list scrolls under it.
    connect(m_scroll->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &ZoneCollectionView::updateHoverFromPointer);
    connect(m_stack, &ZoneCardStack::commandRequested, this, &ZoneCollectionView::runCommand);
    connect(m_stack, &ZoneCardStack::timeTyped, this, [this](const QString &text) {
        if (m_state.selectedId())
            beginTimeEntry(*m_state.selectedId(), text);
    });
    connect(m_stack, &ZoneCardStack::reorderRequested, this,
            [this](int offset, int destination) { m_state.moveDragged({offset}, destination); });

    updatePlaceholderColours();
    rebuild();
}

void ZoneCollectionView::setReduceMotion(bool reduceMotion)
{
    if (m_reduceMotion == reduceMotion)
        return;
    m_reduceMotion = reduceMotion;
    refreshCards();
}

void ZoneCollectionView::setCanShiftTime(bool canShift)
{
    if (m_canShiftTime == canShift)
        return;
    m_canShiftTime = canShift;
    if (!canShift)
        m_state.backToNow();
    // Heard when the list takes the keyboard: the keys are not on screen.
    m_stack->setAccessibleDescription(
        canShift ? QStringLiteral("Left and Right move every city's time by 15 minutes, with Shift "
                                  "by an hour. Type a time to set the selected city's clock. "
                                  "Escape goes back to now.")
                 : QString());
    refreshCards();
}

void ZoneCollectionView::backToNow()
{
    m_state.backToNow();
}

void ZoneCollectionView::beginTimeEntry(const QUuid &id, const QString &text)
{
    ZoneCard *card = m_cards.value(id);
    if (!m_canShiftTime || !card)
        return;
    m_state.setSelectedId(id);
    card->row()->beginTimeEntry(text);
}

void ZoneCollectionView::focusList()
{
    m_stack->setFocus(Qt::TabFocusReason);
}

QWidget *ZoneCollectionView::focusTarget() const
{
    return m_stack;
}

void ZoneCollectionView::leave()
{
    m_state.leave();
}

QMenu *ZoneCollectionView::openMenu(const QUuid &id, const QPoint &globalPosition)
{
    const std::optional<SavedZone> target = ZoneMenu::target(m_store.zones(), {id});
    if (!target)
        return nullptr;
    auto *menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("zone-menu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QColor symbolColour = menu->palette().color(QPalette::WindowText);
    for (const ZoneMenu::Item &item : ZoneMenu::items(m_store.zones(), *target, m_canShiftTime)) {
        if (!item.action) {
            menu->addSeparator();
            continue;
        }
        QAction *action = menu->addAction(item.title);
        if (!item.symbol.isEmpty())
            action->setIcon(AppStyle::symbol(item.symbol, symbolColour, 16));
        action->setEnabled(item.isEnabled);
        const ZoneMenu::Action kind = *item.action;
        const QUuid zoneId = target->id;
        connect(action, &QAction::triggered, this,
                [this, kind, zoneId] { runMenuAction(kind, zoneId); });
    }
    menu->popup(globalPosition);
    return menu;
}

void ZoneCollectionView::hideEvent(QHideEvent *event)
{
    leave();
    QWidget::hideEvent(event);
}

void ZoneCollectionView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updatePlaceholderColours();
    QWidget::changeEvent(event);
}

void ZoneCollectionView::rebuild()
{
    const QList<SavedZone> &zones = m_store.zones();
    QList<QUuid> order;
    for (const SavedZone &zone : zones)
        order.append(zone.id);

    // Drop the cards of zones that are gone; the rest are kept as they are.
    QList<ZoneCard *> gone;
    for (auto it = m_cards.begin(); it != m_cards.end();) {
        if (order.contains(it.key())) {
            ++it;
            continue;
        }
        ZoneCard *card = it.value();
        it = m_cards.erase(it);
        if (card->isAncestorOf(QApplication::focusWidget()))
            m_stack->setFocus(Qt::OtherFocusReason);
        gone.append(card);
    }
    QList<ZoneCard *> cards;
    QList<QUuid> added;
    for (const SavedZone &zone : zones) {
        ZoneCard *&card = m_cards[zone.id];
        if (!card) {
            card = makeCard(zone);
            added.append(zone.id);
        }
        cards.append(card);
    }
    const bool reordered = order != m_order;
    m_order = order;

    refreshCards();
    m_stack->setCards(cards, reordered && !m_reduceMotion);
    // Out of the list first, so that nothing reads a card on its way out.
    for (ZoneCard *card : std::as_const(gone))
        AccessibleRetirement::deleteLater(card);
    m_pages->setCurrentWidget(zones.isEmpty() ? m_placeholder : static_cast<QWidget *>(m_scroll));
    updateTabOrder();
    // A city just added shows where it landed; the first fill shows the top.
    if (!added.isEmpty() && added.size() < zones.size())
        ensureVisibleLater(added.last());
    if (!gone.isEmpty() || reordered)
        QTimer::singleShot(0, this, &ZoneCollectionView::updateHoverFromPointer);
}

void ZoneCollectionView::refreshCards()
{
    keepFocusOutOfClosingField();
    const QTimeZone localZone = TimeZoneDatabase::localZone();
    for (const SavedZone &zone : m_store.zones()) {
        if (ZoneCard *card = m_cards.value(zone.id))
            card->setState(cardState(zone, localZone));
    }
    updateShiftText();
}

void ZoneCollectionView::updateShiftText()
{
    QString text;
    if (const std::optional<QDateTime> moment = m_state.shiftedMoment()) {
        // The city last moved names the moment; if it was removed, the first one does.
        std::optional<SavedZone> anchor =
            m_state.shiftAnchorId() ? findZone(*m_state.shiftAnchorId()) : std::nullopt;
        if (!anchor && !m_store.zones().isEmpty())
            anchor = m_store.zones().constFirst();
        const std::optional<QTimeZone> zone =
            anchor ? TimeZoneDatabase::resolve(anchor->identifier) : std::nullopt;
        text = zone ? TimeShift::stripText(m_clock.now(), *moment, anchor->displayName(), *zone,
                                           m_store.format())
                    : TimeShift::stripText(m_clock.now(), *moment, QStringLiteral("your time zone"),
                                           TimeZoneDatabase::localZone(), m_store.format());
    }
    if (text == m_shiftText)
        return;
    m_shiftText = text;
    Q_EMIT shiftTextChanged(text);
}

ZoneCard::State ZoneCollectionView::cardState(const SavedZone &zone,
                                              const QTimeZone &localZone) const
{
    ZoneCard::State state;
    state.row.zone = zone;
    state.row.now = m_state.shownMoment(m_clock.now());
    state.row.canShiftTime = m_canShiftTime;
    if (const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier)) {
        if (const auto change = TimeShift::upcomingChange(*timeZone, state.row.now))
            state.row.changeNotice = TimeShift::changeNotice(*change, *timeZone);
        if (const std::optional<WorkingHours> hours = m_store.workingHours())
            state.row.isOutsideWorkingHours =
                !TimeShift::isWorkingTime(*hours, state.row.now, *timeZone);
    }
    state.row.format = m_store.format();
    state.row.localZone = localZone;
    state.row.isRenaming = m_state.isRenaming(zone.id);
    state.row.draftName = state.row.isRenaming ? m_state.draftName() : QString();
    state.row.isReorderHighlighted = m_state.isHighlighted(zone.id);
    state.row.canReorder = m_state.canReorder();
    state.isHighlighted = m_state.isHighlighted(zone.id);
    state.isSelected = m_state.selectedId() == zone.id;
    // The ring, as the style draws it for buttons, once the keyboard is in use.
    state.showsFocus = state.isSelected && m_stack->hasFocus() &&
                       window()->testAttribute(Qt::WA_KeyboardFocusChange);
    state.isConfirmingRemoval = m_state.isConfirmingRemoval(zone.id);
    state.showsIdentifier = m_showsIdentifiers;
    state.reduceMotion = m_reduceMotion;
    return state;
}

ZoneCard *ZoneCollectionView::makeCard(const SavedZone &zone)
{
    auto *card = new ZoneCard(cardState(zone, TimeZoneDatabase::localZone()), m_stack);
    CitySelectionAppearance::switchOffNativeHighlight(card);
    const QUuid id = zone.id;
    ZoneRow *row = card->row();
    const auto withZone = [this, id](auto action) {
        return [this, id, action] {
            if (const std::optional<SavedZone> found = findZone(id))
                action(*found);
        };
    };
    const auto rename = withZone([this](const SavedZone &z) { m_state.beginRename(z); });

    connect(row, &ZoneRow::togglePinRequested, this, [this, id] { m_store.togglePin(id); });
    connect(row, &ZoneRow::beginRenameRequested, this, rename);
    connect(row, &ZoneRow::saveRenameRequested, this,
            withZone([this](const SavedZone &z) { m_state.saveRename(z); }));
    connect(row, &ZoneRow::cancelRenameRequested, this, [this] { m_state.cancelRename(); });
    connect(row, &ZoneRow::draftNameEdited, this, [this, id](const QString &text) {
        if (m_state.isRenaming(id))
            m_state.setDraftName(text);
    });
    connect(row, &ZoneRow::timeEntered, this, [this, id](const QTime &time) {
        const std::optional<SavedZone> zone = findZone(id);
        const std::optional<QTimeZone> timeZone =
            zone ? TimeZoneDatabase::resolve(zone->identifier) : std::nullopt;
        m_stack->setFocus(Qt::OtherFocusReason);
        if (!timeZone)
            return;
        m_state.setSelectedId(id);
        m_state.shiftTo(
            TimeShift::instantForTypedTime(m_state.shownMoment(m_clock.now()), time, *timeZone),
            id);
        announceSelection();
    });
    connect(row, &ZoneRow::timeEntryEnded, this, [this] {
        if (isVisible())
            m_stack->setFocus(Qt::OtherFocusReason);
    });

    connect(card, &ZoneCard::hoverEntered, this, [this, id] { m_state.hoverEntered(id); });
    connect(card, &ZoneCard::hoverLeft, this, [this, id] { m_state.hoverLeft(id); });
    connect(card, &ZoneCard::pressed, this, [this, id] {
        m_state.setSelectedId(id);
        m_stack->setFocus(Qt::MouseFocusReason);
    });
    connect(card, &ZoneCard::doubleClicked, this, rename);
    connect(card, &ZoneCard::actionRequested, this,
            [this, id](ZoneMenu::Action action) { runMenuAction(action, id); });
    connect(card, &ZoneCard::contextMenuRequested, this,
            [this, id](const QPoint &globalPosition) { openMenu(id, globalPosition); });
    connect(card, &ZoneCard::timeShiftRequested, this, [this, id](int steps, int minutes) {
        if (m_canShiftTime)
            m_state.shiftBy(m_clock.now(), steps * minutes, id);
    });
    connect(card, &ZoneCard::timeEntryRequested, this, [this, id] { beginTimeEntry(id); });
    connect(card, &ZoneCard::removalCancelled, this, [this] { m_state.cancelRemoval(); });
    connect(card, &ZoneCard::removalConfirmed, this, [this] { m_state.confirmRemoval(); });
    return card;
}

void ZoneCollectionView::updateTabOrder()
{
    // The list first, then each card's buttons in list order.
    QWidget *previous = m_stack;
    for (const QUuid &id : std::as_const(m_order)) {
        ZoneCard *card = m_cards.value(id);
        for (const char *name :
             {"pin-button", "rename-button", "remove-cancel", "remove-confirm"}) {
            if (auto *button = card->findChild<QWidget *>(QLatin1String(name))) {
                QWidget::setTabOrder(previous, button);
                previous = button;
            }
        }
    }
}

void ZoneCollectionView::updatePlaceholderColours()
{
    const QColor secondary = AppStyle::secondaryText(palette());
    m_placeholderSymbol->setPixmap(AppStyle::symbolPixmap(
        QStringLiteral("world"), secondary, placeholderSymbolSide, devicePixelRatioF()));
    QPalette description = m_placeholderDescription->palette();
    description.setColor(QPalette::WindowText, secondary);
    m_placeholderDescription->setPalette(description);
}

void ZoneCollectionView::keepFocusOutOfClosingField()
{
    // A rename field about to go away hands the keyboard back to the list,
    // rather than to whatever widget comes next.
    QWidget *focus = QApplication::focusWidget();
    auto *field = qobject_cast<NameField *>(focus);
    if (!field)
        return;
    for (auto it = m_cards.cbegin(); it != m_cards.cend(); ++it) {
        if (it.value()->row()->nameField() == field && !m_state.isRenaming(it.key())) {
            m_stack->setFocus(Qt::OtherFocusReason);
            return;
        }
    }
}

std::optional<SavedZone> ZoneCollectionView::findZone(const QUuid &id) const
{
    return m_store.zone(id);
}

void ZoneCollectionView::runMenuAction(ZoneMenu::Action action, const QUuid &id)
{
    const std::optional<SavedZone> target = findZone(id);
    if (!target)
        return;
    switch (action) {
    case ZoneMenu::Action::rename:
        m_state.beginRename(*target);
        break;
    case ZoneMenu::Action::useCityName:
        m_store.rename(id, std::nullopt);
        break;
    case ZoneMenu::Action::togglePin:
        m_store.togglePin(id);
        break;
    case ZoneMenu::Action::copyTime:
        copyTime(*target);
        break;
    case ZoneMenu::Action::copyAll:
        copyAll();
        break;
    case ZoneMenu::Action::setTime:
        beginTimeEntry(id);
        break;
    case ZoneMenu::Action::moveUp:
        m_state.move(*target, -1);
        break;
    case ZoneMenu::Action::moveDown:
        m_state.move(*target, +1);
        break;
    case ZoneMenu::Action::remove:
        m_state.openRemoval(*target);
        break;
    }
}

void ZoneCollectionView::copyTime(const SavedZone &zone)
{
    const std::optional<QString> text =
        ZoneRowTexts::copyText(zone, m_store.format(), m_state.shownMoment(m_clock.now()));
    if (text)
        putOnClipboard(*text);
}

void ZoneCollectionView::copyAll()
{
    const QString text =
        TimeShift::copyAllText(m_store.zones(), m_store.format(),
                               m_state.shownMoment(m_clock.now()), TimeZoneDatabase::localZone());
    if (!text.isEmpty())
        putOnClipboard(text);
}

void ZoneCollectionView::shiftSelected(int minutes)
{
    if (m_canShiftTime && m_state.selectedId())
        m_state.shiftBy(m_clock.now(), minutes, *m_state.selectedId());
}

void ZoneCollectionView::runCommand(CollectionKeys::Command command)
{
    using CollectionKeys::Command;
    const std::optional<SavedZone> selected =
        m_state.selectedId() ? findZone(*m_state.selectedId()) : std::nullopt;
    switch (command) {
    case Command::none:
        break;
    case Command::selectPrevious:
        selectAdjacent(-1);
        break;
    case Command::selectNext:
        selectAdjacent(+1);
        break;
    case Command::moveUp:
        if (selected)
            m_state.move(*selected, -1);
        break;
    case Command::moveDown:
        if (selected)
            m_state.move(*selected, +1);
        break;
    case Command::openMenu:
        if (selected) {
            ZoneCard *card = m_cards.value(selected->id);
            openMenu(selected->id,
                     card->mapToGlobal(QPoint(card->width() / 2, card->height() / 2)));
        }
        break;
    case Command::rename:
        if (selected)
            m_state.beginRename(*selected);
        break;
    case Command::shiftEarlier:
        shiftSelected(-15);
        break;
    case Command::shiftLater:
        shiftSelected(15);
        break;
    case Command::shiftEarlierHour:
        shiftSelected(-60);
        break;
    case Command::shiftLaterHour:
        shiftSelected(60);
        break;
    case Command::copyTime:
        if (selected)
            copyTime(*selected);
        break;
    case Command::copyAll:
        copyAll();
        break;
    }
}

void ZoneCollectionView::selectAdjacent(int step)
{
    if (m_order.isEmpty())
        return;
    const qsizetype current =
        m_state.selectedId() ? m_order.indexOf(*m_state.selectedId()) : qsizetype(-1);
    qsizetype next = 0;
    if (current < 0)
        next = step > 0 ? 0 : m_order.size() - 1;
    else
        next = qBound(qsizetype(0), current + step, m_order.size() - 1);
    m_state.setSelectedId(m_order.at(next));
}

void ZoneCollectionView::ensureSelectedVisible()
{
    if (!m_state.selectedId())
        return;
    if (ZoneCard *card = m_cards.value(*m_state.selectedId()))
        m_scroll->ensureWidgetVisible(card, 0, ZoneCardStack::verticalInset);
}

void ZoneCollectionView::ensureVisibleLater(const QUuid &id)
{
    // After the stack has placed the cards at their new sizes.
    QTimer::singleShot(0, this, [this, id] {
        m_stack->relayout();
        if (ZoneCard *card = m_cards.value(id))
            m_scroll->ensureWidgetVisible(card, 0, ZoneCardStack::verticalInset);
    });
}

void ZoneCollectionView::listFocusChanged(bool hasFocus)
{
    if (hasFocus && !m_state.selectedId() && !m_order.isEmpty()) {
        m_state.setSelectedId(m_order.first());
    }
    refreshCards();
    // Qt announces the list itself after this; the card follows it.
    if (hasFocus)
        QTimer::singleShot(0, this, &ZoneCollectionView::announceSelection);
}

void ZoneCollectionView::announceSelection()
{
    if (!m_stack->hasFocus() || !m_state.selectedId() || !QAccessible::isActive())
        return;
    ZoneCard *card = m_cards.value(*m_state.selectedId());
    if (!card)
        return;
    QAccessibleEvent selection(card, QAccessible::Selection);
    QAccessible::updateAccessibility(&selection);
    QAccessibleEvent focus(card, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

void ZoneCollectionView::updateHoverFromPointer()
{
    if (!isVisible() || m_stack->isDragging())
        return;
    const QPoint global = QCursor::pos();
    QWidget *viewport = m_scroll->viewport();
    if (viewport->rect().contains(viewport->mapFromGlobal(global))) {
        const QPoint pointer = m_stack->mapFromGlobal(global);
        for (auto it = m_cards.cbegin(); it != m_cards.cend(); ++it) {
            if (it.value()->isVisible() && it.value()->geometry().contains(pointer)) {
                m_state.hoverEntered(it.key());
                return;
            }
        }
    }
    m_state.hoverCleared();
}
