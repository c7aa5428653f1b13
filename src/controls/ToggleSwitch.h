#pragma once

#include <QAbstractButton>

// A settings switch: its text on the left, a sliding switch on the right, the
// whole row clickable. Checkable; Space flips it. Drawn in the palette's
// highlight colour when on, so it takes the window's tint.
class ToggleSwitch final : public QAbstractButton
{
    Q_OBJECT

public:
    explicit ToggleSwitch(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &position) const override;

private:
    QRect trackRect() const;
};
