#include "SettingsPreferencesStore.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString formatKey = QStringLiteral("zonara.format");
const QString zonesKey = QStringLiteral("zonara.zones");

} // namespace

class TestSettingsPreferences final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void defaultFileFollowsXdgConfigHome();
    void valuesSurvive_data();
    void valuesSurvive();
    void kindsDoNotMix();
    void seesOtherWriters();
    void damagedFileIsKeptAside_data();
    void damagedFileIsKeptAside();
    void onlyRegularFilesAreReplaced_data();
    void onlyRegularFilesAreReplaced();
    void linkToOwnFileIsWrittenThrough();
    void unchangedValuesLeaveTheFile();
    void oversizedWriteIsRefused();

private:
    std::unique_ptr<QTemporaryDir> m_dir; // fresh for each test
    QString m_file;                       // the settings file in it
};

void TestSettingsPreferences::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_file = m_dir->filePath(QStringLiteral("zonara.conf"));
}

void TestSettingsPreferences::defaultFileFollowsXdgConfigHome()
{
    qputenv("XDG_CONFIG_HOME", m_dir->path().toLocal8Bit());
    {
        SettingsPreferencesStore preferences;
        QCOMPARE(preferences.fileName(), m_dir->filePath(QStringLiteral("zonara/zonara.conf")));
        preferences.writeBool(QStringLiteral("zonara.seeded"), true);
    }
    // Written at once, not on destruction only.
    QVERIFY(QFile::exists(m_dir->filePath(QStringLiteral("zonara/zonara.conf"))));
}

void TestSettingsPreferences::valuesSurvive_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QByteArray binary;
    for (int i = 0; i < 256; ++i)
        binary.append(char(i));
    QTest::newRow("every byte") << binary << "labelTime24";
    QTest::newRow("plist header") << QByteArray("bplist00\0\x01\x02", 11) << "labelDayTime24";
    QTest::newRow("empty") << QByteArray() << "";
    QTest::newRow("ini syntax in text") << QByteArray("=;[]") << "a=b; [section] \\n \"quoted\"";
    QTest::newRow("unicode text") << QByteArray("x")
                                  << QStringView(u"S\u00e3o Paulo \U0001F30E").toString();
}

void TestSettingsPreferences::valuesSurvive()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    {
        SettingsPreferencesStore preferences(m_file);
        preferences.writeBytes(zonesKey, bytes);
        preferences.writeText(formatKey, text);
        preferences.writeBool(QStringLiteral("zonara.seeded"), true);
    }
    const SettingsPreferencesStore reread(m_file);
    QCOMPARE(reread.readBytes(zonesKey), std::optional(bytes));
    QCOMPARE(reread.readText(formatKey), std::optional(text));
    QVERIFY(reread.readBool(QStringLiteral("zonara.seeded")));
}

void TestSettingsPreferences::kindsDoNotMix()
{
    SettingsPreferencesStore preferences(m_file);
    preferences.writeBytes(QStringLiteral("bytes"), QByteArray("abc"));
    preferences.writeText(QStringLiteral("text"), QStringLiteral("abc"));
    QCOMPARE(preferences.readText(QStringLiteral("bytes")), std::nullopt);
    QCOMPARE(preferences.readBytes(QStringLiteral("text")), std::nullopt);
    QCOMPARE(preferences.readBytes(QStringLiteral("absent")), std::nullopt);
    QCOMPARE(preferences.readText(QStringLiteral("absent")), std::nullopt);
    QVERIFY(!preferences.readBool(QStringLiteral("absent")));
    QVERIFY(!preferences.readBool(QStringLiteral("text")));
    preferences.writeBool(QStringLiteral("flag"), false);
    QVERIFY(!preferences.readBool(QStringLiteral("flag")));
}

void TestSettingsPreferences::seesOtherWriters()
{
    SettingsPreferencesStore first(m_file);
    SettingsPreferencesStore second(m_file);
    first.writeText(formatKey, QStringLiteral("labelTime12"));
    QCOMPARE(second.readText(formatKey), std::optional(QStringLiteral("labelTime12")));
    second.writeText(formatKey, QStringLiteral("timeOnly24"));
    QCOMPARE(first.readText(formatKey), std::optional(QStringLiteral("timeOnly24")));
}

void TestSettingsPreferences::damagedFileIsKeptAside_data()
{
    QTest::addColumn<QByteArray>("damaged");
    // QSettings would decode these through QDataStream, recursing once per
    // level: 100,000 nested lists overflow the stack.
    QByteArray nested;
    for (int i = 0; i < 100000; ++i)
        nested += QByteArray("\\0\\0\\0\\t\\0\\0\\0\\0\\x1"); // a list of one variant
    QTest::newRow("deep variant") << "[General]\nzonara.format=@Variant(" + nested + ")\n";
    QTest::newRow("deep variant, escaped @")
        << "[General]\nzonara.format=\\x40Variant(" + nested + ")\n";
    QTest::newRow("too large") << "[General]\nx=" +
                                      QByteArray(SettingsPreferencesStore::maximumFileSize, 'a');
}

