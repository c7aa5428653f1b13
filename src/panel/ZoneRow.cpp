#include "ZoneRow.h"

#include "AccessibleRetirement.h"
#include "AppStyle.h"
#include "DecorativeAccessible.h"
#include "InlineEditButton.h"
#include "NameField.h"
#include "TextLine.h"
#include "TimeShift.h"
#include "ZoneLimits.h"
#include "ZoneRowTexts.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace {

constexpr int padding = 14;
constexpr int itemSpacing = 10;
constexpr int handleWidth = 10;
constexpr int nameLineSpacing = 5;
// The flexible space before the time: at least 4, between two item gaps.
constexpr int minimumTimeGap = itemSpacing + 4 + itemSpacing;
constexpr int buttonSpacing = 4;
constexpr QSize buttonSize(28, 32);
constexpr int symbolSide = 16;
constexpr int fieldHeight = 26;

QToolButton *symbolButton(const QString &objectName, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setIconSize(QSize(symbolSide, symbolSide));
    button->setFixedSize(buttonSize);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

ZoneRow::ZoneRow(const State &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_handle(new QLabel(this))
    , m_nameBlock(new QWidget(this))
    , m_nameLayout(new QVBoxLayout(m_nameBlock))
    , m_name(
          new TextLine(AppStyle::uiFont(14, QFont::DemiBold), TextLine::Tone::primary, m_nameBlock))
    , m_subtitle(new TextLine(AppStyle::uiFont(11), TextLine::Tone::secondary, m_nameBlock))
    , m_time(new TextLine(AppStyle::monospacedFont(22), TextLine::Tone::primary, this))
    , m_pin(symbolButton(QStringLiteral("pin-button"), this))
    , m_rename(symbolButton(QStringLiteral("rename-button"), this))
    , m_cancel(new InlineEditButton(AppStyle::symbolPath(QStringLiteral("xmark")),
                                    QStringLiteral("Cancel rename (Escape)"), this))
    , m_save(new InlineEditButton(AppStyle::symbolPath(QStringLiteral("checkmark")),
                                  QStringLiteral("Save name (Return)"), this))
{
    m_handle->setObjectName(QStringLiteral("zone-handle"));
    m_handle->setFixedWidth(handleWidth);
    m_handle->setAlignment(Qt::AlignCenter);
    m_handle->setToolTip(QStringLiteral("Drag to reorder"));
    DecorativeAccessible::hide(m_handle);

    m_nameBlock->setObjectName(QStringLiteral("zone-name-block"));
    m_nameBlock->setToolTip(QStringLiteral("Double-click to rename. Drag to reorder."));
    m_nameBlock->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_nameLayout->setContentsMargins(0, 0, 0, 0);
    m_nameLayout->setSpacing(nameLineSpacing);
    m_name->setObjectName(QStringLiteral("zone-name"));
    m_name->setElides(true);
    m_name->setToolTip(QStringLiteral("Double-click to rename"));
    m_name->installEventFilter(this);
    m_subtitle->setObjectName(QStringLiteral("zone-subtitle"));
    m_subtitle->setElides(true);
    m_nameLayout->addWidget(m_name);
    m_nameLayout->addWidget(m_subtitle);

    // The time is never cut: the name gives way instead.
    m_time->setObjectName(QStringLiteral("zone-time"));
    QSizePolicy timePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    timePolicy.setRetainSizeWhenHidden(true);
    m_time->setSizePolicy(timePolicy);

    m_rename->setToolTip(QStringLiteral("Edit nickname"));
    for (InlineEditButton *button : {m_cancel, m_save})
        button->setFixedSize(buttonSize);

    auto *buttons = new QHBoxLayout;
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(buttonSpacing);
    for (QWidget *button : {static_cast<QWidget *>(m_pin), static_cast<QWidget *>(m_rename),
                            static_cast<QWidget *>(m_cancel), static_cast<QWidget *>(m_save)})
        buttons->addWidget(button);

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(0);
    layout->addWidget(m_handle);
    layout->addSpacing(itemSpacing);
    layout->addWidget(m_nameBlock, 1);
    layout->addSpacing(minimumTimeGap);
    layout->addWidget(m_time);
    layout->addSpacing(itemSpacing);
    layout->addLayout(buttons);

    connect(m_pin, &QToolButton::clicked, this, &ZoneRow::togglePinRequested);
    connect(m_rename, &QToolButton::clicked, this, &ZoneRow::beginRenameRequested);
    connect(m_cancel, &QToolButton::clicked, this, &ZoneRow::cancelRenameRequested);
    connect(m_save, &QToolButton::clicked, this, &ZoneRow::saveRenameRequested);

    updateTexts();
    updateSymbols();
    updateRenaming();
}

void ZoneRow::setState(const State &state)
{
    if (state == m_state)
        return;
    const State old = std::exchange(m_state, state);
    const bool textsChanged = old.zone != state.zone || old.now != state.now ||
                              old.format != state.format || old.localZone != state.localZone ||
                              old.canShiftTime != state.canShiftTime ||
                              old.isOutsideWorkingHours != state.isOutsideWorkingHours;
    if (textsChanged)
        updateTexts();
    // Symbols depend on the pin and the handle only, not on the time.
    if (old.zone.isPinned != state.zone.isPinned ||
        old.isReorderHighlighted != state.isReorderHighlighted ||
        old.canReorder != state.canReorder)
        updateSymbols();
    if (old.isRenaming != state.isRenaming || old.draftName != state.draftName ||
        old.zone.identifier != state.zone.identifier)
        updateRenaming();
}

void ZoneRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateSymbols();
    QWidget::changeEvent(event);
}

bool ZoneRow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_name && event->type() == QEvent::MouseButtonDblClick) {
        Q_EMIT beginRenameRequested();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ZoneRow::updateTexts()
{
    const SavedZone &zone = m_state.zone;
    const QString displayName = zone.displayName();
    const QString time = ZoneRowTexts::timeText(zone, m_state.format, m_state.now);
    m_name->setText(displayName);
    m_subtitle->setText(ZoneRowTexts::subtitle(zone, m_state.now, m_state.localZone));
    m_time->setText(time);
    m_time->setAccessibleName(ZoneRowTexts::timeAccessibleName(displayName, time));
    for (TextLine *line : {m_name, m_subtitle, m_time})
        line->setDimmed(m_state.isOutsideWorkingHours);
    if (m_state.canShiftTime) {
        m_time->setCursor(Qt::SizeHorCursor);
        m_time->setToolTip(
            QStringLiteral("Drag or scroll to see every city at another time. Double-click to "
                           "type a time."));
    } else {
        m_time->unsetCursor();
        m_time->setToolTip(QString());
    }
    m_pin->setToolTip(ZoneRowTexts::pinToolTip(zone.isPinned));
    m_pin->setAccessibleName(ZoneRowTexts::pinAccessibleName(zone));
    m_rename->setAccessibleName(ZoneRowTexts::renameAccessibleName(zone));
    if (m_field)
        m_field->setAccessibleName(ZoneRowTexts::nicknameAccessibleName(zone));
}

void ZoneRow::updateSymbols()
{
    const QPalette &colours = palette();
    const QColor secondary = AppStyle::secondaryText(colours);
    const QColor accent = AppStyle::accent(colours);

    // Transparent, not hidden, so the name keeps its place.
    QColor handle = Qt::transparent;
    if (m_state.canReorder) {
        handle = m_state.isReorderHighlighted ? accent : secondary;
        handle.setAlphaF(handle.alphaF() * (m_state.isReorderHighlighted ? 0.9f : 0.3f));
    }
    m_handle->setPixmap(AppStyle::symbolPixmap(QStringLiteral("drag-handle"), handle, handleWidth,
                                               devicePixelRatioF()));

    const bool pinned = m_state.zone.isPinned;
    m_pin->setIcon(AppStyle::symbol(pinned ? QStringLiteral("pin-fill") : QStringLiteral("pin"),
                                    pinned ? accent : secondary, symbolSide));
    m_rename->setIcon(AppStyle::symbol(QStringLiteral("pencil"), secondary, symbolSide));
}

void ZoneRow::updateRenaming()
{
    const bool renaming = m_state.isRenaming;
    if (renaming && !m_field) {
        m_field = new NameField(m_nameBlock);
        m_field->setObjectName(QStringLiteral("city-nickname"));
        m_field->setPlaceholderText(QStringLiteral("City name"));
        m_field->setFixedHeight(fieldHeight);
        m_field->setMaxLength(int(ZoneLimits::maximumNicknameLength));
        m_field->setBoundText(m_state.draftName);
        connect(m_field, &QLineEdit::textEdited, this, &ZoneRow::draftNameEdited);
        const auto save = [this](const QString &text) {
            Q_EMIT draftNameEdited(text);
            Q_EMIT saveRenameRequested();
        };
        connect(m_field, &FocusedTextInput::saveRequested, this, save);
        connect(m_field, &FocusedTextInput::focusLost, this, save);
        connect(m_field, &FocusedTextInput::cancelRequested, this, &ZoneRow::cancelRenameRequested);
        m_nameLayout->insertWidget(0, m_field);
        m_name->hide();
        m_field->show();
    } else if (!renaming && m_field) {
        // Deleted later: the field may be the sender of the signal that ended the rename.
        NameField *field = m_field;
        m_field = nullptr;
        AccessibleRetirement::deleteLater(field);
        m_name->show();
    }
    if (m_field) {
        m_field->setBoundText(m_state.draftName);
        m_field->setAccessibleName(ZoneRowTexts::nicknameAccessibleName(m_state.zone));
    }
    m_pin->setVisible(!renaming);
    m_rename->setVisible(!renaming);
    m_cancel->setVisible(renaming);
    m_save->setVisible(renaming);
}

void ZoneRow::beginTimeEntry(const QString &text)
{
    if (!m_timeField) {
        m_timeField = new NameField(this);
        m_timeField->setObjectName(QStringLiteral("time-field"));
        m_timeField->setPlaceholderText(QStringLiteral("15:00"));
        m_timeField->setAccessibleName(QStringLiteral("Time in ") + m_state.zone.displayName());
        m_timeField->setAccessibleDescription(
            QStringLiteral("Type a time such as 15:00 or 3pm, then Return"));
        m_timeField->setFont(AppStyle::monospacedFont(15));
        // In the time's own place, never wider, so the row keeps its layout.
        m_timeField->setFixedSize(std::max(m_time->sizeHint().width() + 8, 80), fieldHeight + 4);
        m_timeField->setMaxLength(12);
        connect(m_timeField, &FocusedTextInput::saveRequested, this, [this](const QString &typed) {
            if (const std::optional<QTime> time = TimeShift::parseTime(typed)) {
                endTimeEntry();
                Q_EMIT timeEntered(*time);
                return;
            }
            // Stays open to be corrected; the next keystroke starts a new edit.
            QPalette colours = m_timeField->palette();
            colours.setColor(QPalette::Text, AppStyle::errorText(palette()));
            m_timeField->setPalette(colours);
            m_timeField->setAccessibleDescription(QStringLiteral("\u201C") + typed +
                                                  QStringLiteral("\u201D is not a time. Type a "
                                                                 "time such as 15:00 or 3pm"));
            m_timeField->selectAll();
        });
        connect(m_timeField, &QLineEdit::textEdited, this,
                [this] { m_timeField->setPalette(palette()); });
        const auto cancel = [this] {
            endTimeEntry();
            Q_EMIT timeEntryEnded();
        };
        connect(m_timeField, &FocusedTextInput::cancelRequested, this, cancel);
        connect(m_timeField, &FocusedTextInput::focusLost, this, cancel);
        // Over the time's own place, which it keeps while hidden.
        m_time->hide();
        placeTimeField();
        m_timeField->show();
    }
    m_timeField->setText(text.isEmpty() ? m_time->text() : text);
    // The shown time is there to be typed over; a first digit to be typed on.
    const bool typedOn = !text.isEmpty();
    m_timeField->setSelectsAllOnFocus(!typedOn);
    m_timeField->setFocus(Qt::OtherFocusReason);
    if (typedOn)
        m_timeField->end(false);
    else
        m_timeField->selectAll();
}

void ZoneRow::endTimeEntry()
{
    if (!m_timeField)
        return;
    // Deleted later: the field may be the sender of the signal that ended it.
    NameField *field = m_timeField;
    m_timeField = nullptr;
    AccessibleRetirement::deleteLater(field);
    field->hide();
    m_time->show();
}

void ZoneRow::placeTimeField()
{
    if (!m_timeField)
        return;
    const QRect time = m_time->geometry();
    const QSize size = m_timeField->size();
    m_timeField->move(time.right() + 1 - size.width(), time.center().y() - size.height() / 2);
}

void ZoneRow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeTimeField();
}

QWidget *ZoneRow::timeArea() const
{
    return m_time;
}
