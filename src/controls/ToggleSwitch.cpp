#include "ToggleSwitch.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int trackWidth = 34;
constexpr int trackHeight = 20;
constexpr int gap = 16;
constexpr int focusMargin = 3;

QColor withAlpha(QColor color, qreal alpha)
{
    color.setAlphaF(float(color.alphaF() * alpha));
    return color;
}

} // namespace

ToggleSwitch::ToggleSwitch(const QString &text, QWidget *parent)
    : QAbstractButton(parent)
{
    setText(text);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ToggleSwitch::sizeHint() const
{
    const int textWidth = fontMetrics().horizontalAdvance(text());
    const int height = std::max(fontMetrics().height(), trackHeight) + 2 * focusMargin;
    return {textWidth + gap + trackWidth + 2 * focusMargin, height};
}

QSize ToggleSwitch::minimumSizeHint() const
{
    return sizeHint();
}

QRect ToggleSwitch::trackRect() const
{
    return {width() - trackWidth - focusMargin, (height() - trackHeight) / 2, trackWidth,
            trackHeight};
}

bool ToggleSwitch::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette &colours = palette();
    const qreal opacity = isEnabled() ? 1.0 : 0.45;

    const QRect track = trackRect();
    painter.setPen(withAlpha(colours.color(QPalette::WindowText), opacity));
    painter.drawText(QRect(0, 0, track.left() - gap, height()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());

    const qreal radius = trackHeight / 2.0;
    const QColor on = colours.color(QPalette::Highlight);
    const QColor off = withAlpha(colours.color(QPalette::WindowText), 0.22);
    painter.setPen(Qt::NoPen);
    painter.setOpacity(opacity);
    painter.setBrush(isChecked() ? on : off);
    painter.drawRoundedRect(track, radius, radius);

    const int knobSide = trackHeight - 4;
    const int knobX = isChecked() ? track.right() - 1 - knobSide : track.left() + 2;
    const QRectF knob(knobX, track.top() + 2, knobSide, knobSide);
    painter.setBrush(withAlpha(Qt::black, 0.18));
    painter.drawEllipse(knob.translated(0, 0.6));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
    painter.setOpacity(1.0);

    if (hasFocus()) {
        QPen ring(on, 2);
        painter.setPen(ring);
        painter.setBrush(Qt::NoBrush);
        const QRectF outline = QRectF(track).adjusted(-2, -2, 2, 2);
        painter.drawRoundedRect(outline, radius + 2, radius + 2);
    }
}
