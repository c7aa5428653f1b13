#include "StatusNotifierItemAdaptor.h"

#include "StatusNotifierItem.h"
#include "StatusNotifierItemState.h"

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(StatusNotifierItemState *state)
    : QDBusAbstractAdaptor(state)
    , m_state(state)
{}

QString StatusNotifierItemAdaptor::id() const
{
    return StatusNotifierItem::appId;
}

QString StatusNotifierItemAdaptor::iconName() const
{
    return m_state->iconName();
}

QString StatusNotifierItemAdaptor::title() const
{
    return m_state->values().title;
}

SniIconPixmapList StatusNotifierItemAdaptor::iconPixmap() const
{
    return m_state->iconPixmap();
}

SniToolTip StatusNotifierItemAdaptor::toolTip() const
{
    return m_state->values().toolTip;
}

QDBusObjectPath StatusNotifierItemAdaptor::menu() const
{
    return m_state->menu();
}

QString StatusNotifierItemAdaptor::xAyatanaLabel() const
{
    return m_state->values().label;
}

QString StatusNotifierItemAdaptor::xAyatanaLabelGuide() const
{
    return m_state->values().labelGuide;
}

void StatusNotifierItemAdaptor::Activate(int x, int y)
{
    Q_EMIT m_state->activateRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::SecondaryActivate(int x, int y)
{
    Q_EMIT m_state->secondaryActivateRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::ContextMenu(int x, int y)
{
    Q_EMIT m_state->contextMenuRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::Scroll(int delta, const QString &orientation)
{
    const bool horizontal =
        orientation.compare(QLatin1String("horizontal"), Qt::CaseInsensitive) == 0;
    Q_EMIT m_state->scrollRequested(delta, horizontal ? Qt::Horizontal : Qt::Vertical);
}
