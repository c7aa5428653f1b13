#pragma once

#include <QProxyStyle>

// The desktop's style, plus a ring in the highlight colour around flat push
// buttons and borderless tool buttons that have the keyboard. Styles draw
// focus on bordered buttons, but Fusion and GTK leave flat ones unmarked, so
// a keyboard user could not see where the footer's or a card's focus is.
// Borderless tool buttons also hover in a rounded shape.
class FocusRingStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                            QPainter *painter, const QWidget *widget = nullptr) const override;
};
