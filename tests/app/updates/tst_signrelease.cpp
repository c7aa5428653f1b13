#include "Appcast.h"
#include "UpdateSignature.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QByteArray out;
};

Run runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(ZONARA_SIGN_RELEASE), arguments);
    if (!process.waitForFinished(20000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput().trimmed()};
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class TestSignRelease : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void signedReleaseVerifiesInTheUpdater();
    void refusals_data();
    void refusals();

private:
    QTemporaryDir m_dir;
    QString m_secretKey;
    QByteArray m_publicKey;
    QString m_release;
};

void TestSignRelease::initTestCase()
{
    QVERIFY(UpdateSignature::initialize());
    m_secretKey = m_dir.filePath(QStringLiteral("zonara-update.key"));
    const Run generated = runTool({QStringLiteral("generate-keys"), m_secretKey});
    QCOMPARE(generated.exitCode, 0);
    m_publicKey = generated.out;
    QCOMPARE(QFile::permissions(m_secretKey), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ReadUser | QFileDevice::WriteUser);
    QCOMPARE(runTool({QStringLiteral("public-key"), m_secretKey}).out, m_publicKey);
    // A second generation never overwrites the key.
    const QByteArray secret = readAll(m_secretKey);
    QCOMPARE(runTool({QStringLiteral("generate-keys"), m_secretKey}).exitCode, 1);
    QCOMPARE(readAll(m_secretKey), secret);

    m_release = m_dir.filePath(QStringLiteral("Zonara-2.0.0-x86_64.AppImage"));
    QFile file(m_release);
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (int i = 0; i < 5000; ++i)
        file.write("release line " + QByteArray::number(i) + '\n');
}

void TestSignRelease::signedReleaseVerifiesInTheUpdater()
{
    // Characters that XML escapes must survive the trip through the feed.
    const QString url =
        QStringLiteral("https://downloads.zonara.example/get?f=Zonara&a=x86_64&n='z'");
    const Run signedRun =
        runTool({QStringLiteral("sign"), m_secretKey, m_release, url, QStringLiteral("2.0.0")});
    QCOMPARE(signedRun.exitCode, 0);
    const auto items = Appcast::parse("<rss xmlns:sparkle=\"http://www.andymatuschak.org/"
                                      "xml-namespaces/sparkle\"><channel><item><sparkle:version>"
                                      "2.0.0</sparkle:version>" +
                                      signedRun.out + "</item></channel></rss>");
    QVERIFY2(items && items->size() == 1, signedRun.out.constData());
    const AppcastItem &item = items->first();
    QCOMPARE(item.downloadUrl.toString(), url);
    QCOMPARE(item.length, QFileInfo(m_release).size());
    const auto key = UpdateSignature::publicKeyFromBase64(m_publicKey);
    QVERIFY(key);
    QCOMPARE(item.version, QStringLiteral("2.0.0"));
    // The tool and the updater agree on what is signed, and both bind the version.
    QVERIFY(UpdateSignature::verifyRelease(m_release, item.version, item.signature, *key));
    QVERIFY(
        !UpdateSignature::verifyRelease(m_release, QStringLiteral("2.0.1"), item.signature, *key));
    for (const QString &version : {QStringLiteral("2.0.0"), QStringLiteral("3.0.0")}) {
        const Run verified =
            runTool({QStringLiteral("verify"), QString::fromLatin1(m_publicKey), m_release, version,
                     QString::fromLatin1(item.signature.toBase64())});
        QCOMPARE(verified.exitCode, version == u"2.0.0" ? 0 : 1);
        QCOMPARE(verified.out, QByteArray(version == u"2.0.0" ? "valid" : "invalid"));
    }
}

void TestSignRelease::refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("no command") << QStringList() << 2;
    QTest::newRow("plain HTTP download address")
        << QStringList{"sign", "KEY", "RELEASE", "http://downloads.zonara.example/z", "1.0"} << 2;
    QTest::newRow("no version") << QStringList{"sign", "KEY", "RELEASE", "https://zonara.example/z"}
                                << 2;
    QTest::newRow("version that is not dotted numbers")
        << QStringList{"sign", "KEY", "RELEASE", "https://zonara.example/z", "1.0\nlength 1"} << 2;
    QTest::newRow("missing key file")
        << QStringList{"sign", "/nonexistent/key", "RELEASE", "https://zonara.example/z", "1.0"}
        << 1;
    QTest::newRow("key file that holds no key")
        << QStringList{"sign", "RELEASE", "RELEASE", "https://zonara.example/z", "1.0"} << 1;
}

void TestSignRelease::refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    const QHash<QString, QString> files{{QStringLiteral("KEY"), m_secretKey},
                                        {QStringLiteral("RELEASE"), m_release}};
    for (QString &argument : arguments)
        argument = files.value(argument, argument);
    const Run run = runTool(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY(!run.out.startsWith("<enclosure"));
}

QTEST_GUILESS_MAIN(TestSignRelease)
#include "tst_signrelease.moc"
