#include "LoopbackHttpServer.h"
#include "MemoryPreferencesStore.h"
#include "SettingsPreferencesStore.h"
#include "UpdateEngine.h"
#include "UpdateTestSupport.h"

#include <QDir>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace UpdateTestSupport;
using Mode = LoopbackHttpServer::Mode;
using CheckOutcome = UpdateCheckResult::Outcome;
using InstallOutcome = UpdateInstallResult::Outcome;

namespace {

constexpr int waitLimit = 10000;
const QString appImageName = QStringLiteral("Zonara.AppImage");
const QByteArray oldBuild = QByteArrayLiteral("the build that is running now");

enum class Signing { Valid, OtherData, OtherKey };
enum class Address { Served, Refused, Insecure };

} // namespace

Q_DECLARE_METATYPE(LoopbackHttpServer::Mode)
Q_DECLARE_METATYPE(UpdateCheckResult::Outcome)
Q_DECLARE_METATYPE(UpdateInstallResult::Outcome)
Q_DECLARE_METATYPE(UpdateOrigin)
Q_DECLARE_METATYPE(Signing)
Q_DECLARE_METATYPE(Address)

class TestUpdateEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void check_data();
    void check();
    void checkFailsWithoutServer();
    void install_data();
    void install();
    void installKeepsExistingDownload();
    void cancel_data();
    void cancel();
    void allowsAutomaticUpdates_data();
    void allowsAutomaticUpdates();
    void automaticDownloadsNeedPermission();
    void preferencesPersistUnderOwnKeys();
    void nextScheduledCheck_data();
    void nextScheduledCheck();
    void scheduledCheck_data();
    void scheduledCheck();

private:
    UpdateConfiguration configuration(bool appImage) const;
    void serveRelease(const QString &version, const QByteArray &payload, Signing signing,
                      qint64 advertisedLength, const LoopbackHttpServer::Response &file,
                      Address address = Address::Served);
    QStringList entries(const QString &directory) const;

    KeyPair m_keys;
    KeyPair m_otherKeys;
    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_appDir;
    QString m_downloads;
};

void TestUpdateEngine::initTestCase()
{
    qRegisterMetaType<UpdateCheckResult>();
    qRegisterMetaType<UpdateInstallResult>();
    m_keys = makeKeyPair();
    m_otherKeys = makeKeyPair();
}

void TestUpdateEngine::init()
{
    m_server = std::make_unique<LoopbackHttpServer>();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_appDir = m_dir->filePath(QStringLiteral("apps"));
    m_downloads = m_dir->filePath(QStringLiteral("Downloads"));
    QVERIFY(QDir().mkpath(m_appDir));
    QFile image(QDir(m_appDir).filePath(appImageName));
    QVERIFY(image.open(QIODevice::WriteOnly));
    image.write(oldBuild);
    image.close();
    image.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner |
                         QFileDevice::ReadGroup | QFileDevice::ExeGroup);
}

void TestUpdateEngine::cleanup()
{
    m_server.reset();
    m_dir.reset();
}

UpdateConfiguration TestUpdateEngine::configuration(bool appImage) const
{
    UpdateConfiguration configuration;
    configuration.feedUrl = m_server->url(QStringLiteral("/appcast.xml"));
    configuration.publicKeyBase64 = m_keys.publicKeyBase64();
    configuration.currentVersion = QStringLiteral("0.1.0");
    configuration.appImagePath = appImage ? QDir(m_appDir).filePath(appImageName) : QString();
    configuration.downloadDirectory = m_downloads;
    configuration.stallTimeout = 750ms;
    configuration.restart = [](const QString &) { QFAIL("nothing restarts in these tests"); };
    return configuration;
}

void TestUpdateEngine::serveRelease(const QString &version, const QByteArray &payload,
                                    Signing signing, qint64 advertisedLength,
                                    const LoopbackHttpServer::Response &file, Address address)
{
    const QString path = QStringLiteral("/Zonara-%1-x86_64.AppImage").arg(version);
    QByteArray signature;
    switch (signing) {
    case Signing::Valid:
        signature = sign(payload, m_keys);
        break;
    case Signing::OtherData:
        signature = sign(payload + "!", m_keys);
        break;
    case Signing::OtherKey:
        signature = sign(payload, m_otherKeys);
        break;
    }
    QUrl url = m_server->url(path);
    if (address == Address::Refused)
        url = LoopbackHttpServer::refusingUrl(path);
    else if (address == Address::Insecure)
        url = QUrl(QStringLiteral("http://downloads.zonara.example") + path);
    m_server->serve(
        QStringLiteral("/appcast.xml"),
        {200, feed({{version, url, advertisedLength, signature, {}}}), Mode::Normal, {}});
    m_server->serve(path, file);
}

