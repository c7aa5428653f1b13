#include "StatusNotifierItemAdaptor.h"

#include "StatusNotifierItem.h"

#include <QIcon>

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(StatusNotifierItem *item)
    : QDBusAbstractAdaptor(item)
    , m_item(item)
{}

QString StatusNotifierItemAdaptor::id() const
{
    return StatusNotifierItem::appId;
}

QString StatusNotifierItemAdaptor::iconName() const
{
    // Hosts prefer a name to the pixmaps even when their theme lacks it.
    return QIcon::hasThemeIcon(StatusNotifierItem::iconName) ? StatusNotifierItem::iconName
                                                             : QString();
}

QString StatusNotifierItemAdaptor::title() const
{
    return m_item->title();
}

SniIconPixmapList StatusNotifierItemAdaptor::iconPixmap() const
{
    return m_item->iconPixmap();
}

SniToolTip StatusNotifierItemAdaptor::toolTip() const
{
    return m_item->toolTip();
}

QDBusObjectPath StatusNotifierItemAdaptor::menu() const
{
    return m_item->menu();
}

QString StatusNotifierItemAdaptor::xAyatanaLabel() const
{
    return m_item->label();
}

QString StatusNotifierItemAdaptor::xAyatanaLabelGuide() const
{
    return m_item->labelGuide();
}

void StatusNotifierItemAdaptor::Activate(int x, int y)
{
    Q_EMIT m_item->activateRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::SecondaryActivate(int x, int y)
{
    Q_EMIT m_item->secondaryActivateRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::ContextMenu(int x, int y)
{
    Q_EMIT m_item->contextMenuRequested(QPoint(x, y));
}

void StatusNotifierItemAdaptor::Scroll(int delta, const QString &orientation)
{
    const bool horizontal =
        orientation.compare(QLatin1String("horizontal"), Qt::CaseInsensitive) == 0;
    Q_EMIT m_item->scrollRequested(delta, horizontal ? Qt::Horizontal : Qt::Vertical);
}
