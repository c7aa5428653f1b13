#include "CityCatalog.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using CityList = QList<CityEntry>;
Q_DECLARE_METATYPE(CityEntry)

namespace {

const QString sampleFile = QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog/cities-sample.json");

// The tests' executables are built into bin/, so the catalogue looked up
// beside it must be <build>/share/zonara/cities.json.
bool isBesideThisTest(const QString &catalogue)
{
    return QFileInfo(catalogue).fileName() == u"cities.json" &&
           QFileInfo::exists(
               QDir::cleanPath(catalogue + u"/../../../bin/" + QStringLiteral(TEST_NAME)));
}

template<typename... Parts> QByteArray joined(const Parts &...parts)
{
    QByteArray result;
    (result.append(parts), ...);
    return result;
}

} // namespace

class TestCatalogFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decode_data();
    void decode();
    void loadSample();
    void fileNameFromEnvironment();
    void fileNameBesideExecutable();
};

void TestCatalogFile::decode_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<CityList>("expected");

    // The reader's own tests cover JSON syntax and what a city keeps; these
    // cover what decode() makes of an accepted and of a refused text.
    const QByteArray osloJson = R"({"name":"Oslo","identifier":"Europe/Oslo","country":"Norway"})";
    const QByteArray bergenJson =
        R"({"name":"Bergen","identifier":"Europe/Oslo","country":"Norway"})";

    QTest::newRow("file order, not sorted")
        << joined("[", osloJson, ",", bergenJson, "]")
        << CityList{{"Oslo", "Europe/Oslo", "Norway"}, {"Bergen", "Europe/Oslo", "Norway"}};
    // One bad element empties the whole catalogue.
    QTest::newRow("missing member among good ones")
        << joined("[", osloJson, R"(,{"name":"Bergen","identifier":"Europe/Oslo"},)", bergenJson,
                  "]")
        << CityList{};
}

void TestCatalogFile::decode()
{
    QFETCH(QByteArray, json);
    QFETCH(CityList, expected);
    QCOMPARE(CityCatalog::decode(json), expected);
}

void TestCatalogFile::loadSample()
{
    const CityList cities = CityCatalog::load(sampleFile);
    QCOMPARE(cities.size(), 40);
    // The first element carries an extra "population" member.
    QCOMPARE(cities.first(), (CityEntry{"Stockholm", "Europe/Stockholm", "Sweden"}));
    QCOMPARE(cities.first().id(), u"Stockholm|Europe/Stockholm|Sweden");
    // Decomposed text in the file stays decomposed.
    QCOMPARE(cities.at(2).name, QStringView(u"Malmo\u0308").toString());
    QCOMPARE(cities.last(), (CityEntry{"Kathmandu", "Asia/Kathmandu", "Nepal"}));
    // What cannot be read as a file loads as no cities.
    QVERIFY(CityCatalog::load(QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog")).isEmpty());
}

void TestCatalogFile::fileNameFromEnvironment()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString copy = dir.filePath(QStringLiteral("elsewhere.json"));
    QVERIFY(QFile::copy(sampleFile, copy));

    qputenv(CityCatalog::fileVariable, QFile::encodeName(copy));
    const QString chosen = CityCatalog::fileName();
    qunsetenv(CityCatalog::fileVariable);
    QCOMPARE(chosen, copy);
    QCOMPARE(CityCatalog::load(chosen), CityCatalog::load(sampleFile));

    // Set but empty counts as not set.
    qputenv(CityCatalog::fileVariable, QByteArray());
    const QString fallback = CityCatalog::fileName();
    qunsetenv(CityCatalog::fileVariable);
    QVERIFY2(isBesideThisTest(fallback), qPrintable(fallback));
}

void TestCatalogFile::fileNameBesideExecutable()
{
    qunsetenv(CityCatalog::fileVariable);
    QVERIFY(!QCoreApplication::instance());
    const QString withoutApplication = CityCatalog::fileName();
    QVERIFY2(isBesideThisTest(withoutApplication), qPrintable(withoutApplication));

    int argc = 1;
    char name[] = TEST_NAME;
    char *argv[] = {name, nullptr};
    QCoreApplication application(argc, argv);
    QCOMPARE(CityCatalog::fileName(), withoutApplication);
}

QTEST_APPLESS_MAIN(TestCatalogFile)
#include "tst_catalogfile.moc"