QStringList TestUpdateEngine::entries(const QString &directory) const
{
    return QDir(directory).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
}

void TestUpdateEngine::check_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<Mode>("mode");
    QTest::addColumn<QString>("skipped");
    QTest::addColumn<UpdateOrigin>("origin");
    QTest::addColumn<CheckOutcome>("outcome");
    QTest::addColumn<QString>("expected"); // version found, or the message

    const auto item = [](const QString &version) {
        return FeedItem{
            version,
            QUrl(QStringLiteral("https://zonara.example/Zonara-%1.AppImage").arg(version)),
            1000,
            QByteArray(64, 'x'),
            {}};
    };
    const QByteArray releases = feed({item("0.2.0"), item("1.0.0"), item("0.9.9")});
    const auto user = UpdateOrigin::User;
    const auto scheduled = UpdateOrigin::Scheduled;

    QTest::newRow("newest of several is found, wherever it is listed")
        << releases << 200 << Mode::Normal << QString() << user << CheckOutcome::UpdateAvailable
        << "1.0.0";
    QTest::newRow("numbers, not letters, decide")
        << feed({item("0.9"), item("0.10.0")}) << 200 << Mode::Normal << QString() << user
        << CheckOutcome::UpdateAvailable << "0.10.0";
    QTest::newRow("same version is up to date")
        << feed({item("0.0.9"), item("0.1")}) << 200 << Mode::Normal << QString() << user
        << CheckOutcome::UpToDate << QString();
    QTest::newRow("older only is up to date")
        << feed({item("0.0.5")}) << 200 << Mode::Normal << QString() << user
        << CheckOutcome::UpToDate << QString();
    QTest::newRow("skipped version stays quiet on schedule")
        << releases << 200 << Mode::Normal << "1.0.0" << scheduled << CheckOutcome::UpToDate
        << QString();
    QTest::newRow("skipped version is shown when the user asks")
        << releases << 200 << Mode::Normal << "1.0.0" << user << CheckOutcome::UpdateAvailable
        << "1.0.0";
    QTest::newRow("release newer than the skipped one is shown")
        << releases << 200 << Mode::Normal << "0.9.9" << scheduled << CheckOutcome::UpdateAvailable
        << "1.0.0";
    QTest::newRow("feed without releases")
        << feed({}) << 200 << Mode::Normal << QString() << user << CheckOutcome::Failed
        << "The update feed lists no releases.";
    QTest::newRow("malformed XML") << releases.left(releases.size() - 20) << 200 << Mode::Normal
                                   << QString() << user << CheckOutcome::Failed
                                   << "The update feed could not be read: it is not a valid "
                                      "update feed.";
    QTest::newRow("not RSS") << QByteArray("<html><body>Hello</body></html>") << 200 << Mode::Normal
                             << QString() << user << CheckOutcome::Failed
                             << "The update feed could not be read: it is not a valid update "
                                "feed.";
    const QByteArray oversized = releases.left(releases.indexOf("</channel>")) + "<!--" +
                                 QByteArray(1024 * 1024, ' ') + "--></channel></rss>";
    QTest::newRow("oversized feed with its length")
        << oversized << 200 << Mode::Normal << QString() << user << CheckOutcome::Failed
        << "The update feed is too large to be real.";
    QTest::newRow("oversized feed without a length")
        << oversized << 200 << Mode::NoLength << QString() << user << CheckOutcome::Failed
        << "The update feed is too large to be real.";
    QTest::newRow("feed without a length within the limit")
        << releases << 200 << Mode::NoLength << QString() << user << CheckOutcome::UpdateAvailable
        << "1.0.0";
    QTest::newRow("server error") << releases << 500 << Mode::Normal << QString() << user
                                  << CheckOutcome::Failed
                                  << "The update server answered with an error (HTTP 500).";
    QTest::newRow("feed not found")
        << releases << 404 << Mode::Normal << QString() << user << CheckOutcome::Failed
        << "The update server answered with an error (HTTP 404).";
    QTest::newRow("stalled server")
        << releases << 200 << Mode::Stall << QString() << user << CheckOutcome::Failed
        << "The update server stopped responding.";
}

