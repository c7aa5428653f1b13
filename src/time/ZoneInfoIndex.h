#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The names a compiled tz database defines. Read from its tzdata.zi when
// there is one, otherwise from the TZif files of its directory tree.
struct ZoneInfoIndex
{
    // Names with rules of their own, sorted by code point.
    QStringList zones;
    // Other names (old or alternative spellings), each with the name it
    // points to: a zone, another link, or empty when that is not known.
    QHash<QString, QString> links;

    bool contains(const QString &name) const;
    bool isEmpty() const { return zones.isEmpty() && links.isEmpty(); }

    // Empty when the directory holds no database at all.
    static ZoneInfoIndex read(const QString &directory);
};
