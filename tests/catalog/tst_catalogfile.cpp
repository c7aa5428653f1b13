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
    void loadUnreadable_data();
    void loadUnreadable();
    void loadEmptyFile();
    void fileNameFromEnvironment();
    void fileNameBesideExecutable();
};

void TestCatalogFile::decode_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<CityList>("expected");

    const CityEntry oslo{"Oslo", "Europe/Oslo", "Norway"};
    const CityEntry bergen{"Bergen", "Europe/Oslo", "Norway"};
    const QByteArray osloJson = R"({"name":"Oslo","identifier":"Europe/Oslo","country":"Norway"})";
    const QByteArray bergenJson =
        R"({"name":"Bergen","identifier":"Europe/Oslo","country":"Norway"})";

    QTest::newRow("two in file order")
        << joined("[", osloJson, ",", bergenJson, "]") << CityList{oslo, bergen};
    QTest::newRow("order kept, not sorted")
        << joined("[", bergenJson, ",", osloJson, "]") << CityList{bergen, oslo};
    QTest::newRow("member order free")
        << QByteArray(R"([{"country":"Norway","name":"Oslo","identifier":"Europe/Oslo"}])")
        << CityList{oslo};
    QTest::newRow("extra members dropped")
        << QByteArray(R"([{"name":"Oslo","population":709037,"identifier":"Europe/Oslo",)"
                      R"("country":"Norway","aliases":["Christiania"]}])")
        << CityList{oslo};
    QTest::newRow("duplicates kept")
        << joined("[", osloJson, ",", osloJson, "]") << CityList{oslo, oslo};
    QTest::newRow("same name and zone, other country")
        << QByteArray(R"([{"name":"Córdoba","identifier":"Europe/Madrid","country":"Spain"},)"
                      R"({"name":"Córdoba","identifier":"Europe/Madrid","country":"Argentina"}])")
        << CityList{{"Córdoba", "Europe/Madrid", "Spain"},
                    {"Córdoba", "Europe/Madrid", "Argentina"}};
    QTest::newRow("escapes decoded")
        << QByteArray(R"([{"name":"Z\u00fcrich","identifier":"Europe/Zurich","country":"CH"}])")
        << CityList{{"Zürich", "Europe/Zurich", "CH"}};
    QTest::newRow("empty strings are strings")
        << QByteArray(R"([{"name":"","identifier":"","country":""}])") << CityList{CityEntry{}};
    QTest::newRow("empty array") << QByteArray("[]") << CityList{};
    QTest::newRow("white space around") << QByteArray(" \n[\n]\n ") << CityList{};

    // One bad element empties the whole catalogue.
    QTest::newRow("missing country among good ones")
        << joined("[", osloJson, R"(,{"name":"Bergen","identifier":"Europe/Oslo"},)", bergenJson,
                  "]")
        << CityList{};
    QTest::newRow("missing name") << joined("[", osloJson,
                                            R"(,{"identifier":"Europe/Oslo","country":"Norway"}])")
                                  << CityList{};
    QTest::newRow("missing identifier")
        << QByteArray(R"([{"name":"Oslo","country":"Norway"}])") << CityList{};
    QTest::newRow("number name")
        << joined("[", osloJson, R"(,{"name":42,"identifier":"Europe/Oslo","country":"Norway"}])")
        << CityList{};
    QTest::newRow("null identifier")
        << QByteArray(R"([{"name":"Oslo","identifier":null,"country":"Norway"}])") << CityList{};
    QTest::newRow("object country")
        << QByteArray(R"([{"name":"Oslo","identifier":"Europe/Oslo","country":{"name":"Norway"}}])")
        << CityList{};
    QTest::newRow("array name")
        << QByteArray(R"([{"name":["Oslo"],"identifier":"Europe/Oslo","country":"Norway"}])")
        << CityList{};
    QTest::newRow("element is a string") << joined("[", osloJson, R"(,"Bergen"])") << CityList{};
    QTest::newRow("element is null") << joined("[", osloJson, ",null]") << CityList{};
    QTest::newRow("element is an array") << joined("[[", osloJson, "]]") << CityList{};
    QTest::newRow("top level object") << joined("{\"cities\":[", osloJson, "]}") << CityList{};
    QTest::newRow("top level element") << osloJson << CityList{};
    QTest::newRow("top level string") << QByteArray(R"("Oslo")") << CityList{};
    QTest::newRow("not json") << QByteArray("name,identifier,country\nOslo,Europe/Oslo,Norway")
                              << CityList{};
    QTest::newRow("truncated") << joined("[", osloJson, ",", bergenJson.left(20)) << CityList{};
    QTest::newRow("trailing garbage") << joined("[", osloJson, "]]") << CityList{};
    QTest::newRow("empty input") << QByteArray() << CityList{};
    QTest::newRow("invalid utf-8")
        << QByteArray("[{\"name\":\"Osl\xff\",\"identifier\":\"Europe/Oslo\",\"country\":\"N\"}]")
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
}

void TestCatalogFile::loadUnreadable_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::newRow("missing file") << QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog/absent.json");
    QTest::newRow("directory") << QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog");
    QTest::newRow("empty name") << QString();
}

void TestCatalogFile::loadUnreadable()
{
    QFETCH(QString, fileName);
    QVERIFY(CityCatalog::load(fileName).isEmpty());
}

void TestCatalogFile::loadEmptyFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QFile empty(dir.filePath(QStringLiteral("cities.json")));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    QVERIFY(CityCatalog::load(empty.fileName()).isEmpty());

    // The same file once it holds a catalogue.
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.write(R"([{"name":"Nuuk","identifier":"America/Nuuk","country":"Greenland"}])");
    empty.close();
    QCOMPARE(CityCatalog::load(empty.fileName()),
             QList<CityEntry>{(CityEntry{"Nuuk", "America/Nuuk", "Greenland"})});
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