void TestUpdateEngine::check()
{
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(Mode, mode);
    QFETCH(QString, skipped);
    QFETCH(UpdateOrigin, origin);
    QFETCH(CheckOutcome, outcome);
    QFETCH(QString, expected);

    m_server->serve(QStringLiteral("/appcast.xml"), {status, body, mode, {}});
    MemoryPreferencesStore preferences;
    if (!skipped.isEmpty())
        preferences.writeText(UpdateEngine::skippedVersionKey, skipped);
    UpdateEngine engine(preferences, configuration(false));
    engine.start();
    QVERIFY(engine.canCheckForUpdates());
    QSignalSpy finished(&engine, &UpdateEngine::checkFinished);
    QSignalSpy canCheck(&engine, &UpdateEngine::canCheckForUpdatesChanged);

    engine.checkForUpdates(origin);
    QCOMPARE(engine.phase(), UpdateEngine::Phase::Checking);
    QVERIFY(!engine.canCheckForUpdates());
    QVERIFY(finished.wait(waitLimit));

    const auto result = finished.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(result.outcome, outcome);
    QCOMPARE(result.origin, origin);
    if (outcome == CheckOutcome::UpdateAvailable) {
        QCOMPARE(result.item.version, expected);
        QCOMPARE(result.item.length, 1000);
        QVERIFY(result.message.isEmpty());
    } else {
        QCOMPARE(result.message, expected);
    }
    QCOMPARE(engine.phase(), UpdateEngine::Phase::Idle);
    QCOMPARE(canCheck.size(), 2);
    QVERIFY(engine.canCheckForUpdates());
    // Only a feed that was read counts as a check.
    const bool completed = outcome != CheckOutcome::Failed;
    QCOMPARE(engine.lastUpdateCheckDate().isValid(), completed);
    QCOMPARE(preferences.contains(UpdateEngine::lastCheckDateKey), completed);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(m_server->requestCount(), 1);
}

void TestUpdateEngine::checkFailsWithoutServer()
{
    MemoryPreferencesStore preferences;
    UpdateConfiguration refused = configuration(false);
    refused.feedUrl = LoopbackHttpServer::refusingUrl(QStringLiteral("/appcast.xml"));
    UpdateEngine engine(preferences, refused);
    engine.start();
    QSignalSpy finished(&engine, &UpdateEngine::checkFinished);
    engine.checkForUpdates();
    QVERIFY(finished.wait(waitLimit));
    const auto result = finished.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(result.outcome, CheckOutcome::Failed);
    QCOMPARE(result.message, QStringLiteral("Could not connect to the update server."));
    QVERIFY(engine.canCheckForUpdates());

    // A redirect may not leave the secure (or loopback) addresses.
    UpdateEngine redirected(preferences, configuration(false));
    redirected.start();
    m_server->serve(QStringLiteral("/appcast.xml"),
                    {302, {}, Mode::Normal, "http://zonara.example/appcast.xml"});
    QSignalSpy redirectFinished(&redirected, &UpdateEngine::checkFinished);
    redirected.checkForUpdates();
    QVERIFY(redirectFinished.wait(waitLimit));
    const auto redirectResult = redirectFinished.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(redirectResult.message,
             QStringLiteral("The update feed moved to an address that is not secure."));
}

