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

struct Catalogue
{
    QList<CityEntry> cities;
    CityOtherNames otherNames;
};

const Catalogue &sharedCatalogue()
{
    static const Catalogue catalogue = [] {
        Catalogue read;
        read.cities = CityCatalog::load(CityCatalog::fileName(), &read.otherNames);
        return read;
    }();
    return catalogue;
}

} // namespace

namespace CityCatalog {

QString fileName()
{
    const QString explicitFile = qEnvironmentVariable(fileVariable);
    if (!explicitFile.isEmpty())
        return explicitFile;
    // Programs live in bin/ and in libexec/zonara/; the build tree has all in bin/.
    const QString directory = executableDirectory();
    const QString besideBin = QDir::cleanPath(directory + u"/../share/zonara/cities.json");
    const QString besideLibexec = QDir::cleanPath(directory + u"/../../share/zonara/cities.json");
    return QFileInfo::exists(besideBin) || !QFileInfo::exists(besideLibexec) ? besideBin
                                                                            : besideLibexec;
}

const QList<CityEntry> &shared()
{
    return sharedCatalogue().cities;
}

const CityOtherNames &sharedOtherNames()
{
    return sharedCatalogue().otherNames;
}

const FoldedCities &sharedFolded()
{
    static const FoldedCities folded(shared(), sharedOtherNames());
    return folded;
}

QList<CityEntry> load(const QString &fileName, CityOtherNames *otherNames)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    // Mapping spares a copy of the whole file; the decoded text does not
    // refer back to it.
    if (const uchar *mapped = file.map(0, file.size())) {
        return decode(QByteArray::fromRawData(reinterpret_cast<const char *>(mapped), file.size()),
                      otherNames);
    }
    return decode(file.readAll(), otherNames);
}

QList<CityEntry> decode(const QByteArray &json, CityOtherNames *otherNames)
{
    std::optional<QList<CityEntry>> cities = CatalogJsonReader::read(json, otherNames);
    if (!cities && otherNames)
        *otherNames = {};
    return cities.value_or(QList<CityEntry>());
}

} // namespace CityCatalog