void TestSettingsPreferences::damagedFileIsKeptAside()
{
    QFETCH(QByteArray, damaged);
    for (int copy = 0; copy < 4; ++copy) {
        QFile out(m_file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(damaged);
        out.close();
        SettingsPreferencesStore preferences(m_file);
        QCOMPARE(preferences.readText(formatKey), std::nullopt);
        preferences.writeText(formatKey, QStringLiteral("timeOnly24"));
        QCOMPARE(preferences.readText(formatKey), std::optional(QStringLiteral("timeOnly24")));
        QFile kept(preferences.keptCopy());
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), damaged);
        QTest::qWait(20); // the oldest is told by its time
    }
    QCOMPARE(QDir(m_dir->path()).entryList({QStringLiteral("zonara.conf.unreadable-*")}).size(), 3);
}

void TestSettingsPreferences::onlyRegularFilesAreReplaced_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("fifo") << "fifo";
    QTest::newRow("directory") << "directory";
    QTest::newRow("link to a fifo") << "link to fifo";
    QTest::newRow("dangling link") << "dangling link";
    // A link must not choose what gets overwritten, even for root.
    QTest::newRow("link to another's file") << "link to foreign";
}

void TestSettingsPreferences::onlyRegularFilesAreReplaced()
{
    QFETCH(QString, kind);
    const QString other = m_dir->filePath(QStringLiteral("other"));
    const QByteArray otherBytes("[General]\nsecret=1\n");
    if (kind == u"fifo") {
        QCOMPARE(::mkfifo(QFile::encodeName(m_file).constData(), 0600), 0);
    } else if (kind == u"directory") {
        QVERIFY(QDir().mkpath(m_file));
    } else {
        if (kind == u"link to fifo") {
            QCOMPARE(::mkfifo(QFile::encodeName(other).constData(), 0600), 0);
        } else if (kind == u"link to foreign") {
            QFile out(other);
            QVERIFY(out.open(QIODevice::WriteOnly));
            out.write(otherBytes);
            out.close();
            if (::geteuid() != 0)
                QSKIP("needs root to give the file to another user");
            QCOMPARE(::chown(QFile::encodeName(other).constData(), 65534, 65534), 0);
        }
        QVERIFY(QFile::link(other, m_file));
    }
    const QFileInfo before(m_file);

    // Neither reading nor writing may block on a FIFO nobody writes to.
    QElapsedTimer elapsed;
    elapsed.start();
    SettingsPreferencesStore preferences(m_file);
    QCOMPARE(preferences.readText(formatKey), std::nullopt);
    QVERIFY(
        !preferences.edit([&] { preferences.writeText(formatKey, QStringLiteral("timeOnly24")); }));
    QVERIFY(elapsed.elapsed() < 5000);
    QVERIFY(preferences.saveError().contains(m_file));

    const QFileInfo after(m_file);
    QCOMPARE(after.isSymLink(), before.isSymLink());
    QCOMPARE(after.isDir(), before.isDir());
    QCOMPARE(after.isFile(), before.isFile());
    if (kind == u"link to foreign") {
        QFile kept(other);
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), otherBytes);
    }
}

void TestSettingsPreferences::linkToOwnFileIsWrittenThrough()
{
    const QString target = m_dir->filePath(QStringLiteral("dotfiles/zonara.conf"));
    QVERIFY(QDir().mkpath(QFileInfo(target).path()));
    {
        SettingsPreferencesStore direct(target);
        direct.writeText(formatKey, QStringLiteral("labelTime12"));
    }
    QVERIFY(QFile::link(target, m_file));

    SettingsPreferencesStore preferences(m_file);
    QCOMPARE(preferences.readText(formatKey), std::optional(QStringLiteral("labelTime12")));
    preferences.writeText(formatKey, QStringLiteral("timeOnly24"));
    QVERIFY(preferences.saveError().isEmpty());
    QVERIFY(QFileInfo(m_file).isSymLink());
    QCOMPARE(SettingsPreferencesStore(target).readText(formatKey),
             std::optional(QStringLiteral("timeOnly24")));
}

void TestSettingsPreferences::unchangedValuesLeaveTheFile()
{
    SettingsPreferencesStore preferences(m_file);
    preferences.writeText(formatKey, QStringLiteral("labelTime12"));
    const auto inode = [&] {
        struct stat status = {};
        return ::stat(QFile::encodeName(m_file).constData(), &status) == 0 ? status.st_ino : 0;
    };
    const auto written = inode();
    QVERIFY(written != 0);
    // The same value again: a replaced file would have a new inode.
    QVERIFY(
        preferences.edit([&] { preferences.writeText(formatKey, QStringLiteral("labelTime12")); }));
    QCOMPARE(inode(), written);
    preferences.writeText(formatKey, QStringLiteral("timeOnly24"));
    QVERIFY(inode() != written);
}

void TestSettingsPreferences::oversizedWriteIsRefused()
{
    SettingsPreferencesStore preferences(m_file);
    preferences.writeText(formatKey, QStringLiteral("labelTime12"));
    QVERIFY(!preferences.edit([&] {
        preferences.writeBytes(zonesKey,
                               QByteArray(SettingsPreferencesStore::maximumFileSize, 'z'));
    }));
    QVERIFY(preferences.saveError().contains(QStringLiteral("KiB")));
    QCOMPARE(SettingsPreferencesStore(m_file).readBytes(zonesKey), std::nullopt);
}

QTEST_GUILESS_MAIN(TestSettingsPreferences)
#include "tst_settingspreferences.moc"
