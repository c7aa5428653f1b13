#include "ZoneCardStack.h"

#include "AccessibleRetirement.h"
#include "AppStyle.h"
#include "CardMotion.h"
#include "ReorderDropTarget.h"
#include "ZoneCard.h"
#include "ZoneCardStackAccessible.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QVariantAnimation>

#include <algorithm>

namespace {

// A shadow of blur radius 4 fits in 8 px around the card.
constexpr int shadowPad = 8;
constexpr int shadowBlur = 2;
constexpr qreal shadowOpacity = 0.1;
constexpr int shadowOffset = 2;
constexpr qreal previewOpacity = 0.9;
constexpr int dropLineWidth = 2;

// Three passes of a box blur (close to a Gaussian) over the alpha channel of
// an image that is black wherever it is not transparent.
void blurAlpha(QImage &image, int radius)
{
    const int width = image.width();
    const int height = image.height();
    QList<int> line(qMax(width, height));
    const auto pass = [&](int count, int length, auto pixel) {
        for (int i = 0; i < count; ++i) {
            for (int j = 0; j < length; ++j)
                line[j] = qAlpha(*pixel(i, j));
            int sum = 0;
            for (int j = -radius; j <= radius; ++j)
                sum += line[qBound(0, j, length - 1)];
            for (int j = 0; j < length; ++j) {
                *pixel(i, j) = qRgba(0, 0, 0, sum / (2 * radius + 1));
                sum += line[qMin(j + radius + 1, length - 1)] - line[qMax(j - radius, 0)];
            }
        }
    };
    for (int round = 0; round < 3; ++round) {
        pass(height, width, [&image](int row, int column) {
            return reinterpret_cast<QRgb *>(image.scanLine(row)) + column;
        });
        pass(width, height, [&image](int column, int row) {
            return reinterpret_cast<QRgb *>(image.scanLine(row)) + column;
        });
    }
}

} // namespace

ZoneCardStack::ZoneCardStack(QWidget *parent)
    : QWidget(parent)
    , m_motion(new QVariantAnimation(this))
    , m_preview(new QLabel(this))
    , m_dropLine(new QWidget(this))
{
    ZoneCardStackAccessible::install();
    setObjectName(QStringLiteral("zone-cards"));
    setFocusPolicy(Qt::StrongFocus);
    m_preview->setObjectName(QStringLiteral("zone-drag-preview"));
    m_preview->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_preview->hide();
    m_dropLine->setObjectName(QStringLiteral("zone-drop-line"));
    m_dropLine->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_dropLine->setAutoFillBackground(true);
    m_dropLine->hide();

    m_motion->setDuration(CardMotion::springDurationMs());
    m_motion->setEasingCurve(CardMotion::springEasing());
    m_motion->setStartValue(0.0);
    m_motion->setEndValue(1.0);
    connect(m_motion, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        const qreal progress = value.toReal();
        for (const Move &move : std::as_const(m_moves)) {
            if (move.card)
                move.card->move(move.card->x(),
                                qRound(move.fromY + (move.toY - move.fromY) * progress));
        }
        update();
    });
    connect(m_motion, &QVariantAnimation::finished, this, [this] { m_moves.clear(); });
}

ZoneCardStack::~ZoneCardStack()
{
    // Its interface reads the list of cards, which goes before QWidget's part.
    AccessibleRetirement::retire(this);
}

void ZoneCardStack::setCards(const QList<ZoneCard *> &cards, bool animated)
{
    for (ZoneCard *card : cards)
        adopt(card);
    m_cards = cards;
    // The dragged card's zone went away under the pointer.
    if (m_dragCard && !m_cards.contains(m_dragCard.data()))
        endDrag(false);
    placeCards(animated);
}

void ZoneCardStack::relayout()
{
    placeCards(false);
}

std::optional<int> ZoneCardStack::dropIndicatorY() const
{
    if (!m_dropDestination)
        return std::nullopt;
    QList<ReorderDropTarget::Span> spans;
    for (const ZoneCard *card : m_cards)
        spans.append({card->y(), card->y() + card->height()});
    return ReorderDropTarget(spans).indicatorY(*m_dropDestination, verticalInset / 2);
}