void TestUpdateEngine::install_data()
{
    QTest::addColumn<bool>("appImage");
    QTest::addColumn<Signing>("signing");
    QTest::addColumn<Address>("address");
    QTest::addColumn<int>("status");
    QTest::addColumn<Mode>("mode");
    QTest::addColumn<int>("servedDifference"); // bytes served beyond the advertised length
    QTest::addColumn<InstallOutcome>("outcome");
    QTest::addColumn<QString>("message");

    const QString badSignature = QStringLiteral(
        "The update's signature is not valid, so it was discarded. Nothing was installed.");
    const QString incomplete = QStringLiteral("The download was incomplete, so it was discarded.");
    const QString larger =
        QStringLiteral("The download was larger than the update feed says, so it was discarded.");
    const auto served = Address::Served;

    QTest::newRow("valid signature, saved to Downloads")
        << false << Signing::Valid << served << 200 << Mode::Normal << 0 << InstallOutcome::Saved
        << QString();
    QTest::newRow("valid signature, AppImage replaced")
        << true << Signing::Valid << served << 200 << Mode::Normal << 0 << InstallOutcome::Installed
        << QString();
    QTest::newRow("wrong signature") << false << Signing::OtherData << served << 200 << Mode::Normal
                                     << 0 << InstallOutcome::Failed << badSignature;
    QTest::newRow("wrong signature, AppImage kept")
        << true << Signing::OtherData << served << 200 << Mode::Normal << 0
        << InstallOutcome::Failed << badSignature;
    QTest::newRow("wrong key") << false << Signing::OtherKey << served << 200 << Mode::Normal << 0
                               << InstallOutcome::Failed << badSignature;
    QTest::newRow("wrong key, AppImage kept")
        << true << Signing::OtherKey << served << 200 << Mode::Normal << 0 << InstallOutcome::Failed
        << badSignature;
    QTest::newRow("truncated download") << false << Signing::Valid << served << 200 << Mode::Normal
                                        << -10 << InstallOutcome::Failed << incomplete;
    QTest::newRow("truncated download, AppImage kept")
        << true << Signing::Valid << served << 200 << Mode::Normal << -10 << InstallOutcome::Failed
        << incomplete;
    QTest::newRow("server hangs up halfway")
        << false << Signing::Valid << served << 200 << Mode::HangUpHalfway << 0
        << InstallOutcome::Failed << incomplete;
    QTest::newRow("longer download") << false << Signing::Valid << served << 200 << Mode::Normal
                                     << 10 << InstallOutcome::Failed << larger;
    QTest::newRow("longer download without a length")
        << true << Signing::Valid << served << 200 << Mode::NoLength << 10 << InstallOutcome::Failed
        << larger;
    QTest::newRow("stalled download")
        << true << Signing::Valid << served << 200 << Mode::Stall << 0 << InstallOutcome::Failed
        << "The update could not be downloaded: the server stopped responding.";
    QTest::newRow("server error") << false << Signing::Valid << served << 503 << Mode::Normal << 0
                                  << InstallOutcome::Failed
                                  << "The update could not be downloaded: the server answered "
                                     "with an error (HTTP 503).";
    QTest::newRow("connection refused")
        << false << Signing::Valid << Address::Refused << 200 << Mode::Normal << 0
        << InstallOutcome::Failed
        << "The update could not be downloaded: could not connect to the server.";
    QTest::newRow("plain HTTP off this machine")
        << true << Signing::Valid << Address::Insecure << 200 << Mode::Normal << 0
        << InstallOutcome::Failed
        << "The update's download address is not secure, so it was not downloaded.";
}

