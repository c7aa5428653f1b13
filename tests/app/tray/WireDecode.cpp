#include "WireDecode.h"

#include <QDBusArgument>
#include <QDBusVariant>

namespace WireDecode {

namespace {

bool hasSignature(const QVariant &value, QLatin1String signature)
{
    return value.metaType() == QMetaType::fromType<QDBusArgument>() &&
           value.value<QDBusArgument>().currentSignature() == signature;
}

QList<Pixmap> readPixmaps(const QDBusArgument &argument)
{
    QList<Pixmap> result;
    argument.beginArray();
    while (!argument.atEnd()) {
        Pixmap pixmap;
        argument.beginStructure();
        argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
        argument.endStructure();
        result.append(pixmap);
    }
    argument.endArray();
    return result;
}

MenuNode readNode(const QVariant &value, bool *ok)
{
    MenuNode node;
    if (!hasSignature(value, QLatin1String("(ia{sv}av)"))) {
        *ok = false;
        return node;
    }
    const QDBusArgument argument = value.value<QDBusArgument>();
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        node.children.append(readNode(child.variant(), ok));
    }
    argument.endArray();
    argument.endStructure();
    return node;
}

} // namespace

QList<Pixmap> pixmaps(const QVariant &value, bool *ok)
{
    *ok = hasSignature(value, QLatin1String("a(iiay)"));
    return *ok ? readPixmaps(value.value<QDBusArgument>()) : QList<Pixmap>();
}

QString toolTipTitle(const QVariant &value, bool *ok)
{
    *ok = hasSignature(value, QLatin1String("(sa(iiay)ss)"));
    if (!*ok)
        return QString();
    QString iconName;
    QString title;
    QString description;
    const QDBusArgument argument = value.value<QDBusArgument>();
    argument.beginStructure();
    argument >> iconName;
    readPixmaps(argument);
    argument >> title >> description;
    argument.endStructure();
    return title;
}

MenuNode menuLayout(const QVariant &value, bool *ok)
{
    *ok = true;
    return readNode(value, ok);
}

} // namespace WireDecode
