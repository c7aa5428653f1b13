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
    void signature();
};

void TestUpdateSecurity::urlPolicy_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("https") << "https://zonara.example/appcast.xml" << true;
    QTest::newRow("http elsewhere") << "http://zonara.example/appcast.xml" << false;
    QTest::newRow("http on 127.3.4.5") << "http://127.3.4.5/a" << true;
    QTest::newRow("http on ::1") << "http://[::1]:8080/a" << true;
    QTest::newRow("http on localhost") << "http://localhost/a" << true;
    QTest::newRow("name starting like localhost") << "http://localhost.evil.example/a" << false;
    QTest::newRow("name starting like loopback") << "http://127.0.0.1.evil.example/a" << false;
    QTest::newRow("file") << "file:///tmp/appcast.xml" << false;
    QTest::newRow("https without host") << "https:///appcast.xml" << false;
}

void TestUpdateSecurity::urlPolicy()
{
    QFETCH(QString, url);
    QFETCH(bool, allowed);
    QCOMPARE(UpdateUrlPolicy::isAllowed(QUrl(url)), allowed);
}

// Wrong data and wrong keys are covered end to end in the engine's tests.
void TestUpdateSecurity::signature()
{
    const auto keys = UpdateTestSupport::makeKeyPair();
    const QByteArray release = UpdateTestSupport::releasePayload(QStringLiteral("1.0"));
    const QByteArray signature = UpdateTestSupport::sign(release, keys);
    const auto publicKey = UpdateSignature::publicKeyFromBase64(keys.publicKeyBase64());
    QVERIFY(publicKey);
    QVERIFY(UpdateSignature::verify(release, signature, *publicKey));
    QVERIFY(
        !UpdateSignature::verify(QByteArray(release).replace(100, 1, "#"), signature, *publicKey));
    QVERIFY(!UpdateSignature::verify(release.chopped(1), signature, *publicKey));
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write(release);
    file.flush();
    // A release is signed as a statement about it, not as its bare bytes; that
    // the statement binds the version is covered through the engine.
    const QByteArray signedRelease =
        UpdateTestSupport::signRelease(release, QStringLiteral("1.0.0"), keys);
    QVERIFY(UpdateSignature::verifyRelease(file.fileName(), QStringLiteral("1.0.0"), signedRelease,
                                           *publicKey));
    QVERIFY(!UpdateSignature::verifyRelease(file.fileName(), QStringLiteral("1.0.0"), signature,
                                            *publicKey));
    // Signatures and keys of the wrong size never pass.
    QVERIFY(!UpdateSignature::verify(release, signature.left(63), *publicKey));
    QVERIFY(!UpdateSignature::publicKeyFromBase64(keys.publicKey.left(31).toBase64()));
    QVERIFY(!UpdateSignature::publicKeyFromBase64("not base64 at all!"));
}

QTEST_GUILESS_MAIN(TestUpdateSecurity)
#include "tst_updatesecurity.moc"