QSize ZoneCardStack::sizeHint() const
{
    return {400, contentHeight()};
}

QSize ZoneCardStack::minimumSizeHint() const
{
    return {2 * sideInset, contentHeight()};
}

bool ZoneCardStack::event(QEvent *event)
{
    // A card asks for another size (a rename field or a confirmation came or went).
    if (event->type() == QEvent::LayoutRequest)
        placeCards(false);
    return QWidget::event(event);
}

void ZoneCardStack::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeCards(false);
}

void ZoneCardStack::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    for (ZoneCard *card : std::as_const(m_cards)) {
        const qreal amount = card->highlightAmount();
        if (amount <= 0 || !card->isVisible())
            continue;
        painter.setOpacity(shadowOpacity * amount);
        painter.drawImage(
            QPointF(card->x() - shadowPad, card->y() - shadowPad + shadowOffset * amount),
            shadowFor(card->size()));
    }
}

void ZoneCardStack::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateDropLine();
    QWidget::changeEvent(event);
}

void ZoneCardStack::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && isDragging()) {
        endDrag(false);
        event->accept();
        return;
    }
    const CollectionKeys::Command command =
        CollectionKeys::command(event->key(), event->modifiers());
    if (command == CollectionKeys::Command::none) {
        const QString text = event->text();
        if (text.size() == 1 && text.front().isDigit() &&
            !(event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
            event->accept();
            Q_EMIT timeTyped(text);
            return;
        }
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    Q_EMIT commandRequested(command);
}

void ZoneCardStack::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    Q_EMIT focusChanged(true);
}

void ZoneCardStack::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    Q_EMIT focusChanged(false);
}

void ZoneCardStack::adopt(ZoneCard *card)
{
    if (m_adopted.contains(card))
        return;
    m_adopted.removeAll(nullptr);
    m_adopted.append(card);
    connect(card, &ZoneCard::highlightAmountChanged, this, [this] { update(); });
    connect(card, &ZoneCard::dragStarted, this,
            [this, card](const QPoint &pressPosition) { beginDrag(card, pressPosition); });
    connect(card, &ZoneCard::dragMoved, this, &ZoneCardStack::updateDrag);
    connect(card, &ZoneCard::dragFinished, this, [this] { endDrag(true); });
}

QList<QRect> ZoneCardStack::targetGeometries() const
{
    QList<QRect> geometries;
    const int cardWidth = qMax(0, width() - 2 * sideInset);
    int y = verticalInset;
    for (const ZoneCard *card : m_cards) {
        const int height = card->sizeHint().height();
        geometries.append(QRect(sideInset, y, cardWidth, height));
        y += height + 2 * verticalInset;
    }
    return geometries;
}

int ZoneCardStack::contentHeight() const
{
    int height = 0;
    for (const ZoneCard *card : m_cards)
        height += card->sizeHint().height() + 2 * verticalInset;
    return height;
}

void ZoneCardStack::placeCards(bool animated)
{
    if (m_placing)
        return;
    m_placing = true;
    const QList<QRect> targets = targetGeometries();
    if (!animated) {
        // A move already gliding keeps gliding; only its destination is corrected.
        for (Move &move : m_moves) {
            const qsizetype index = m_cards.indexOf(move.card.data());
            if (index >= 0)
                move.toY = targets.at(index).y();
        }
    } else {
        m_motion->stop();
        m_moves.clear();
    }
    for (qsizetype i = 0; i < m_cards.size(); ++i) {
        ZoneCard *card = m_cards.at(i);
        const QRect target = targets.at(i);
        const bool placed = card->isVisible() && card->width() > 0;
        const bool gliding = std::any_of(m_moves.cbegin(), m_moves.cend(),
                                         [card](const Move &move) { return move.card == card; });
        if (animated && placed && card->y() != target.y()) {
            m_moves.append({card, card->y(), target.y()});
            card->setGeometry(target.x(), card->y(), target.width(), target.height());
        } else if (gliding) {
            card->resize(target.size());
        } else {
            card->setGeometry(target);
        }
        card->show();
    }
    if (animated && !m_moves.isEmpty())
        m_motion->start();
    const int height = contentHeight();
    if (minimumHeight() != height) {
        setMinimumHeight(height);
        updateGeometry();
    }
    m_placing = false;
    update();
}

