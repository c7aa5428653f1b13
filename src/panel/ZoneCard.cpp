#include "ZoneCard.h"

#include "AccessibleRetirement.h"
#include "AppStyle.h"
#include "CardMotion.h"
#include "TextLine.h"
#include "ZoneCardAccessible.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QVariantAnimation>
#include <QWheelEvent>

#include <cstdlib>
#include <utility>

namespace {

// Pointer travel per step of a dragged time, and wheel travel per step.
constexpr int timeDragStepPixels = 12;
constexpr int wheelStep = 120;

constexpr int sidePadding = 14;
constexpr int bottomPadding = 12;
constexpr int confirmationSpacing = 12;
// Under the city's name: the row's padding, the handle and the gap after it.
constexpr int nameIndent = 34;

QColor blended(const QColor &from, const QColor &to, qreal amount)
{
    const auto mix = [amount](float a, float b) { return a + (b - a) * float(amount); };
    return QColor::fromRgbF(mix(from.redF(), to.redF()), mix(from.greenF(), to.greenF()),
                            mix(from.blueF(), to.blueF()), mix(from.alphaF(), to.alphaF()));
}

} // namespace

ZoneCard::ZoneCard(const State &state, QWidget *parent)
    : QWidget(parent)
    , m_state(state)
    , m_row(new ZoneRow(state.row, this))
    , m_confirmation(new QWidget(this))
    , m_removeCancel(new QPushButton(QStringLiteral("Cancel"), m_confirmation))
    , m_removeConfirm(new QPushButton(QStringLiteral("Remove"), m_confirmation))
    , m_identifier(new TextLine(AppStyle::monospacedFont(10), TextLine::Tone::secondary, this))
    , m_notice(new TextLine(AppStyle::uiFont(11, QFont::DemiBold), TextLine::Tone::accent, this))
    , m_highlight(new QVariantAnimation(this))
{
    ZoneCardAccessible::install();
    setObjectName(QStringLiteral("zone-card"));
    setMouseTracking(false);

    auto *question = new TextLine(AppStyle::uiFont(12), TextLine::Tone::primary, m_confirmation);
    question->setObjectName(QStringLiteral("remove-question"));
    question->setText(QStringLiteral("Remove this city?"));
    m_removeCancel->setObjectName(QStringLiteral("remove-cancel"));
    m_removeConfirm->setObjectName(QStringLiteral("remove-confirm"));
    for (QPushButton *button : {m_removeCancel, m_removeConfirm})
        button->setAutoDefault(false);
    auto *confirmationLayout = new QHBoxLayout(m_confirmation);
    confirmationLayout->setContentsMargins(sidePadding, 0, sidePadding, bottomPadding);
    confirmationLayout->setSpacing(confirmationSpacing);
    confirmationLayout->addWidget(question);
    confirmationLayout->addStretch(1);
    confirmationLayout->addWidget(m_removeCancel);
    confirmationLayout->addWidget(m_removeConfirm);
    m_confirmation->setObjectName(QStringLiteral("remove-confirmation"));

    m_identifier->setObjectName(QStringLiteral("zone-identifier"));
    m_identifier->setElides(true);
    m_identifier->setContentsMargins(sidePadding, 0, sidePadding, bottomPadding);

    // The whole card's width: the name's column alone would cut it.
    m_notice->setObjectName(QStringLiteral("zone-change-notice"));
    m_notice->setElides(true);
    m_notice->setContentsMargins(nameIndent, 0, sidePadding, bottomPadding);
    m_notice->setToolTip(QStringLiteral("This city's clocks change within a week"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_row);
    layout->addWidget(m_notice);
    layout->addWidget(m_confirmation);
    layout->addWidget(m_identifier);

    m_highlight->setDuration(CardMotion::highlightDurationMs);
    m_highlight->setEasingCurve(CardMotion::highlightEasing());
    connect(m_highlight, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &value) { setHighlightAmount(value.toReal()); });
    connect(m_removeCancel, &QPushButton::clicked, this, &ZoneCard::removalCancelled);
    connect(m_removeConfirm, &QPushButton::clicked, this, &ZoneCard::removalConfirmed);

    m_confirmation->setVisible(state.isConfirmingRemoval);
    m_identifier->setVisible(state.showsIdentifier);
    m_identifier->setText(state.row.zone.identifier);
    m_notice->setText(state.row.changeNotice);
    m_notice->setVisible(!state.row.changeNotice.isEmpty());
    setAccessibleName(state.row.zone.displayName());
    updateRemoveColour();
    updateHighlight(false);
}

ZoneCard::~ZoneCard()
{
    // While the card is still whole.
    AccessibleRetirement::retire(this);
}

void ZoneCard::setState(const State &state)
{
    if (state == m_state)
        return;
    const State old = std::exchange(m_state, state);
    m_row->setState(state.row);
    if (old.isConfirmingRemoval != state.isConfirmingRemoval)
        m_confirmation->setVisible(state.isConfirmingRemoval);
    if (old.showsIdentifier != state.showsIdentifier)
        m_identifier->setVisible(state.showsIdentifier);
    if (old.row.zone != state.row.zone) {
        m_identifier->setText(state.row.zone.identifier);
        setAccessibleName(state.row.zone.displayName());
    }
    if (old.row.changeNotice != state.row.changeNotice) {
        m_notice->setText(state.row.changeNotice);
        m_notice->setVisible(!state.row.changeNotice.isEmpty());
    }
    if (old.isHighlighted != state.isHighlighted)
        updateHighlight(!state.reduceMotion);
    if (old.showsFocus != state.showsFocus)
        update();
}