void TestUpdateEngine::install()
{
    QFETCH(bool, appImage);
    QFETCH(Signing, signing);
    QFETCH(Address, address);
    QFETCH(int, status);
    QFETCH(Mode, mode);
    QFETCH(int, servedDifference);
    QFETCH(InstallOutcome, outcome);
    QFETCH(QString, message);

    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    QByteArray servedBody = payload;
    if (servedDifference < 0)
        servedBody.chop(-servedDifference);
    else
        servedBody += QByteArray(servedDifference, 'x');
    serveRelease(QStringLiteral("1.0.0"), payload, signing, payload.size(),
                 {status, servedBody, mode, {}}, address);

    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, configuration(appImage));
    engine.start();
    QCOMPARE(engine.allowsAutomaticUpdates(), appImage);
    QSignalSpy checked(&engine, &UpdateEngine::checkFinished);
    engine.checkForUpdates();
    QVERIFY(checked.wait(waitLimit));
    const auto check = checked.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(check.outcome, CheckOutcome::UpdateAvailable);

    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    QSignalSpy progress(&engine, &UpdateEngine::downloadProgress);
    engine.downloadAndInstall(check.item);
    QCOMPARE(engine.phase(), UpdateEngine::Phase::Downloading);
    QVERIFY(!engine.canCheckForUpdates());
    QVERIFY(installed.wait(waitLimit));
    QCOMPARE(installed.size(), 1);

    const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
    QCOMPARE(result.outcome, outcome);
    QCOMPARE(result.message, message);
    QCOMPARE(engine.phase(), UpdateEngine::Phase::Idle);
    QVERIFY(engine.canCheckForUpdates());
    for (const QList<QVariant> &step : std::as_const(progress))
        QVERIFY(step.at(0).toLongLong() <= payload.size());

    const QString image = QDir(m_appDir).filePath(appImageName);
    const QString saved =
        QDir(m_downloads).filePath(QStringLiteral("Zonara-1.0.0-x86_64.AppImage"));
    QFile imageFile(image);
    QVERIFY(imageFile.open(QIODevice::ReadOnly));
    // Nothing but a verified file is left anywhere.
    QCOMPARE(entries(m_appDir), QStringList{appImageName});
    if (outcome == InstallOutcome::Installed) {
        QCOMPARE(result.path, image);
        QCOMPARE(imageFile.readAll(), payload);
        QVERIFY(imageFile.permissions() & QFileDevice::ExeOwner);
        QVERIFY(imageFile.permissions() & QFileDevice::ExeGroup);
    } else {
        QCOMPARE(imageFile.readAll(), oldBuild);
    }
    if (outcome == InstallOutcome::Saved) {
        QCOMPARE(result.path, saved);
        QCOMPARE(entries(m_downloads), QStringList{QFileInfo(saved).fileName()});
        QFile savedFile(saved);
        QVERIFY(savedFile.open(QIODevice::ReadOnly));
        QCOMPARE(savedFile.readAll(), payload);
    } else {
        QCOMPARE(entries(m_downloads), QStringList());
    }
}

void TestUpdateEngine::installKeepsExistingDownload()
{
    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    serveRelease(QStringLiteral("1.0.0"), payload, Signing::Valid, payload.size(),
                 {200, payload, Mode::Normal, {}});
    QVERIFY(QDir().mkpath(m_downloads));
    const QString existing =
        QDir(m_downloads).filePath(QStringLiteral("Zonara-1.0.0-x86_64.AppImage"));
    QFile file(existing);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("the user's own file");
    file.close();

    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, configuration(false));
    engine.start();
    QSignalSpy checked(&engine, &UpdateEngine::checkFinished);
    engine.checkForUpdates();
    QVERIFY(checked.wait(waitLimit));
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    engine.downloadAndInstall(checked.at(0).at(0).value<UpdateCheckResult>().item);
    QVERIFY(installed.wait(waitLimit));

    const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
    QCOMPARE(result.outcome, InstallOutcome::Saved);
    QCOMPARE(QFileInfo(result.path).fileName(), QStringLiteral("Zonara-1.0.0-x86_64 (1).AppImage"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("the user's own file"));
    QCOMPARE(entries(m_downloads).size(), 2);
}

void TestUpdateEngine::cancel_data()
{
    QTest::addColumn<bool>("duringDownload");
    QTest::newRow("while checking") << false;
    QTest::newRow("while downloading") << true;
}

void TestUpdateEngine::cancel()
{
    QFETCH(bool, duringDownload);
    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    serveRelease(QStringLiteral("1.0.0"), payload, Signing::Valid, payload.size(),
                 {200, payload, Mode::Stall, {}});
    if (!duringDownload) {
        m_server->serve(QStringLiteral("/appcast.xml"),
                        {200, QByteArray(4000, ' '), Mode::Stall, {}});
    }
    MemoryPreferencesStore preferences;
    UpdateConfiguration slow = configuration(false);
    slow.stallTimeout = 60s;
    UpdateEngine engine(preferences, slow);
    engine.start();
    QSignalSpy checked(&engine, &UpdateEngine::checkFinished);
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    engine.checkForUpdates();
    if (duringDownload) {
        QVERIFY(checked.wait(waitLimit));
        engine.downloadAndInstall(checked.at(0).at(0).value<UpdateCheckResult>().item);
        QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount(), 2, waitLimit);
    } else {
        QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount(), 1, waitLimit);
    }

    engine.cancel();
    QCOMPARE(engine.phase(), UpdateEngine::Phase::Idle);
    QVERIFY(engine.canCheckForUpdates());
    if (duringDownload) {
        const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
        QCOMPARE(result.outcome, InstallOutcome::Cancelled);
        QCOMPARE(checked.size(), 1);
    } else {
        QCOMPARE(checked.at(0).at(0).value<UpdateCheckResult>().outcome, CheckOutcome::Cancelled);
        QCOMPARE(installed.size(), 0);
    }
    QCOMPARE(entries(m_downloads), QStringList());
}

