#include "UpdateSignature.h"
#include "UpdateTestSupport.h"
#include "UpdateUrlPolicy.h"

#include <QTemporaryFile>
#include <QTest>

class TestUpdateSecurity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void urlPolicy_data();
    void urlPolicy();
    void signature_data();
    void signature();
};

void TestUpdateSecurity::urlPolicy_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("https") << "https://zonara.example/appcast.xml" << true;
    QTest::newRow("http elsewhere") << "http://zonara.example/appcast.xml" << false;
    QTest::newRow("http on 127.0.0.1") << "http://127.0.0.1:8080/a" << true;
    QTest::newRow("http on 127.3.4.5") << "http://127.3.4.5/a" << true;
    QTest::newRow("http on ::1") << "http://[::1]:8080/a" << true;
    QTest::newRow("http on localhost") << "http://localhost/a" << true;
    QTest::newRow("http on a name starting like localhost")
        << "http://localhost.evil.example/a" << false;
    QTest::newRow("http on a name starting like loopback")
        << "http://127.0.0.1.evil.example/a" << false;
    QTest::newRow("file") << "file:///tmp/appcast.xml" << false;
    QTest::newRow("ftp") << "ftp://zonara.example/appcast.xml" << false;
    QTest::newRow("https without host") << "https:///appcast.xml" << false;
    QTest::newRow("relative") << "/appcast.xml" << false;
}

void TestUpdateSecurity::urlPolicy()
{
    QFETCH(QString, url);
    QFETCH(bool, allowed);
    QCOMPARE(UpdateUrlPolicy::isAllowed(QUrl(url)), allowed);
}

void TestUpdateSecurity::signature_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QByteArray>("signedContents");
    QTest::addColumn<bool>("sameKey");
    QTest::addColumn<bool>("valid");
    const QByteArray release = UpdateTestSupport::releasePayload(QStringLiteral("1.0"));
    QTest::newRow("valid") << release << release << true << true;
    QTest::newRow("one byte changed")
        << QByteArray(release).replace(100, 1, "#") << release << true << false;
    QTest::newRow("one byte missing")
        << release.left(release.size() - 1) << release << true << false;
    QTest::newRow("another key") << release << release << false << false;
}

void TestUpdateSecurity::signature()
{
    QFETCH(QByteArray, contents);
    QFETCH(QByteArray, signedContents);
    QFETCH(bool, sameKey);
    QFETCH(bool, valid);
    const auto keys = UpdateTestSupport::makeKeyPair();
    const auto signer = sameKey ? keys : UpdateTestSupport::makeKeyPair();
    const QByteArray signature = UpdateTestSupport::sign(signedContents, signer);

    const auto publicKey = UpdateSignature::publicKeyFromBase64(keys.publicKeyBase64());
    QVERIFY(publicKey);
    QCOMPARE(*publicKey, keys.publicKey);
    QCOMPARE(UpdateSignature::verify(contents, signature, *publicKey), valid);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(contents);
    file.flush();
    QCOMPARE(UpdateSignature::verifyFile(file.fileName(), signature, *publicKey), valid);
    // Signatures and keys of the wrong size never pass.
    QVERIFY(!UpdateSignature::verify(contents, signature.left(63), *publicKey));
    QVERIFY(!UpdateSignature::publicKeyFromBase64(keys.publicKey.left(31).toBase64()));
    QVERIFY(!UpdateSignature::publicKeyFromBase64("not base64 at all!"));
}

QTEST_GUILESS_MAIN(TestUpdateSecurity)
#include "tst_updatesecurity.moc"
