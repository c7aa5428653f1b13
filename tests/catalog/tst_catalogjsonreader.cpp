#include "CatalogJsonReader.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTest>

namespace {

// What the catalogue's rules give when read through QJsonDocument. It is more
// lenient than JSON (control characters, unknown escapes), so it is a
// reference for well-formed text only.
std::optional<QList<CityEntry>> throughJsonDocument(const QByteArray &json,
                                                    CityOtherNames *otherNames = nullptr)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isArray())
        return std::nullopt;
    QList<CityEntry> cities;
    for (const QJsonValue &element : document.array()) {
        const QJsonObject object = element.toObject();
        const QJsonValue name = object.value(QStringLiteral("name"));
        const QJsonValue identifier = object.value(QStringLiteral("identifier"));
        const QJsonValue country = object.value(QStringLiteral("country"));
        if (!element.isObject() || !name.isString() || !identifier.isString() ||
            !country.isString())
            return std::nullopt;
        const QJsonValue names = object.value(QStringLiteral("otherNames"));
        for (const QJsonValue &other : names.toArray()) {
            if (otherNames && other.isString())
                otherNames->append(cities.size(), other.toString());
        }
        cities.append({name.toString(), identifier.toString(), country.toString()});
    }
    return cities;
}

const QByteArray stockholm =
    R"({"name":"Stockholm","identifier":"Europe/Stockholm","country":"Sweden"})";

// A list of one city with the given JSON text as its name, then more members.
QByteArray city(const QByteArray &name, const QByteArray &more = {})
{
    return R"([{"name":)" + name + R"(,"identifier":"UTC","country":"C")" + more + "}]";
}

} // namespace

class TestCatalogJsonReader final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsStrictJson_data();
    void readsStrictJson();
    void agreesOnDamagedCatalogue();
    void readsTheShippedCatalogue();
};

void TestCatalogJsonReader::readsStrictJson_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("expectedCount"); // -1: unreadable

    QTest::newRow("white space around") << QByteArray(" \n\t[ \r\n ] \n") << 0;
    QTest::newRow("one city") << "[" + stockholm + "]" << 1;
    QTest::newRow("members in any order")
        << QByteArray(R"([{"country":"Japan","name":"Tokyo","identifier":"Asia/Tokyo"}])") << 1;
    QTest::newRow("extra members of every kind")
        << city(R"("A")",
                R"(,"population":-1.5e+3,"alt":["x",{"y":[null,true,false,0,12,3.25E-2]}],"z":{})")
        << 1;
    QTest::newRow("escapes")
        << QByteArray(
               R"([{"name":"Qu\u00e9bec \"QC\"\\\/\t","identifier":"America/Toronto","country":"Canada"}])")
        << 1;
    QTest::newRow("surrogate pair") << city(R"("\ud83c\udf0e")") << 1;
    QTest::newRow("raw utf-8")
        << QByteArray(
               R"([{"name":"São Paulo","identifier":"America/Sao_Paulo","country":"Brazil"}])")
        << 1;
    QTest::newRow("duplicate key, last wins")
        << QByteArray(R"([{"name":"A","name":"B","identifier":"UTC","country":"C"}])") << 1;
    QTest::newRow("other names")
        << QByteArray(
               R"([{"name":"K\u00f6ln","identifier":"Europe/Berlin","country":"Germany",)"
               R"("otherNames":["Cologne","Koln"]},)" +
               stockholm +
               R"(,{"otherNames":[],"name":"A","identifier":"UTC","country":"B"},)"
               R"({"otherNames":["\"x\"",1,null,["y"],{},"z"],"name":"C","identifier":"UTC",)"
               R"("country":"D"}])")
        << 4;
    QTest::newRow("other names not a list")
        << QByteArray(R"([{"otherNames":"X","name":"A","identifier":"UTC","country":"B"},)"
                      R"({"otherNames":{"a":["b"]},"name":"A","identifier":"UTC","country":"B"}])")
        << 2;
    QTest::newRow("other names twice, last wins")
        << city(R"("A")", R"(,"otherNames":["X"],"otherNames":["Y"])") << 1;
    QTest::newRow("broken other names") << city(R"("A")", R"(,"otherNames":["X",])") << -1;

    QTest::newRow("not json") << QByteArray("hello") << -1;
    QTest::newRow("empty") << QByteArray() << -1;
    QTest::newRow("top level object") << QByteArray(R"({"cities":[]})") << -1;
    QTest::newRow("element not an object") << "[" + stockholm + ",42]" << -1;
    QTest::newRow("missing country") << QByteArray(R"([{"name":"A","identifier":"UTC"}])") << -1;
    QTest::newRow("number as name") << city("1") << -1;
    QTest::newRow("null country") << QByteArray(
                                         R"([{"name":"A","identifier":"UTC","country":null}])")
                                  << -1;
    QTest::newRow("trailing comma") << "[" + stockholm + ",]" << -1;
    QTest::newRow("trailing comma in object") << city(R"("A")", ",") << -1;
    QTest::newRow("text after the array") << "[" + stockholm + "] x" << -1;
    QTest::newRow("two arrays") << QByteArray("[][]") << -1;
    QTest::newRow("unclosed") << "[" + stockholm << -1;
    QTest::newRow("unclosed string") << QByteArray(R"([{"name":"A)") << -1;
    QTest::newRow("control character in string") << city("\"A\tB\"") << -1;
    QTest::newRow("bad escape") << city(R"("\x41")") << -1;
    QTest::newRow("short unicode escape") << city(R"("\u00e")") << -1;
    QTest::newRow("invalid utf-8") << city("\"\xff\xfe\"") << -1;
    QTest::newRow("leading zero") << city(R"("A")", R"(,"n":01)") << -1;
    QTest::newRow("bare dot") << city(R"("A")", R"(,"n":1.)") << -1;
    QTest::newRow("plus sign") << city(R"("A")", R"(,"n":+1)") << -1;
    QTest::newRow("single quotes")
        << QByteArray(R"([{'name':"A","identifier":"UTC","country":"C"}])") << -1;
    QTest::newRow("truncated literal") << city(R"("A")", R"(,"t":tru)") << -1;
    QTest::newRow("missing colon")
        << QByteArray(R"([{"name" "A","identifier":"UTC","country":"C"}])") << -1;
}

