#include "Divider.h"

#include "AppStyle.h"
#include "DecorativeAccessible.h"

#include <QEvent>

Divider::Divider(QWidget *parent)
    : QFrame(parent)
{
    setFixedHeight(1);
    setAutoFillBackground(true);
    DecorativeAccessible::hide(this);
    updateColour();
}

void Divider::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && !m_updating)
        updateColour();
}

void Divider::updateColour()
{
    m_updating = true;
    QPalette colours = palette();
    colours.setColor(QPalette::Window,
                     AppStyle::line(parentWidget() ? parentWidget()->palette() : palette()));
    setPalette(colours);
    m_updating = false;
}
