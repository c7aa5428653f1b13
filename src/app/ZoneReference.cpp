#include "ZoneReference.h"

#include "ZoneListCodec.h"

namespace ZoneReference {

namespace {

QList<qsizetype> namedBy(const QString &text, const QList<SavedZone> &zones,
                         Qt::CaseSensitivity sensitivity)
{
    QList<qsizetype> found;
    for (qsizetype i = 0; i < zones.size(); ++i) {
        if (zones[i].displayName().compare(text, sensitivity) == 0)
            found.append(i);
    }
    return found;
}

QString positionsOf(const QList<qsizetype> &indexes)
{
    QStringList positions;
    for (qsizetype index : indexes)
        positions.append(QString::number(index + 1));
    return positions.join(QStringLiteral(", "));
}

} // namespace

std::variant<qsizetype, QString> resolve(const QString &text, const QList<SavedZone> &zones)
{
    bool isNumber = false;
    const qlonglong position = text.toLongLong(&isNumber);
    if (isNumber) {
        if (position >= 1 && position <= zones.size())
            return qsizetype(position - 1);
        return QStringLiteral("there is no city at position %1 (your list has %2)")
            .arg(text)
            .arg(zones.size());
    }

    QStringView idText(text);
    if (idText.startsWith(u'{') && idText.endsWith(u'}'))
        idText = idText.sliced(1, idText.size() - 2);
    if (ZoneListCodec::isCanonicalUuidText(idText)) {
        const QUuid id = QUuid::fromString(idText);
        for (qsizetype i = 0; i < zones.size(); ++i) {
            if (zones[i].id == id)
                return i;
        }
        return QStringLiteral("no city has the id %1").arg(text);
    }

    // An exact name wins; letter case is forgiven only when that is unambiguous.
    for (Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        const QList<qsizetype> found = namedBy(text, zones, sensitivity);
        if (found.size() == 1)
            return found.constFirst();
        if (found.size() > 1) {
            return QStringLiteral("\"%1\" names several cities (positions %2); "
                                  "use a position or an id instead")
                .arg(text, positionsOf(found));
        }
    }
    return QStringLiteral("no city in your list is called \"%1\" (see \"zonara list\")").arg(text);
}

} // namespace ZoneReference