void ZoneCardStack::beginDrag(ZoneCard *card, const QPoint &pressPosition)
{
    m_dragCard = card;
    m_dragGrab = pressPosition;
    const qreal ratio = devicePixelRatioF();
    QPixmap snapshot(card->size() * ratio);
    snapshot.setDevicePixelRatio(ratio);
    snapshot.fill(Qt::transparent);
    card->render(&snapshot, QPoint(), QRegion(), QWidget::DrawChildren);
    QPixmap faded(snapshot.size());
    faded.setDevicePixelRatio(ratio);
    faded.fill(Qt::transparent);
    {
        QPainter painter(&faded);
        painter.setOpacity(previewOpacity);
        painter.drawPixmap(0, 0, snapshot);
    }
    m_preview->setPixmap(faded);
    m_preview->setGeometry(card->geometry());
    m_preview->show();
    m_preview->raise();
}

void ZoneCardStack::updateDrag(const QPoint &globalPosition)
{
    if (!m_dragCard)
        return;
    const QPoint position = mapFromGlobal(globalPosition);
    const int top =
        qBound(0, position.y() - m_dragGrab.y(), qMax(0, height() - m_preview->height()));
    m_preview->move(m_dragCard->x(), top);

    QList<ReorderDropTarget::Span> spans;
    for (const ZoneCard *card : std::as_const(m_cards))
        spans.append({card->y(), card->y() + card->height()});
    const int destination = ReorderDropTarget(spans).destination(position.y());
    const int offset = int(m_cards.indexOf(m_dragCard.data()));
    m_dropDestination = ReorderDropTarget::changesOrder(offset, destination)
                            ? std::optional<int>(destination)
                            : std::nullopt;
    updateDropLine();
    if (auto *area =
            qobject_cast<QScrollArea *>(parentWidget() ? parentWidget()->parentWidget() : nullptr))
        area->ensureVisible(position.x(), position.y(), 0, 24);
    update();
}

void ZoneCardStack::endDrag(bool drop)
{
    if (!m_dragCard)
        return;
    const int offset = int(m_cards.indexOf(m_dragCard.data()));
    const std::optional<int> destination = std::exchange(m_dropDestination, std::nullopt);
    // The card glides to its new place from where it was dropped.
    if (drop && destination)
        m_dragCard->move(m_preview->pos());
    m_dragCard = nullptr;
    m_preview->hide();
    m_dropLine->setObjectName(QStringLiteral("zone-drop-line"));
    m_dropLine->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_dropLine->setAutoFillBackground(true);
    m_dropLine->hide();
    m_preview->clear();
    update();
    if (drop && destination && offset >= 0)
        Q_EMIT reorderRequested(offset, *destination);
}

void ZoneCardStack::updateDropLine()
{
    const std::optional<int> y = dropIndicatorY();
    if (!y) {
        m_dropLine->hide();
        return;
    }
    QPalette colours = m_dropLine->palette();
    colours.setColor(QPalette::Window, AppStyle::accent(palette()));
    m_dropLine->setPalette(colours);
    m_dropLine->setGeometry(sideInset, *y - dropLineWidth / 2, width() - 2 * sideInset,
                            dropLineWidth);
    m_dropLine->show();
    m_dropLine->raise();
}

QImage ZoneCardStack::shadowFor(const QSize &cardSize)
{
    const qreal ratio = devicePixelRatioF();
    const quint64 key = (quint64(cardSize.width()) << 32) | (quint64(cardSize.height()) << 8) |
                        quint64(qRound(ratio * 4));
    auto it = m_shadows.constFind(key);
    if (it != m_shadows.cend())
        return it.value();
    const QSize padded = cardSize + QSize(2 * shadowPad, 2 * shadowPad);
    QImage image(padded * ratio, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(ratio, ratio);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(QPointF(shadowPad, shadowPad), QSizeF(cardSize)),
                                ZoneCard::cornerRadius, ZoneCard::cornerRadius);
    }
    blurAlpha(image, qRound(shadowBlur * ratio));
    image.setDevicePixelRatio(ratio);
    if (m_shadows.size() > 32)
        m_shadows.clear();
    m_shadows.insert(key, image);
    return image;
}
