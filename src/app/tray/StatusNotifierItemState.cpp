#include "StatusNotifierItemState.h"

#include <QMutexLocker>

StatusNotifierItemState::StatusNotifierItemState(const QString &iconName,
                                                 const SniIconPixmapList &iconPixmap,
                                                 const QDBusObjectPath &menu)
    : m_iconName(iconName)
    , m_iconPixmap(iconPixmap)
    , m_menu(menu)
{}

StatusNotifierItemState::Values StatusNotifierItemState::values() const
{
    const QMutexLocker locker(&m_mutex);
    return m_values;
}

void StatusNotifierItemState::setValues(const Values &values)
{
    const QMutexLocker locker(&m_mutex);
    m_values = values;
}
