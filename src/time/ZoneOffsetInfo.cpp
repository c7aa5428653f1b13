#include "ZoneOffsetInfo.h"

#include "ZoneOffset.h"

#include <QStringList>

QString ZoneOffsetInfo::subtitle() const
{
    QStringList parts;
    if (!abbreviation.isEmpty())
        parts.append(abbreviation);
    QString offset = ZoneOffset::formatOffsetHours(offsetSeconds);
    if (relativeDay)
        offset += u", " + *relativeDay;
    parts.append(offset);
    return parts.join(u" \u00B7 ");
}
