#include "ZoneListCodec.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <plist/plist.h>

#include <functional>
#include <memory>

namespace {

const QString stockholmId = QStringLiteral("0F8FAD5B-D9CB-469F-A165-70867728950E");
const QString tokyoId = QStringLiteral("7C9E6679-7425-40DE-944B-E07FC1F90AE7");

QList<SavedZone> sampleZones()
{
    return {
        {QUuid::fromString(stockholmId), QStringLiteral("Europe/Stockholm"), std::nullopt, true},
        {QUuid::fromString(tokyoId), QStringLiteral("Asia/Tokyo"), QStringLiteral(" Tokyo office "),
         false},
        {QUuid::createUuid(), QStringLiteral("America/Sao_Paulo"),
         QStringView(u"S\u00e3o Paulo \u2600 \U0001F30E").toString(), true},
        {QUuid::createUuid(), QStringLiteral("UTC"), QString(), false},
    };
}

// A dictionary as the stored form describes it, built with libplist directly.
plist_t zoneDict(const char *id, const char *identifier, bool pinned)
{
    plist_t dict = plist_new_dict();
    plist_dict_set_item(dict, "id", plist_new_string(id));
    plist_dict_set_item(dict, "identifier", plist_new_string(identifier));
    plist_dict_set_item(dict, "isPinned", plist_new_bool(pinned));
    return dict;
}

QByteArray toBinary(plist_t root)
{
    char *data = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &data, &length);
    QByteArray bytes(data, qsizetype(length));
    plist_to_bin_free(data);
    plist_free(root);
    return bytes;
}

// A list of two good zones, with one change applied to the second dictionary.
QByteArray listWith(const std::function<void(plist_t)> &change)
{
    plist_t root = plist_new_array();
    plist_array_append_item(
        root, zoneDict("0F8FAD5B-D9CB-469F-A165-70867728950E", "Europe/Stockholm", true));
    plist_t second = zoneDict("7C9E6679-7425-40DE-944B-E07FC1F90AE7", "Asia/Tokyo", false);
    change(second);
    plist_array_append_item(root, second);
    return toBinary(root);
}

QByteArray listWithId(const char *id)
{
    return listWith([id](plist_t dict) { plist_dict_set_item(dict, "id", plist_new_string(id)); });
}

QByteArray bigEndian(quint64 value, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = size - 1; i >= 0; --i, value >>= 8)
        bytes[i] = char(value & 0xFF);
    return bytes;
}

// A binary property list put together by hand, object 0 the root, with
// four-byte offsets and references: shapes libplist would never write.
QByteArray handBuilt(const QList<QByteArray> &objects)
{
    QByteArray data("bplist00");
    QByteArray table;
    for (const QByteArray &object : objects) {
        table += bigEndian(quint64(data.size()), 4);
        data += object;
    }
    const qsizetype tableOffset = data.size();
    return data + table + QByteArray(6, '\0') + char(4) + char(4) +
           bigEndian(quint64(objects.size()), 8) + bigEndian(0, 8) +
           bigEndian(quint64(tableOffset), 8);
}

// A container object: 0xA an array of references, 0xD a dictionary of its
// keys' references followed by its values'. Fewer than 15 entries.
QByteArray container(int kind, const QList<quint32> &references)
{
    const qsizetype count = kind == 0xD ? references.size() / 2 : references.size();
    QByteArray object(1, char((kind << 4) | count));
    for (quint32 reference : references)
        object += bigEndian(reference, 4);
    return object;
}

QByteArray ascii(const QByteArray &text)
{
    return (text.size() < 15 ? QByteArray(1, char(0x50 | text.size()))
                             : QByteArray("\x5F\x10", 2) + char(text.size())) +
           text;
}

// Root array (0) listing the zone dictionary (1) `times` times.
QByteArray zoneListedTimes(int times)
{
    return handBuilt({container(0xA, QList<quint32>(times, 1)), container(0xD, {2, 3, 4, 5, 6, 7}),
                      ascii("id"), ascii("identifier"), ascii("isPinned"),
                      ascii(tokyoId.toLatin1()), ascii("UTC"), QByteArray(1, '\x09')});
}

