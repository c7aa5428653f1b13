#include "SettingsPreferencesStore.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

class TestSettingsPreferences final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
    QTemporaryDir m_dir;
};

void TestSettingsPreferences::defaultFileFollowsXdgConfigHome()
{
    QVERIFY(m_dir.isValid());
    qputenv("XDG_CONFIG_HOME", m_dir.path().toLocal8Bit());
    {
        SettingsPreferencesStore preferences;
        QCOMPARE(preferences.fileName(), m_dir.filePath(QStringLiteral("zonara/zonara.conf")));
        preferences.writeBool(QStringLiteral("zonara.seeded"), true);
    }
    // Written at once, not on destruction only.
    QVERIFY(QFile::exists(m_dir.filePath(QStringLiteral("zonara/zonara.conf"))));
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
    const QString file = m_dir.filePath(QStringLiteral("values.conf"));
    QFile::remove(file);
    {
        SettingsPreferencesStore preferences(file);
        preferences.writeBytes(QStringLiteral("zonara.zones"), bytes);
        preferences.writeText(QStringLiteral("zonara.format"), text);
        preferences.writeBool(QStringLiteral("zonara.seeded"), true);
    }
    const SettingsPreferencesStore reread(file);
    QCOMPARE(reread.readBytes(QStringLiteral("zonara.zones")), std::optional(bytes));
    QCOMPARE(reread.readText(QStringLiteral("zonara.format")), std::optional(text));
    QVERIFY(reread.readBool(QStringLiteral("zonara.seeded")));
}

void TestSettingsPreferences::kindsDoNotMix()
{
    const QString file = m_dir.filePath(QStringLiteral("kinds.conf"));
    SettingsPreferencesStore preferences(file);
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
    const QString file = m_dir.filePath(QStringLiteral("shared.conf"));
    SettingsPreferencesStore first(file);
    SettingsPreferencesStore second(file);
    first.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
    QCOMPARE(second.readText(QStringLiteral("zonara.format")),
             std::optional(QStringLiteral("labelTime12")));
    second.writeText(QStringLiteral("zonara.format"), QStringLiteral("timeOnly24"));
    QCOMPARE(first.readText(QStringLiteral("zonara.format")),
             std::optional(QStringLiteral("timeOnly24")));
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
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    for (int copy = 0; copy < 4; ++copy) {
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(damaged);
        out.close();
        SettingsPreferencesStore preferences(file);
        QCOMPARE(preferences.readText(QStringLiteral("zonara.format")), std::nullopt);
        preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("timeOnly24"));
        QCOMPARE(preferences.readText(QStringLiteral("zonara.format")),
                 std::optional(QStringLiteral("timeOnly24")));
        QFile kept(preferences.keptCopy());
        QVERIFY(kept.open(QIODevice::ReadOnly));
        QCOMPARE(kept.readAll(), damaged);
        QTest::qWait(20); // the oldest is told by its time
    }
    QCOMPARE(QDir(dir.path()).entryList({QStringLiteral("zonara.conf.unreadable-*")}).size(), 3);
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
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    const QString other = dir.filePath(QStringLiteral("other"));
    const QByteArray otherBytes("[General]\nsecret=1\n");
    if (kind == u"fifo") {
        QCOMPARE(::mkfifo(QFile::encodeName(file).constData(), 0600), 0);
    } else if (kind == u"directory") {
        QVERIFY(QDir().mkpath(file));
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
        QVERIFY(QFile::link(other, file));
    }
    const QFileInfo before(file);

    // Neither reading nor writing may block on a FIFO nobody writes to.
    QElapsedTimer elapsed;
    elapsed.start();
    SettingsPreferencesStore preferences(file);
    QCOMPARE(preferences.readText(QStringLiteral("zonara.format")), std::nullopt);
    QVERIFY(!preferences.edit([&] {
        preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("timeOnly24"));
    }));
    QVERIFY(elapsed.elapsed() < 5000);
    QVERIFY(preferences.saveError().contains(file));

    const QFileInfo after(file);
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
    QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("dotfiles/zonara.conf"));
    const QString link = dir.filePath(QStringLiteral("zonara.conf"));
    QVERIFY(QDir().mkpath(QFileInfo(target).path()));
    {
        SettingsPreferencesStore direct(target);
        direct.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
    }
    QVERIFY(QFile::link(target, link));

    SettingsPreferencesStore preferences(link);
    QCOMPARE(preferences.readText(QStringLiteral("zonara.format")),
             std::optional(QStringLiteral("labelTime12")));
    preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("timeOnly24"));
    QVERIFY(preferences.saveError().isEmpty());
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(SettingsPreferencesStore(target).readText(QStringLiteral("zonara.format")),
             std::optional(QStringLiteral("timeOnly24")));
}

void TestSettingsPreferences::unchangedValuesLeaveTheFile()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    SettingsPreferencesStore preferences(file);
    preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
    const auto inode = [&] {
        struct stat status = {};
        return ::stat(QFile::encodeName(file).constData(), &status) == 0 ? status.st_ino : 0;
    };
    const auto written = inode();
    QVERIFY(written != 0);
    // The same value again: a replaced file would have a new inode.
    QVERIFY(preferences.edit([&] {
        preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
    }));
    QCOMPARE(inode(), written);
    preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("timeOnly24"));
    QVERIFY(inode() != written);
}

void TestSettingsPreferences::oversizedWriteIsRefused()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("zonara.conf"));
    SettingsPreferencesStore preferences(file);
    preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
    QVERIFY(!preferences.edit([&] {
        preferences.writeBytes(QStringLiteral("zonara.zones"),
                               QByteArray(SettingsPreferencesStore::maximumFileSize, 'z'));
    }));
    QVERIFY(preferences.saveError().contains(QStringLiteral("KiB")));
    QCOMPARE(SettingsPreferencesStore(file).readBytes(QStringLiteral("zonara.zones")),
             std::nullopt);
}

QTEST_GUILESS_MAIN(TestSettingsPreferences)
#include "tst_settingspreferences.moc"
