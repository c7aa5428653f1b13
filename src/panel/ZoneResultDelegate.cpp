#include "ZoneResultDelegate.h"

#include "AppStyle.h"
#include "ZoneResultsModel.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int horizontalPadding = 8;
constexpr int verticalPadding = 5;
constexpr int lineSpacing = 4;
constexpr int itemSpacing = 12;
constexpr int symbolSize = 16;

void drawPlusCircle(QPainter *painter, const QRectF &box, const QColor &color)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QPen pen(color, 1.4);
    pen.setCapStyle(Qt::RoundCap);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    const QRectF circle = box.adjusted(1, 1, -1, -1);
    painter->drawEllipse(circle);
    const QPointF centre = circle.center();
    const qreal arm = circle.width() * 0.26;
    painter->drawLine(QPointF(centre.x() - arm, centre.y()), QPointF(centre.x() + arm, centre.y()));
    painter->drawLine(QPointF(centre.x(), centre.y() - arm), QPointF(centre.x(), centre.y() + arm));
    painter->restore();
}

} // namespace

QFont ZoneResultDelegate::titleFont()
{
    return AppStyle::uiFont(13, QFont::Medium);
}

QFont ZoneResultDelegate::subtitleFont()
{
    return AppStyle::uiFont(11);
}

QFont ZoneResultDelegate::timeFont()
{
    return AppStyle::monospacedFont(13);
}

QSize ZoneResultDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &) const
{
    const int height = QFontMetrics(titleFont()).height() + lineSpacing +
                       QFontMetrics(subtitleFont()).height() + 2 * verticalPadding + 4;
    return {option.rect.width(), height};
}

void ZoneResultDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                               const QModelIndex &index) const
{
    const QPalette &palette = option.palette;
    const QColor accent = AppStyle::accent(palette);
    const QColor primary = palette.color(QPalette::Text);
    const QColor secondary = AppStyle::secondaryText(palette);
    const bool enabled = option.state & QStyle::State_Enabled;

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF row = QRectF(option.rect).adjusted(2, 1, -2, -1);
    if (enabled && (option.state & (QStyle::State_Selected | QStyle::State_MouseOver))) {
        QColor wash = accent;
        wash.setAlphaF(option.state & QStyle::State_Selected ? 0.14 : 0.07);
        QPainterPath path;
        path.addRoundedRect(row, 8, 8);
        painter->fillPath(path, wash);
    }

    QRect content = option.rect.adjusted(horizontalPadding, verticalPadding, -horizontalPadding,
                                         -verticalPadding);

    // Right-hand side first: what is left goes to the texts.
    const bool added = index.data(ZoneResultsModel::AlreadyAddedRole).toBool();
    const QString time = index.data(ZoneResultsModel::TimeRole).toString();
    int right = content.right();
    if (added) {
        const QRect box(right - symbolSize + 1, content.center().y() - symbolSize / 2, symbolSize,
                        symbolSize);
        painter->drawPixmap(box, AppStyle::symbolPixmap(QStringLiteral("checkmark"), secondary,
                                                        symbolSize,
                                                        painter->device()->devicePixelRatioF()));
        right = box.left() - itemSpacing;
    } else if (!time.isEmpty()) {
        const QRectF box(right - symbolSize + 1, content.center().y() - symbolSize / 2.0,
                         symbolSize, symbolSize);
        drawPlusCircle(painter, box, enabled ? accent : secondary);
        right = int(box.left()) - itemSpacing;
        painter->setFont(timeFont());
        painter->setPen(secondary);
        const int width = QFontMetrics(timeFont()).horizontalAdvance(time);
        const QRect timeBox(right - width + 1, content.top(), width, content.height());
        painter->drawText(timeBox, Qt::AlignRight | Qt::AlignVCenter, time);
        right = timeBox.left() - itemSpacing;
    }

    const QRect texts(content.left(), content.top(), std::max(0, right - content.left()),
                      content.height());
    const QFontMetrics titleMetrics(titleFont());
    const QFontMetrics subtitleMetrics(subtitleFont());
    const int block = titleMetrics.height() + lineSpacing + subtitleMetrics.height();
    const int top = texts.top() + (texts.height() - block) / 2;
    painter->setFont(titleFont());
    painter->setPen(enabled ? primary : secondary);
    painter->drawText(QRect(texts.left(), top, texts.width(), titleMetrics.height()),
                      Qt::AlignLeft | Qt::AlignVCenter,
                      titleMetrics.elidedText(index.data(ZoneResultsModel::TitleRole).toString(),
                                              Qt::ElideRight, texts.width()));
    painter->setFont(subtitleFont());
    painter->setPen(secondary);
    painter->drawText(
        QRect(texts.left(), top + titleMetrics.height() + lineSpacing, texts.width(),
              subtitleMetrics.height()),
        Qt::AlignLeft | Qt::AlignVCenter,
        subtitleMetrics.elidedText(index.data(ZoneResultsModel::SubtitleRole).toString(),
                                   Qt::ElideRight, texts.width()));

    if (option.state & QStyle::State_HasFocus && enabled) {
        QPen focus(accent, 1.2);
        painter->setPen(focus);
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(row.adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    }
    painter->restore();
}