void TestUpdateEngine::allowsAutomaticUpdates_data()
{
    QTest::addColumn<QString>("imageName"); // in the apps folder; empty: not an AppImage
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("writable AppImage") << appImageName << false << true;
    QTest::newRow("not an AppImage") << QString() << false << false;
    QTest::newRow("AppImage that is gone") << QStringLiteral("Gone.AppImage") << false << false;
    QTest::newRow("read-only AppImage") << appImageName << true << false;
}

void TestUpdateEngine::allowsAutomaticUpdates()
{
    QFETCH(QString, imageName);
    QFETCH(bool, readOnly);
    QFETCH(bool, allowed);
    if (readOnly && ::geteuid() == 0)
        QSKIP("root may write to any file");
    UpdateConfiguration setup = configuration(false);
    if (!imageName.isEmpty())
        setup.appImagePath = QDir(m_appDir).filePath(imageName);
    if (readOnly)
        QFile::setPermissions(setup.appImagePath, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, setup);
    QVERIFY(!engine.allowsAutomaticUpdates()); // nothing is known before the start
    QSignalSpy changed(&engine, &UpdateEngine::allowsAutomaticUpdatesChanged);
    engine.start();
    QCOMPARE(engine.allowsAutomaticUpdates(), allowed);
    QCOMPARE(changed.size(), allowed ? 1 : 0);
}

void TestUpdateEngine::automaticDownloadsNeedPermission()
{
    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, configuration(false));
    engine.start();
    QSignalSpy changed(&engine, &UpdateEngine::automaticallyDownloadsUpdatesChanged);
    engine.setAutomaticallyDownloadsUpdates(true);
    QVERIFY(!engine.automaticallyDownloadsUpdates());
    QCOMPARE(changed.size(), 0);
    QCOMPARE(preferences.writeCount(UpdateEngine::automaticallyDownloadsKey), 0);

    // A preference kept from an AppImage installation does not apply here.
    preferences.writeBool(UpdateEngine::automaticallyDownloadsKey, true);
    UpdateEngine packaged(preferences, configuration(false));
    packaged.start();
    QVERIFY(!packaged.automaticallyDownloadsUpdates());
    UpdateEngine image(preferences, configuration(true));
    image.start();
    QVERIFY(image.automaticallyDownloadsUpdates());
}

void TestUpdateEngine::preferencesPersistUnderOwnKeys()
{
    const QString file = m_dir->filePath(QStringLiteral("zonara.conf"));
    {
        SettingsPreferencesStore preferences(file);
        preferences.writeText(QStringLiteral("zonara.format"), QStringLiteral("labelTime12"));
        UpdateEngine engine(preferences, configuration(true));
        engine.start();
        engine.setAutomaticallyChecksForUpdates(true);
        engine.setAutomaticallyDownloadsUpdates(true);
        engine.skipVersion(QStringLiteral("2.0.0"));
    }
    SettingsPreferencesStore preferences(file);
    UpdateEngine engine(preferences, configuration(true));
    engine.start();
    QVERIFY(engine.automaticallyChecksForUpdates());
    QVERIFY(engine.automaticallyDownloadsUpdates());
    QCOMPARE(engine.skippedVersion(), QStringLiteral("2.0.0"));
    QCOMPARE(preferences.readText(QStringLiteral("zonara.format")), QStringLiteral("labelTime12"));
    QSettings settings(file, QSettings::IniFormat);
    QVERIFY(settings.contains(UpdateEngine::automaticallyChecksKey));
    QVERIFY(settings.contains(UpdateEngine::automaticallyDownloadsKey));
    QVERIFY(settings.contains(UpdateEngine::skippedVersionKey));
}