void TestCatalogJsonReader::readsStrictJson()
{
    QFETCH(QByteArray, json);
    QFETCH(int, expectedCount);
    CityOtherNames otherNames;
    const std::optional<QList<CityEntry>> read = CatalogJsonReader::read(json, &otherNames);
    QCOMPARE(read ? int(read->size()) : -1, expectedCount);
    QCOMPARE(CatalogJsonReader::read(json), read);
    if (read) {
        CityOtherNames expectedNames;
        QCOMPARE(read, throughJsonDocument(json, &expectedNames));
        QVERIFY(otherNames == expectedNames);
    } else {
        QCOMPARE(otherNames.size(), 0);
    }
}

void TestCatalogJsonReader::agreesOnDamagedCatalogue()
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        QSKIP("python3 is not installed: its strict JSON reader is the reference here");
    QFile file(QStringLiteral(ZONARA_TEST_DATA_DIR "/catalog/cities-sample.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray valid = file.readAll();
    QVERIFY(CatalogJsonReader::read(valid));

    // Damage in every way a byte can be damaged, at a few thousand places.
    QRandomGenerator random(20261123);
    QList<QByteArray> inputs;
    for (int round = 0; round < 4000; ++round) {
        QByteArray damaged = valid;
        const qsizetype at = random.bounded(int(damaged.size()));
        switch (round % 4) {
        case 0:
            damaged.truncate(at);
            break;
        case 1:
            damaged[at] = char(damaged[at] ^ (1 << random.bounded(8)));
            break;
        case 2:
            damaged.remove(at, 1);
            break;
        case 3:
            damaged.insert(at, "{}[],:\"\\ 0tfn"[random.bounded(14)]);
            break;
        }
        inputs.append(damaged);
    }

    // Python's json module is strict JSON; one run reads every input.
    const QString script =
        QStringLiteral("import base64, json, sys\n"
                       "for line in sys.stdin:\n"
                       "    try:\n"
                       "        data = json.loads(base64.b64decode(line).decode('utf-8'))\n"
                       "        keys = ('name', 'identifier', 'country')\n"
                       "        ok = isinstance(data, list) and all(isinstance(e, dict) and\n"
                       "             all(isinstance(e.get(k), str) for k in keys) for e in data)\n"
                       "        print(len(data) if ok else -1)\n"
                       "    except ValueError:\n"
                       "        print(-1)\n");
    QProcess process;
    process.start(python, {QStringLiteral("-c"), script});
    for (const QByteArray &input : std::as_const(inputs))
        process.write(input.toBase64() + '\n');
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished(60000));
    const QList<QByteArray> answers = process.readAllStandardOutput().split('\n');
    QVERIFY(answers.size() >= inputs.size());

    int readable = 0;
    for (qsizetype i = 0; i < inputs.size(); ++i) {
        const std::optional<QList<CityEntry>> read = CatalogJsonReader::read(inputs[i]);
        QVERIFY2((read ? int(read->size()) : -1) == answers[i].toInt(),
                 qPrintable(QString::fromUtf8(inputs[i].left(200))));
        readable += read ? 1 : 0;
    }
    // Both kinds of outcome were exercised.
    QVERIFY(readable > 0);
    QVERIFY(readable < inputs.size());
}

void TestCatalogJsonReader::readsTheShippedCatalogue()
{
    QFile file(QStringLiteral(ZONARA_SOURCE_DIR "/resources/data/cities.json"));
    if (!file.open(QIODevice::ReadOnly))
        QSKIP("the shipped catalogue is not in this tree");
    const QByteArray json = file.readAll();
    CityOtherNames otherNames;
    const std::optional<QList<CityEntry>> read = CatalogJsonReader::read(json, &otherNames);
    QVERIFY(read);
    QVERIFY(read->size() > 20000);
    CityOtherNames expectedNames;
    QCOMPARE(read, throughJsonDocument(json, &expectedNames));
    QVERIFY(otherNames.size() > 1000);
    QVERIFY(otherNames == expectedNames);
}

QTEST_GUILESS_MAIN(TestCatalogJsonReader)
#include "tst_catalogjsonreader.moc"
