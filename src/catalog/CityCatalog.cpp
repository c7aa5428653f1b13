#include "CityCatalog.h"

#include "FoldedCities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace {

QString executableDirectory()
{
    // The catalogue may be needed before (or without) a QCoreApplication.
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QFileInfo(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath()).path();
}

} // namespace

namespace CityCatalog {

QString fileName()
{
    const QString explicitFile = qEnvironmentVariable(fileVariable);
    if (!explicitFile.isEmpty())
        return explicitFile;
    return QDir::cleanPath(executableDirectory() + u"/../share/zonara/cities.json");
}

const QList<CityEntry> &shared()
{
    static const QList<CityEntry> cities = load(fileName());
    return cities;
}

const FoldedCities &sharedFolded()
{
    static const FoldedCities folded(shared());
    return folded;
}

QList<CityEntry> load(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // Mapping spares a copy of the whole file; the decoded text does not
    // refer back to it.
    if (const uchar *mapped = file.map(0, file.size())) {
        return decode(QByteArray::fromRawData(reinterpret_cast<const char *>(mapped), file.size()));
    }
    return decode(file.readAll());
}

QList<CityEntry> decode(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray())
        return {};

    // Identifiers and countries repeat across thousands of cities; sharing
    // one copy of each keeps the resident catalogue much smaller.
    QSet<QString> pool;
    const auto pooled = [&pool](const QJsonValue &value) {
        const QString text = value.toString();
        const auto known = pool.constFind(text);
        return known != pool.cend() ? *known : *pool.insert(text);
    };

    const QJsonArray array = document.array();
    QList<CityEntry> cities;
    cities.reserve(array.size());
    for (const QJsonValue &element : array) {
        if (!element.isObject())
            return {};
        const QJsonObject object = element.toObject();
        const QJsonValue name = object.value(QLatin1StringView("name"));
        const QJsonValue identifier = object.value(QLatin1StringView("identifier"));
        const QJsonValue country = object.value(QLatin1StringView("country"));
        if (!name.isString() || !identifier.isString() || !country.isString())
            return {};
        cities.append({name.toString(), pooled(identifier), pooled(country)});
    }
    return cities;
}

} // namespace CityCatalog
