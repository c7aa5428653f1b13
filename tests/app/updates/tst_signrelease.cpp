#include "Appcast.h"
#include "UpdateSignature.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

struct Run
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

Run runTool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(ZONARA_SIGN_RELEASE), arguments);
    if (!process.waitForFinished(20000))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            process.readAllStandardOutput().trimmed(), process.readAllStandardError()};
}

QByteArray wrapInFeed(const QByteArray &enclosure)
{
    return "<rss version=\"2.0\" "
           "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>"
           "<item><sparkle:version>2.0.0</sparkle:version>" +
           enclosure + "</item></channel></rss>";
}

} // namespace

class TestSignRelease : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void signedReleaseVerifiesInTheUpdater_data();
    void signedReleaseVerifiesInTheUpdater();
    void keysAreNeverOverwritten();
    void refusals_data();
    void refusals();

private:
    QTemporaryDir m_dir;
    QString m_secretKey;
    QByteArray m_publicKey;
    QString m_release;
    QByteArray m_releaseBytes;
};

void TestSignRelease::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QVERIFY(UpdateSignature::initialize());
    m_secretKey = m_dir.filePath(QStringLiteral("zonara-update.key"));
    const Run generated = runTool({QStringLiteral("generate-keys"), m_secretKey});
    QCOMPARE(generated.exitCode, 0);
    m_publicKey = generated.out;
    QVERIFY(UpdateSignature::publicKeyFromBase64(m_publicKey));
    QCOMPARE(QFile::permissions(m_secretKey), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ReadUser | QFileDevice::WriteUser);
    const Run shown = runTool({QStringLiteral("public-key"), m_secretKey});
    QCOMPARE(shown.exitCode, 0);
    QCOMPARE(shown.out, m_publicKey);

    m_release = m_dir.filePath(QStringLiteral("Zonara-2.0.0-x86_64.AppImage"));
    for (int i = 0; i < 5000; ++i)
        m_releaseBytes += "release line " + QByteArray::number(i) + '\n';
    QFile file(m_release);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(m_releaseBytes);
}

void TestSignRelease::signedReleaseVerifiesInTheUpdater_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("plain address")
        << "https://downloads.zonara.example/Zonara-2.0.0-x86_64.AppImage";
    QTest::newRow("address with characters XML escapes")
        << "https://downloads.zonara.example/get?file=Zonara-2.0.0&arch=x86_64&name='z'";
}

void TestSignRelease::signedReleaseVerifiesInTheUpdater()
{
    QFETCH(QString, url);
    const Run signedRun = runTool({QStringLiteral("sign"), m_secretKey, m_release, url});
    QCOMPARE(signedRun.exitCode, 0);
    QVERIFY2(signedRun.out.startsWith("<enclosure "), signedRun.out.constData());

    const auto items = Appcast::parse(wrapInFeed(signedRun.out));
    QVERIFY(items);
    QCOMPARE(items->size(), 1);
    const AppcastItem &item = items->first();
    QCOMPARE(item.downloadUrl.toString(), url);
    QCOMPARE(item.length, m_releaseBytes.size());
    QCOMPARE(item.contentType, QStringLiteral("application/vnd.appimage"));
    const QByteArray key = *UpdateSignature::publicKeyFromBase64(m_publicKey);
    QVERIFY(UpdateSignature::verifyFile(m_release, item.signature, key));
    QVERIFY(!UpdateSignature::verify(QByteArray(m_releaseBytes + "x"), item.signature, key));

    const Run verified = runTool({QStringLiteral("verify"), QString::fromLatin1(m_publicKey),
                                  m_release, QString::fromLatin1(item.signature.toBase64())});
    QCOMPARE(verified.exitCode, 0);
    QCOMPARE(verified.out, QByteArray("valid"));
}

void TestSignRelease::keysAreNeverOverwritten()
{
    QFile before(m_secretKey);
    QVERIFY(before.open(QIODevice::ReadOnly));
    const QByteArray secret = before.readAll();
    before.close();
    const Run again = runTool({QStringLiteral("generate-keys"), m_secretKey});
    QCOMPARE(again.exitCode, 1);
    QVERIFY(again.out.isEmpty());
    QVERIFY(before.open(QIODevice::ReadOnly));
    QCOMPARE(before.readAll(), secret);
}

void TestSignRelease::refusals_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("no command") << QStringList() << 2;
    QTest::newRow("unknown command") << QStringList{"publish", "x"} << 2;
    QTest::newRow("sign with too few arguments") << QStringList{"sign", "key", "file"} << 2;
    QTest::newRow("plain HTTP download address")
        << QStringList{"sign", "KEY", "RELEASE", "http://downloads.zonara.example/z"} << 2;
    QTest::newRow("missing key file")
        << QStringList{"sign", "/nonexistent/key", "RELEASE", "https://zonara.example/z"} << 1;
    QTest::newRow("key file that holds no key")
        << QStringList{"sign", "RELEASE", "RELEASE", "https://zonara.example/z"} << 1;
    QTest::newRow("verify with a wrong signature")
        << QStringList{"verify", "PUBLIC", "KEY",
                       QString::fromLatin1(QByteArray(64, 'a').toBase64())}
        << 1;
}

void TestSignRelease::refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    for (QString &argument : arguments) {
        if (argument == "KEY")
            argument = m_secretKey;
        else if (argument == "RELEASE")
            argument = m_release;
        else if (argument == "PUBLIC")
            argument = QString::fromLatin1(m_publicKey);
    }
    const Run run = runTool(arguments);
    QCOMPARE(run.exitCode, exitCode);
    QVERIFY(!run.out.startsWith("<enclosure"));
}

QTEST_GUILESS_MAIN(TestSignRelease)
#include "tst_signrelease.moc"
