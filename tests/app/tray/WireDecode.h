#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>
#include <QVariantMap>

// Reads structured D-Bus values as a client receives them (QDBusArgument),
// by signature, without the library's own marshalling code. Each sets ok to
// whether the value had the expected signature.
namespace WireDecode {

struct Pixmap
{
    int width = 0;
    int height = 0;
    QByteArray bytes;
};

struct MenuNode
{
    int id = -1;
    QVariantMap properties;
    QList<MenuNode> children;
};

QList<Pixmap> pixmaps(const QVariant &value, bool *ok); // a(iiay)
QString toolTipTitle(const QVariant &value, bool *ok);  // (sa(iiay)ss)
MenuNode menuLayout(const QVariant &value, bool *ok);   // (ia{sv}av)

} // namespace WireDecode
