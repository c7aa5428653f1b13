#pragma once

#include <QStyledItemDelegate>

// Draws one add-city result: title over subtitle on the left; on the right
// the time there and a plus in the accent colour, or a check mark when the
// city is already saved.
class ZoneResultDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    static QFont titleFont();
    static QFont subtitleFont();
    static QFont timeFont();
};
