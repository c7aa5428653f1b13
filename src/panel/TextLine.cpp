#include "TextLine.h"

#include "AppStyle.h"

#include <QPainter>

TextLine::TextLine(const QFont &font, Tone tone, QWidget *parent)
    : QLabel(parent)
    , m_tone(tone)
{
    setFont(font);
    setTextFormat(Qt::PlainText);
    setWordWrap(false);
}

void TextLine::setTone(Tone tone)
{
    if (m_tone == tone)
        return;
    m_tone = tone;
    update();
}

void TextLine::setDimmed(bool dimmed)
{
    if (m_dimmed == dimmed)
        return;
    m_dimmed = dimmed;
    update();
}

void TextLine::setElides(bool elides)
{
    if (m_elides == elides)
        return;
    m_elides = elides;
    setSizePolicy(elides ? QSizePolicy::Ignored : QSizePolicy::Preferred, QSizePolicy::Fixed);
    updateGeometry();
}

QSize TextLine::minimumSizeHint() const
{
    if (m_elides)
        return {0, sizeHint().height()};
    return sizeHint();
}

void TextLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setFont(font());
    switch (m_tone) {
    case Tone::primary:
        painter.setPen(palette().color(QPalette::WindowText));
        break;
    case Tone::secondary:
        painter.setPen(AppStyle::secondaryText(palette()));
        break;
    case Tone::error:
        painter.setPen(AppStyle::errorText(palette()));
        break;
    case Tone::accent:
        painter.setPen(AppStyle::accent(palette()));
        break;
    }
    if (m_dimmed)
        painter.setOpacity(0.45);
    const QRect area = contentsRect();
    if (wordWrap()) {
        painter.drawText(area, int(alignment()) | Qt::TextWordWrap, text());
        return;
    }
    const QString shown =
        m_elides ? fontMetrics().elidedText(text(), Qt::ElideRight, area.width()) : text();
    painter.drawText(area, int(alignment()) | Qt::TextSingleLine, shown);
}
