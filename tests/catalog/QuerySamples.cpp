#include "QuerySamples.h"

#include <QRandomGenerator>

namespace {

QString withoutMarks(const QString &text)
{
    QString stripped;
    for (const QChar c : text.normalized(QString::NormalizationForm_D)) {
        if (!c.isMark())
            stripped.append(c);
    }
    return stripped;
}

QString piece(const QString &text, QRandomGenerator &random)
{
    if (text.isEmpty())
        return text;
    const int start = random.bounded(int(text.size()));
    const int length = 1 + random.bounded(qMin(8, int(text.size()) - start));
    return text.mid(start, length);
}

} // namespace

namespace QuerySamples {

QStringList fromCatalog(const QList<CityEntry> &cities, const QStringList &identifiers, int count,
                        quint32 seed)
{
    QRandomGenerator random(seed);
    QStringList queries;
    if (cities.isEmpty() && identifiers.isEmpty())
        return queries;
    while (queries.size() < count) {
        QString source;
        const int field = random.bounded(4);
        if (field == 3 || cities.isEmpty()) {
            if (identifiers.isEmpty())
                continue;
            source = identifiers[random.bounded(int(identifiers.size()))];
        } else {
            const CityEntry &city = cities[random.bounded(int(cities.size()))];
            source = field == 0 ? city.name : field == 1 ? city.country : city.identifier;
        }
        // Whole texts now and then, so that full names are tried too.
        QString query = random.bounded(5) == 0 ? source : piece(source, random);
        switch (random.bounded(7)) {
        case 0:
            query = query.toUpper();
            break;
        case 1:
            query = query.normalized(QString::NormalizationForm_D);
            break;
        case 2:
            query = query.normalized(QString::NormalizationForm_C);
            break;
        case 3:
            query = u"  " % query % u"\t";
            break;
        case 4:
            query = withoutMarks(query);
            break;
        case 5:
            query = query.left(1);
            break;
        default:
            break;
        }
        queries.append(query);
    }
    return queries;
}

} // namespace QuerySamples