// Arrays nested 100,000 deep inside the root array, or dictionaries nested
// as deep under one key of a zone: what once overflowed the stack.
QByteArray nestedDeep(int kind)
{
    constexpr int depth = 100000;
    QList<QByteArray> objects{container(0xA, {2}), ascii("k")};
    for (quint32 i = 2; i < depth + 2; ++i)
        objects.append(i + 1 < depth + 2 ? container(kind, kind == 0xD ? QList<quint32>{1, i + 1}
                                                                       : QList<quint32>{i + 1})
                                         : container(kind, {}));
    return handBuilt(objects);
}

} // namespace

class TestZoneListCodec final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrip();
    void acceptsValidVariants_data();
    void acceptsValidVariants();
    void rejectsInvalidData_data();
    void rejectsInvalidData();
    void textWithNulIsNotEncoded();
    void pythonReadsOurBytes();
    void readsPlistlibFixture();
    void survivesDamagedInput();
    void handBuiltShapes_data();
    void handBuiltShapes();
};

void TestZoneListCodec::roundTrip()
{
    const QList<SavedZone> zones = sampleZones();
    const std::optional<QByteArray> bytes = ZoneListCodec::encode(zones);
    QVERIFY(bytes);
    QVERIFY(bytes->startsWith("bplist00"));
    QCOMPARE(ZoneListCodec::decode(*bytes), std::optional(zones));

    const std::optional<QByteArray> empty = ZoneListCodec::encode({});
    QVERIFY(empty);
    QCOMPARE(ZoneListCodec::decode(*empty), std::optional(QList<SavedZone>()));
}

void TestZoneListCodec::acceptsValidVariants_data()
{
    QTest::addColumn<QByteArray>("bytes"); // Tokyo's id and zone as the second element
    QTest::newRow("mixed-case uuid") << listWithId("7c9E6679-7425-40De-944b-E07fc1f90ae7");
    QTest::newRow("unknown key ignored") << listWith(
        [](plist_t dict) { plist_dict_set_item(dict, "population", plist_new_uint(37400000)); });
}

void TestZoneListCodec::acceptsValidVariants()
{
    QFETCH(QByteArray, bytes);
    const std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(bytes);
    QVERIFY(zones);
    QCOMPARE(zones->size(), 2);
    QCOMPARE(zones->at(1).id, QUuid::fromString(tokyoId));
    QCOMPARE(zones->at(1).identifier, QStringLiteral("Asia/Tokyo"));
}

void TestZoneListCodec::rejectsInvalidData_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("not a plist") << QByteArray("hello, world");
    QTest::newRow("magic only") << QByteArray("bplist00");
    {
        plist_t root = plist_new_dict();
        plist_dict_set_item(root, "zones", plist_new_array());
        QTest::newRow("root is a dictionary") << toBinary(root);
    }
    {
        plist_t root = plist_new_array();
        plist_array_append_item(
            root, zoneDict("0F8FAD5B-D9CB-469F-A165-70867728950E", "Europe/Stockholm", true));
        plist_array_append_item(root, plist_new_string("Asia/Tokyo"));
        QTest::newRow("element is a string") << toBinary(root);
    }
    {
        plist_t root = plist_new_array();
        plist_array_append_item(
            root, zoneDict("0F8FAD5B-D9CB-469F-A165-70867728950E", "Europe/Stockholm", true));
        char *xml = nullptr;
        uint32_t length = 0;
        plist_to_xml(root, &xml, &length);
        QTest::newRow("xml property list") << QByteArray(xml, qsizetype(length));
        plist_to_xml_free(xml);
        plist_free(root);
    }
    const auto without = [](const char *key) {
        return listWith([key](plist_t dict) { plist_dict_remove_item(dict, key); });
    };
    QTest::newRow("missing id") << without("id");
    QTest::newRow("missing identifier") << without("identifier");
    QTest::newRow("missing isPinned") << without("isPinned");
    const auto retyped = [](const char *key, plist_t value) {
        return listWith([key, value](plist_t dict) { plist_dict_set_item(dict, key, value); });
    };
    QTest::newRow("id as integer") << retyped("id", plist_new_uint(7));
    QTest::newRow("id as data") << retyped("id", plist_new_data("0F8FAD5B", 8));
    QTest::newRow("identifier as bool") << retyped("identifier", plist_new_bool(true));
    QTest::newRow("isPinned as integer") << retyped("isPinned", plist_new_uint(1));
    QTest::newRow("isPinned as text") << retyped("isPinned", plist_new_string("true"));
    QTest::newRow("customLabel as integer") << retyped("customLabel", plist_new_uint(3));
    QTest::newRow("customLabel as array") << retyped("customLabel", plist_new_array());

    QTest::newRow("uuid in braces") << listWithId("{7C9E6679-7425-40DE-944B-E07FC1F90AE7}");
    QTest::newRow("uuid too short") << listWithId("7C9E6679-7425-40DE-944B-E07FC1F90AE");
    QTest::newRow("uuid too long") << listWithId("7C9E6679-7425-40DE-944B-E07FC1F90AE77");
    QTest::newRow("uuid not hex") << listWithId("7C9E6679-7425-40DE-944B-E07FC1F90AEG");
    QTest::newRow("uuid dash moved") << listWithId("7C9E667-97425-40DE-944B-E07FC1F90AE7");
    QTest::newRow("uuid padded") << listWithId(" 7C9E6679-7425-40DE-944B-E07FC1F90AE7");
    QTest::newRow("uuid empty") << listWithId("");
}

