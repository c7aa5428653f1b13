#include "CityOtherNames.h"

void CityOtherNames::append(qsizetype city, QStringView name)
{
    Q_ASSERT(m_city.isEmpty() || m_city.constLast() <= city);
    m_text.append(name);
    m_starts.append(qint32(m_text.size()));
    m_city.append(qint32(city));
}

void CityOtherNames::squeeze()
{
    m_text.squeeze();
    m_starts.squeeze();
    m_city.squeeze();
}

QStringView CityOtherNames::name(qsizetype index) const
{
    return QStringView(m_text).sliced(m_starts[index], m_starts[index + 1] - m_starts[index]);
}