void TestUpdateEngine::nextScheduledCheck_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QString>("lastCheck"); // stored text; empty: never checked
    QTest::addColumn<QString>("expected");  // empty: none planned

    const QString now = QStringLiteral("2026-01-05T12:00:00.000Z");
    QTest::newRow("automatic checks off") << false << "2026-01-04T12:00:00.000Z" << QString();
    QTest::newRow("never checked: shortly after start")
        << true << QString() << "2026-01-05T12:01:00.000Z";
    QTest::newRow("checked an hour ago: a day after that") << true << "2026-01-05T11:00:00.000Z"
                                                           << "2026-01-06T11:00:00.000Z";
    QTest::newRow("checked two days ago: shortly after start") << true << "2026-01-03T12:00:00.000Z"
                                                               << "2026-01-05T12:01:00.000Z";
    QTest::newRow("unreadable date counts as never") << true << "last Tuesday"
                                                     << "2026-01-05T12:01:00.000Z";
}

void TestUpdateEngine::nextScheduledCheck()
{
    QFETCH(bool, automatic);
    QFETCH(QString, lastCheck);
    QFETCH(QString, expected);
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyChecksKey, automatic);
    if (!lastCheck.isEmpty())
        preferences.writeText(UpdateEngine::lastCheckDateKey, lastCheck);
    UpdateConfiguration setup = configuration(false);
    setup.firstCheckDelay = 1min;
    setup.currentTime = [] {
        return QDateTime::fromString(QStringLiteral("2026-01-05T12:00:00Z"), Qt::ISODate);
    };
    UpdateEngine engine(preferences, setup);
    QVERIFY(!engine.nextScheduledCheck().isValid());
    engine.start();
    QCOMPARE(engine.nextScheduledCheck(), QDateTime::fromString(expected, Qt::ISODateWithMs));

    engine.setAutomaticallyChecksForUpdates(!automatic);
    QCOMPARE(engine.nextScheduledCheck().isValid(), !automatic);
}

void TestUpdateEngine::scheduledCheck_data()
{
    QTest::addColumn<bool>("automaticDownloads");
    QTest::newRow("found update waits for the user") << false;
    QTest::newRow("found update installs itself for the next start") << true;
}

void TestUpdateEngine::scheduledCheck()
{
    QFETCH(bool, automaticDownloads);
    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    serveRelease(QStringLiteral("1.0.0"), payload, Signing::Valid, payload.size(),
                 {200, payload, Mode::Normal, {}});
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyChecksKey, true);
    preferences.writeBool(UpdateEngine::automaticallyDownloadsKey, automaticDownloads);
    UpdateConfiguration setup = configuration(true);
    setup.firstCheckDelay = 0ms;
    UpdateEngine engine(preferences, setup);
    QSignalSpy checked(&engine, &UpdateEngine::checkFinished);
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    engine.start();

    QVERIFY(checked.wait(waitLimit));
    const auto check = checked.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(check.origin, UpdateOrigin::Scheduled);
    QCOMPARE(check.outcome, CheckOutcome::UpdateAvailable);
    QCOMPARE(check.installsAutomatically, automaticDownloads);
    QFile image(setup.appImagePath);
    if (automaticDownloads) {
        QVERIFY(installed.wait(waitLimit));
        const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
        QCOMPARE(result.outcome, InstallOutcome::Installed);
        QCOMPARE(result.origin, UpdateOrigin::Scheduled);
        QVERIFY(image.open(QIODevice::ReadOnly));
        QCOMPARE(image.readAll(), payload);
    } else {
        QCOMPARE(engine.phase(), UpdateEngine::Phase::Idle);
        QCOMPARE(installed.size(), 0);
        QVERIFY(image.open(QIODevice::ReadOnly));
        QCOMPARE(image.readAll(), oldBuild);
    }
    // The next one is a day after this check, not right away.
    QVERIFY(engine.nextScheduledCheck() > engine.lastUpdateCheckDate().addSecs(23 * 3600));
    QCOMPARE(m_server->requestCount(), automaticDownloads ? 2 : 1);
}

QTEST_GUILESS_MAIN(TestUpdateEngine)
#include "tst_updateengine.moc"
