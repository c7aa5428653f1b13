#include "SniIconPixmap.h"

#include <QDBusArgument>
#include <QImage>
#include <QtEndian>

SniIconPixmap SniIconPixmap::fromImage(const QImage &image)
{
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    SniIconPixmap pixmap;
    pixmap.width = argb.width();
    pixmap.height = argb.height();
    pixmap.bytes.resize(qsizetype(argb.width()) * argb.height() * 4);
    auto *out = reinterpret_cast<uchar *>(pixmap.bytes.data());
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            // QRgb is 0xAARRGGBB in host order; hosts want the bytes A, R, G, B.
            qToBigEndian<quint32>(line[x], out);
            out += 4;
        }
    }
    return pixmap;
}

QDBusArgument &operator<<(QDBusArgument &argument, const SniIconPixmap &pixmap)
{
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, SniIconPixmap &pixmap)
{
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}
