#include "SavedZone.h"

#include <QStringList>

QString cityPart(const QString &identifier)
{
    const QStringList pieces = identifier.split(u'/', Qt::SkipEmptyParts);
    QString part = pieces.isEmpty() ? identifier : pieces.last();
    part.replace(u'_', u' ');
    return part;
}

QString trimmedText(const QString &text)
{
    // QString::trimmed() covers the Unicode white-space and line-break
    // characters (including U+0085, U+2028 and U+2029).
    return text.trimmed();
}

QString SavedZone::displayName() const
{
    if (customLabel) {
        const QString label = trimmedText(*customLabel);
        if (!label.isEmpty())
            return label;
    }
    return cityPart(identifier);
}

size_t qHash(const SavedZone &zone, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, zone.id);
    seed = combine(seed, zone.identifier);
    seed = combine(seed, zone.customLabel.has_value());
    if (zone.customLabel)
        seed = combine(seed, *zone.customLabel);
    seed = combine(seed, zone.isPinned);
    return seed;
}
