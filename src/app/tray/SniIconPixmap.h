#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>

class QDBusArgument;
class QImage;

// One icon image as StatusNotifierItem hosts read it, D-Bus signature (iiay):
// non-premultiplied ARGB32, each pixel in network byte order.
struct SniIconPixmap
{
    int width = 0;
    int height = 0;
    QByteArray bytes;

    static SniIconPixmap fromImage(const QImage &image);

    bool operator==(const SniIconPixmap &) const = default;
};

using SniIconPixmapList = QList<SniIconPixmap>;

QDBusArgument &operator<<(QDBusArgument &argument, const SniIconPixmap &pixmap);
const QDBusArgument &operator>>(const QDBusArgument &argument, SniIconPixmap &pixmap);

Q_DECLARE_METATYPE(SniIconPixmap)
