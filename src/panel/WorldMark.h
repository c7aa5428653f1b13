#pragma once

#include <QWidget>

// The globe beside the product name: the accent colour on a faint accent
// tile. Decoration only, skipped by assistive technology.
class WorldMark final : public QWidget
{
    Q_OBJECT

public:
    explicit WorldMark(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
