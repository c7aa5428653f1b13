#include "AddZoneButton.h"

#include "AppStyle.h"

#include <QEvent>

AddZoneButton::AddZoneButton(QWidget *parent)
    : QPushButton(QStringLiteral("Add city"), parent)
{
    setObjectName(QStringLiteral("add-city"));
    setFlat(false);
    setAutoDefault(false);
    updateLook();
}

void AddZoneButton::setControlSize(ControlSize size)
{
    if (m_controlSize == size)
        return;
    m_controlSize = size;
    updateLook();
}

void AddZoneButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateLook();
    QPushButton::changeEvent(event);
}

void AddZoneButton::updateLook()
{
    const bool small = m_controlSize == ControlSize::small;
    setFont(AppStyle::uiFont(small ? 11 : 13, QFont::Medium));
    const int symbolSide = small ? 10 : 12;
    setIconSize(QSize(symbolSide, symbolSide));
    setIcon(AppStyle::symbol(QStringLiteral("plus"), palette().color(QPalette::ButtonText),
                             symbolSide));
    setFixedHeight(small ? 24 : 30);
}