void TestZoneListCodec::rejectsInvalidData()
{
    QFETCH(QByteArray, bytes);
    QCOMPARE(ZoneListCodec::decode(bytes), std::nullopt);
}

void TestZoneListCodec::textWithNulIsNotEncoded()
{
    QList<SavedZone> zones = sampleZones();
    zones[1].customLabel = QStringLiteral("Tokyo") + QChar(u'\0') + QStringLiteral("office");
    QCOMPARE(ZoneListCodec::encode(zones), std::nullopt);
}

void TestZoneListCodec::pythonReadsOurBytes()
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        QSKIP("python3 is not installed: the independent plistlib check is skipped");

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QFile file(dir.filePath(QStringLiteral("zones.bplist")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QList<SavedZone> zones = sampleZones();
    file.write(*ZoneListCodec::encode(zones));
    file.close();

    // plistlib returns bool for booleans and str for strings; print exact types.
    const QString script =
        QStringLiteral("import json, plistlib, sys\n"
                       "data = open(sys.argv[1], 'rb').read()\n"
                       "assert data.startswith(b'bplist00')\n"
                       "root = plistlib.loads(data, fmt=plistlib.FMT_BINARY)\n"
                       "out = [{k: [type(v).__name__, v] for k, v in d.items()} for d in root]\n"
                       "print(json.dumps(out))\n");
    QProcess process;
    process.start(python, {QStringLiteral("-c"), script, file.fileName()});
    QVERIFY(process.waitForFinished(30000));
    QCOMPARE(process.exitCode(), 0);
    const QJsonArray dicts = QJsonDocument::fromJson(process.readAllStandardOutput()).array();
    QCOMPARE(dicts.size(), zones.size());

    for (qsizetype i = 0; i < zones.size(); ++i) {
        const QJsonObject dict = dicts.at(i).toObject();
        const SavedZone &zone = zones.at(i);
        QStringList expectedKeys{QStringLiteral("id"), QStringLiteral("identifier"),
                                 QStringLiteral("isPinned")};
        if (zone.customLabel)
            expectedKeys.append(QStringLiteral("customLabel"));
        QStringList keys = dict.keys();
        keys.sort();
        expectedKeys.sort();
        QCOMPARE(keys, expectedKeys);
        const auto typed = [&](const char *key) {
            return dict.value(QLatin1String(key)).toArray();
        };
        QCOMPARE(typed("id").at(0).toString(), QStringLiteral("str"));
        QCOMPARE(typed("id").at(1).toString(), zone.id.toString(QUuid::WithoutBraces).toUpper());
        QCOMPARE(typed("identifier").at(1).toString(), zone.identifier);
        QCOMPARE(typed("isPinned").at(0).toString(), QStringLiteral("bool"));
        QCOMPARE(typed("isPinned").at(1).toBool(), zone.isPinned);
        if (zone.customLabel)
            QCOMPARE(typed("customLabel").at(1).toString(), *zone.customLabel);
    }
}

void TestZoneListCodec::readsPlistlibFixture()
{
    QFile file(QStringLiteral(ZONARA_TEST_DATA_DIR "/model/plistlib-zones.bplist"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(file.readAll());
    QVERIFY(zones);
    const QList<SavedZone> expected{
        {QUuid::fromString(stockholmId), QStringLiteral("Europe/Stockholm"), std::nullopt, true},
        {QUuid::fromString(tokyoId), QStringLiteral("Asia/Tokyo"), QStringLiteral("Tokyo office"),
         false},
        {QUuid::fromString(u"16FD2706-8BAF-433B-82EB-8C7FADA847DA"),
         QStringLiteral("America/Sao_Paulo"), QStringView(u" S\u00e3o Paulo \u2600 ").toString(),
         true},
    };
    QCOMPARE(*zones, expected);
}

void TestZoneListCodec::survivesDamagedInput()
{
    const QList<SavedZone> zones = sampleZones();
    const QByteArray valid = *ZoneListCodec::encode(zones);

    // A binary property list ends in a trailer: no proper prefix of ours is valid.
    for (qsizetype length = 0; length < valid.size(); ++length)
        QVERIFY2(!ZoneListCodec::decode(valid.first(length)), qPrintable(QString::number(length)));

    QList<QByteArray> variants;
    for (qsizetype i = 0; i < valid.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            QByteArray flipped = valid;
            flipped[i] = char(flipped[i] ^ (1 << bit));
            variants.append(flipped);
        }
        // Re-typed: every object marker (high nibble) the format knows.
        for (int marker = 0; marker < 16; ++marker) {
            QByteArray retyped = valid;
            retyped[i] = char((marker << 4) | (retyped[i] & 0x0F));
            variants.append(retyped);
        }
    }

    int accepted = 0;
    for (const QByteArray &bytes : std::as_const(variants)) {
        const std::optional<QList<SavedZone>> result = ZoneListCodec::decode(bytes);
        if (!result)
            continue;
        ++accepted;
        // Whatever was accepted is a complete, well-formed list: it writes back
        // and reads again as exactly the same list.
        const std::optional<QByteArray> again = ZoneListCodec::encode(*result);
        QVERIFY(again);
        QCOMPARE(ZoneListCodec::decode(*again), result);
    }
    QVERIFY(variants.size() > 5000);
    // Flips inside the texts keep the list readable; flips in the structure don't.
    QVERIFY(accepted > 0);
    QVERIFY(accepted < variants.size());
}

void TestZoneListCodec::handBuiltShapes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("count"); // -1: refused
    QTest::newRow("zone listed once") << zoneListedTimes(1) << 1;
    // libplist would copy it per listing: a few bytes could fill memory.
    QTest::newRow("same dictionary twice") << zoneListedTimes(2) << -1;
    QTest::newRow("arrays 100,000 deep") << nestedDeep(0xA) << -1;
    QTest::newRow("dictionaries 100,000 deep") << nestedDeep(0xD) << -1;
    QTest::newRow("nested value in a zone") << listWith([](plist_t dict) {
        plist_t inner = plist_new_array();
        plist_array_append_item(inner, plist_new_array());
        plist_dict_set_item(dict, "population", inner);
    }) << -1;
    QList<SavedZone> many;
    for (int i = 0; i < 140; ++i)
        many.append({QUuid::createUuid(), QStringLiteral("UTC"),
                     QString(8000, QChar(u'a' + i % 26)), false});
    QTest::newRow("over a megabyte") << *ZoneListCodec::encode(many) << -1;
}

void TestZoneListCodec::handBuiltShapes()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, count);
    const std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(bytes);
    QCOMPARE(zones ? int(zones->size()) : -1, count);
}

QTEST_GUILESS_MAIN(TestZoneListCodec)
#include "tst_zonelistcodec.moc"
