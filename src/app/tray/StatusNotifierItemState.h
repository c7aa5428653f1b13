#pragma once

#include "SniIconPixmap.h"
#include "SniToolTip.h"

#include <QDBusObjectPath>
#include <QMutex>
#include <QObject>
#include <QPoint>
#include <QString>

// What the tray item shows on the bus, served on the bus's own thread: a
// host reading the item each minute then wakes that thread alone, not the
// main one as well. Written from the main thread, read under a lock.
class StatusNotifierItemState final : public QObject
{
    Q_OBJECT

public:
    struct Values
    {
        QString title;
        QString label;
        QString labelGuide;
        SniToolTip toolTip;
    };

    StatusNotifierItemState(const QString &iconName, const SniIconPixmapList &iconPixmap,
                            const QDBusObjectPath &menu);

    // Constant from construction on.
    QString iconName() const { return m_iconName; }
    const SniIconPixmapList &iconPixmap() const { return m_iconPixmap; }
    QDBusObjectPath menu() const { return m_menu; }

    Values values() const;
    void setValues(const Values &values);

Q_SIGNALS:
    // Emitted on the bus's thread.
    void activateRequested(const QPoint &position);
    void secondaryActivateRequested(const QPoint &position);
    void contextMenuRequested(const QPoint &position);
    void scrollRequested(int delta, Qt::Orientation orientation);

private:
    const QString m_iconName;
    const SniIconPixmapList m_iconPixmap;
    const QDBusObjectPath m_menu;
    mutable QMutex m_mutex;
    Values m_values;
};
