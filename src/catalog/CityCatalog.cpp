#include "CityCatalog.h"

#include "CatalogJsonReader.h"
#include "FoldedCities.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

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
    return CatalogJsonReader::read(json).value_or(QList<CityEntry>());
}

} // namespace CityCatalog