QPainterPath ZoneCard::shape() const
{
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
    return path;
}

void ZoneCard::requestAction(ZoneMenu::Action action)
{
    Q_EMIT actionRequested(action);
}

void ZoneCard::paintEvent(QPaintEvent *)
{
    const QPalette &colours = palette();
    const QColor accent = AppStyle::accent(colours);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);

    painter.fillPath(shape(), colours.color(QPalette::Base));
    if (m_highlightAmount > 0) {
        QColor wash = accent;
        wash.setAlphaF(float(0.06 * m_highlightAmount));
        painter.fillPath(shape(), wash);
    }
    // A 1 px border drawn inside the shape.
    QColor lit = accent;
    lit.setAlphaF(0.5f);
    QPen pen(blended(AppStyle::line(colours), lit, m_highlightAmount), 1);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius - 0.5,
                            cornerRadius - 0.5);
    if (m_state.showsFocus) {
        painter.setPen(QPen(accent, 2));
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius - 1,
                                cornerRadius - 1);
    }
}

void ZoneCard::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateRemoveColour();
    QWidget::changeEvent(event);
}

void ZoneCard::enterEvent(QEnterEvent *event)
{
    Q_EMIT hoverEntered();
    QWidget::enterEvent(event);
}

void ZoneCard::leaveEvent(QEvent *event)
{
    Q_EMIT hoverLeft();
    QWidget::leaveEvent(event);
}

void ZoneCard::mousePressEvent(QMouseEvent *event)
{
    // The rounded corners are not part of the card.
    if (!shape().contains(event->position())) {
        event->ignore();
        return;
    }
    if (event->button() == Qt::LeftButton) {
        m_pressPosition = event->position().toPoint();
        m_pressedOnTime = isOnTime(event->position());
        m_timeStepsDragged = 0;
    }
    Q_EMIT pressed();
    event->accept();
}

void ZoneCard::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressPosition || !(event->buttons() & Qt::LeftButton)) {
        event->ignore();
        return;
    }
    const QPoint position = event->position().toPoint();
    if (m_pressedOnTime) {
        // Right is later; each step counts once however the pointer wanders.
        const int steps = (position.x() - m_pressPosition->x()) / timeDragStepPixels;
        if (steps != m_timeStepsDragged) {
            const int minutes = event->modifiers() & Qt::ShiftModifier ? 60 : 15;
            Q_EMIT timeShiftRequested(steps - std::exchange(m_timeStepsDragged, steps), minutes);
        }
        return;
    }
    if (!m_dragging) {
        if (!m_state.row.canReorder ||
            (position - *m_pressPosition).manhattanLength() < QApplication::startDragDistance())
            return;
        m_dragging = true;
        Q_EMIT dragStarted(*m_pressPosition);
    }
    Q_EMIT dragMoved(event->globalPosition().toPoint());
}

void ZoneCard::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressPosition.reset();
    m_pressedOnTime = false;
    if (std::exchange(m_dragging, false))
        Q_EMIT dragFinished();
}

void ZoneCard::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !shape().contains(event->position())) {
        event->ignore();
        return;
    }
    if (isOnTime(event->position())) {
        Q_EMIT timeEntryRequested();
        return;
    }
    Q_EMIT doubleClicked();
}

void ZoneCard::contextMenuEvent(QContextMenuEvent *event)
{
    Q_EMIT contextMenuRequested(event->globalPos());
}

void ZoneCard::wheelEvent(QWheelEvent *event)
{
    if (!isOnTime(event->position())) {
        event->ignore(); // the list scrolls
        return;
    }
    // Up or right is later; a touchpad's small deltas add up to whole steps.
    const QPoint delta = event->angleDelta();
    m_wheelRemainder += std::abs(delta.y()) >= std::abs(delta.x()) ? delta.y() : -delta.x();
    const int steps = m_wheelRemainder / wheelStep;
    m_wheelRemainder -= steps * wheelStep;
    if (steps != 0)
        Q_EMIT timeShiftRequested(steps, event->modifiers() & Qt::ShiftModifier ? 60 : 15);
    event->accept();
}

bool ZoneCard::isOnTime(const QPointF &position) const
{
    const QWidget *time = m_row->timeArea();
    if (!m_row->state().canShiftTime || !time->isVisible())
        return false;
    // A little slack around the digits makes the target easier to hit.
    const QRect area(time->mapTo(this, QPoint(0, 0)), time->size());
    return area.adjusted(-6, -8, 6, 8).contains(position.toPoint());
}

void ZoneCard::updateHighlight(bool animated)
{
    const qreal target = m_state.isHighlighted ? 1 : 0;
    m_highlight->stop();
    if (!animated) {
        setHighlightAmount(target);
        return;
    }
    m_highlight->setStartValue(m_highlightAmount);
    m_highlight->setEndValue(target);
    m_highlight->start();
}

void ZoneCard::updateRemoveColour()
{
    // The destructive action reads in red on either background.
    QPalette colours = m_removeConfirm->palette();
    const QColor red =
        AppStyle::isDark(palette()) ? QColor(0xff, 0x6b, 0x60) : QColor(0xc4, 0x2b, 0x1c);
    colours.setColor(QPalette::ButtonText, red);
    m_removeConfirm->setPalette(colours);
}

void ZoneCard::setHighlightAmount(qreal amount)
{
    if (qFuzzyCompare(m_highlightAmount + 1, amount + 1))
        return;
    m_highlightAmount = amount;
    update();
    Q_EMIT highlightAmountChanged();
}
