#pragma once

#include "SniIconPixmap.h"

#include <QMetaType>
#include <QString>

class QDBusArgument;

// The tooltip of a StatusNotifierItem, D-Bus signature (sa(iiay)ss).
struct SniToolTip
{
    QString iconName;
    SniIconPixmapList iconPixmap;
    QString title;
    QString description;

    bool operator==(const SniToolTip &) const = default;
};

QDBusArgument &operator<<(QDBusArgument &argument, const SniToolTip &toolTip);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniToolTip &toolTip);

Q_DECLARE_METATYPE(SniToolTip)
