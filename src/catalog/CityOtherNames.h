#pragma once

#include <QList>
#include <QString>
#include <QStringView>

// The other names cities are searched by (an English name, a plain-ASCII
// spelling, a former name), kept end to end in one buffer: a few thousand
// short names cost one allocation, not one each.
class CityOtherNames final
{
public:
    // Names must be appended in city order.
    void append(qsizetype city, QStringView name);
    // Gives back what appending reserved beyond the names.
    void squeeze();

    qsizetype size() const { return m_city.size(); }
    QStringView name(qsizetype index) const;
    qsizetype city(qsizetype index) const { return m_city[index]; }

    friend bool operator==(const CityOtherNames &a, const CityOtherNames &b) = default;

private:
    QString m_text;
    // Name i is m_text[m_starts[i], m_starts[i + 1]).
    QList<qint32> m_starts{0};
    QList<qint32> m_city;
};
