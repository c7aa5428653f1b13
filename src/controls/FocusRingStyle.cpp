#include "FocusRingStyle.h"

#include <QPainter>
#include <QStyleOption>

namespace {

void drawRing(const QStyleOption *option, QPainter *painter)
{
    // Only once the keyboard is in use, as styles do for their own rings.
    if (!(option->state & QStyle::State_HasFocus) ||
        !(option->state & QStyle::State_KeyboardFocusChange))
        return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(option->palette.color(QPalette::Highlight), 2));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), 6, 6);
    painter->restore();
}

} // namespace

void FocusRingStyle::drawControl(ControlElement element, const QStyleOption *option,
                                 QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    const auto *button = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (element == CE_PushButton && button && (button->features & QStyleOptionButton::Flat))
        drawRing(option, painter);
}

void FocusRingStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                        QPainter *painter, const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ToolButton && (option->state & State_AutoRaise))
        drawRing(option, painter);
}
