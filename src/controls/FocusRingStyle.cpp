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
    const auto *tool = qstyleoption_cast<const QStyleOptionToolButton *>(option);
    if (control != CC_ToolButton || !tool || !(option->state & State_AutoRaise)) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    // Borderless symbol buttons light up in the same rounded shape as the
    // flat buttons beside them, not in the style's square panel.
    const bool pressed = option->state & (State_Sunken | State_On);
    if ((option->state & State_Enabled) && (pressed || (option->state & State_MouseOver))) {
        QColor wash = option->palette.color(QPalette::WindowText);
        wash.setAlphaF(pressed ? 0.16f : 0.08f);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(wash);
        painter->drawRoundedRect(QRectF(option->rect).adjusted(1, 1, -1, -1), 6, 6);
        painter->restore();
    }
    QStyleOptionToolButton label = *tool;
    label.state &= ~(State_Sunken | State_On);
    proxy()->drawControl(CE_ToolButtonLabel, &label, painter, widget);
    drawRing(option, painter);
}
