#include "ZoneInfoIndex.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

// Enough of a TZif header for the magic check; the index never parses further.
const QByteArray tzif = QByteArrayLiteral("TZif2") + QByteArray(39, '\0');

} // namespace

class TestZoneInfoIndex : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsZonesAndLinksFromTzdataZi();
    void walksTzifFilesWithoutTzdataZi();
};

void TestZoneInfoIndex::readsZonesAndLinksFromTzdataZi()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QVERIFY(writeFile(dir.filePath("tzdata.zi"), "# version test\n"
                                                 "R U 1918 1919 - Mar lastSu 2 1 D\n"
                                                 "Z Europe/Kyiv 2:2:4 - LMT 1880\n"
                                                 "2 E EE%sT\n"
                                                 "Z America/New_York -4:56:2 - LMT 1883 N 18 17u\n"
                                                 "-5 U E%sT\n"
                                                 "L Europe/Kyiv Europe/Kiev\n"
                                                 "L Etc/UTC UTC\n"
                                                 "Z Etc/UTC 0 - UTC\n"
                                                 "Zebra not-a-zone-line\n"
                                                 "Z  Factory 0 - -00\n"
                                                 // The last line may lack its newline.
                                                 "L Etc/UTC Zulu"));
    // With tzdata.zi present, the tree is not walked.
    QVERIFY(writeFile(dir.filePath("Stray"), tzif));

    const ZoneInfoIndex index = ZoneInfoIndex::read(dir.path());
    QCOMPARE(index.zones, QStringList({"America/New_York", "Etc/UTC", "Europe/Kyiv", "Factory"}));
    QCOMPARE(index.links,
             (QHash<QString, QString>{
                 {"Europe/Kiev", "Europe/Kyiv"}, {"UTC", "Etc/UTC"}, {"Zulu", "Etc/UTC"}}));
    QVERIFY(index.contains("Europe/Kiev") && index.contains("Factory"));
    QVERIFY(!index.contains("europe/kyiv"));
}

void TestZoneInfoIndex::walksTzifFilesWithoutTzdataZi()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QDir root(dir.path());
    for (const char *sub : {"Europe", "Etc", "posix/Europe", "right"})
        QVERIFY(root.mkpath(sub));
    QVERIFY(writeFile(dir.filePath("Europe/Paris"), tzif));
    QVERIFY(writeFile(dir.filePath("Etc/UTC"), tzif));
    QVERIFY(writeFile(dir.filePath("posix/Europe/Paris"), tzif));
    QVERIFY(writeFile(dir.filePath("right/UTC"), tzif));
    QVERIFY(writeFile(dir.filePath("posixrules"), tzif));
    QVERIFY(writeFile(dir.filePath("zone.tab"), "FR\t+4852+00220\tEurope/Paris\n"));
    QVERIFY(writeFile(dir.filePath("Europe/Notes"), "not a zone\n"));
    QVERIFY(QFile::link("Paris", dir.filePath("Europe/Kiev")));
    QVERIFY(QFile::link("Etc/UTC", dir.filePath("UTC")));
    QVERIFY(QFile::link("Etc/UTC", dir.filePath("localtime")));
    // A directory link back to the root must not send the walk round in circles.
    QVERIFY(QFile::link(".", dir.filePath("Loop")));

    const ZoneInfoIndex index = ZoneInfoIndex::read(dir.path());
    QCOMPARE(index.zones, QStringList({"Etc/UTC", "Europe/Paris"}));
    QCOMPARE(index.links,
             (QHash<QString, QString>{{"Europe/Kiev", "Europe/Paris"}, {"UTC", "Etc/UTC"}}));
}

QTEST_GUILESS_MAIN(TestZoneInfoIndex)
#include "tst_zoneinfoindex.moc"
