#include "MemoryPreferencesStore.h"
#include "UpdateEngine.h"
#include "UpdateTestSupport.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace std::chrono_literals;
using namespace UpdateTestSupport;
using Mode = LoopbackHttpServer::Mode;
using Response = LoopbackHttpServer::Response;
using CheckOutcome = UpdateCheckResult::Outcome;
using InstallOutcome = UpdateInstallResult::Outcome;

namespace {

constexpr int waitLimit = 10000;
const QString appImageName = QStringLiteral("Zonara.AppImage");
const QString savedName = QStringLiteral("Zonara-1.0.0-x86_64.AppImage");
const QByteArray oldBuild = QByteArrayLiteral("the build that is running now");

// OlderRelease: genuinely signed, but as another (older) version than announced.
enum class Signing { Valid, OtherData, OtherKey, OlderRelease };
enum class Address { Served, Refused, Insecure };

} // namespace

Q_DECLARE_METATYPE(LoopbackHttpServer::Response)
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
    void install_data();
    void install();
    void installKeepsExistingDownload();
    void downloadNeedsRoom();
    void cancelDownload();
    void allowsAutomaticUpdates_data();
    void allowsAutomaticUpdates();
    void nextScheduledCheck_data();
    void nextScheduledCheck();

private:
    UpdateConfiguration configuration(bool appImage) const;
    // Serves a feed that offers 1.0.0 and its file (the release if the body is null).
    void serveRelease(const Response &file, Signing signing = Signing::Valid,
                      Address address = Address::Served);
    UpdateCheckResult checkNow(UpdateEngine &engine) const;
    QStringList entries(const QString &directory) const
    {
        return QDir(directory).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    KeyPair m_keys = makeKeyPair();
    KeyPair m_otherKeys = makeKeyPair();
    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_appDir;
    QString m_downloads;
};

void TestUpdateEngine::initTestCase()
{
    qRegisterMetaType<UpdateCheckResult>();
    qRegisterMetaType<UpdateInstallResult>();
}

void TestUpdateEngine::init()
{
    m_server = std::make_unique<LoopbackHttpServer>();
    m_dir = std::make_unique<QTemporaryDir>();
    m_appDir = m_dir->filePath(QStringLiteral("apps"));
    m_downloads = m_dir->filePath(QStringLiteral("Downloads"));
    QVERIFY(QDir().mkpath(m_appDir));
    QFile image(QDir(m_appDir).filePath(appImageName));
    QVERIFY(image.open(QIODevice::WriteOnly));
    image.write(oldBuild);
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

void TestUpdateEngine::serveRelease(const Response &file, Signing signing, Address address)
{
    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    const QString path = u'/' + savedName;
    const QString version = QStringLiteral("1.0.0");
    const QByteArray signature =
        signing == Signing::OtherData      ? signRelease(payload + "!", version, m_keys)
        : signing == Signing::OtherKey     ? signRelease(payload, version, m_otherKeys)
        : signing == Signing::OlderRelease ? signRelease(payload, QStringLiteral("0.9.0"), m_keys)
                                           : signRelease(payload, version, m_keys);
    QUrl url = m_server->url(path);
    if (address == Address::Refused)
        url = LoopbackHttpServer::refusingUrl(path);
    else if (address == Address::Insecure)
        url = QUrl(QStringLiteral("http://downloads.zonara.example") + path);
    m_server->serve(QStringLiteral("/appcast.xml"),
                    {200, feed({{QStringLiteral("1.0.0"), url, payload.size(), signature, {}}})});
    Response served = file;
    if (served.body.isNull())
        served.body = payload;
    m_server->serve(path, served);
}

UpdateCheckResult TestUpdateEngine::checkNow(UpdateEngine &engine) const
{
    QSignalSpy finished(&engine, &UpdateEngine::checkFinished);
    engine.checkForUpdates();
    if (!finished.wait(waitLimit))
        return {};
    return finished.at(0).at(0).value<UpdateCheckResult>();
}

void TestUpdateEngine::check_data()
{
    QTest::addColumn<Response>("response"); // status 0: nothing listens
    QTest::addColumn<QString>("skipped");
    QTest::addColumn<UpdateOrigin>("origin");
    QTest::addColumn<CheckOutcome>("outcome");
    QTest::addColumn<QString>("expected"); // version found, or the message

    const auto item = [](const QString &version) {
        return FeedItem{version,
                        QUrl(QStringLiteral("https://zonara.example/Z-%1").arg(version)),
                        1000,
                        QByteArray(64, 'x'),
                        {}};
    };
    const QByteArray releases = feed({item("0.2.0"), item("1.0.0"), item("0.9.9")});
    const auto user = UpdateOrigin::User;
    const auto scheduled = UpdateOrigin::Scheduled;
    const auto failed = CheckOutcome::Failed;
    const QString unreadable =
        QStringLiteral("The update feed could not be read: it is not a valid update feed.");
    const QByteArray oversized = releases.left(releases.indexOf("</channel>")) + "<!--" +
                                 QByteArray(1024 * 1024, ' ') + "--></channel></rss>";

    QTest::newRow("newest of several is found, wherever it is listed")
        << Response{200, releases} << QString() << user << CheckOutcome::UpdateAvailable << "1.0.0";
    QTest::newRow("same or older is up to date")
        << Response{200, feed({item("0.0.9"), item("0.1")})} << QString() << user
        << CheckOutcome::UpToDate << QString();
    QTest::newRow("skipped version stays quiet on schedule")
        << Response{200, releases} << "1.0.0" << scheduled << CheckOutcome::UpToDate << QString();
    QTest::newRow("skipped version is shown when the user asks")
        << Response{200, releases} << "1.0.0" << user << CheckOutcome::UpdateAvailable << "1.0.0";
    QTest::newRow("release newer than the skipped one is shown")
        << Response{200, releases} << "0.9.9" << scheduled << CheckOutcome::UpdateAvailable
        << "1.0.0";
    QTest::newRow("feed without a length") << Response{200, releases, Mode::NoLength} << QString()
                                           << user << CheckOutcome::UpdateAvailable << "1.0.0";
    QTest::newRow("feed without releases") << Response{200, feed({})} << QString() << user << failed
                                           << "The update feed lists no releases.";
    QTest::newRow("malformed XML")
        << Response{200, releases.chopped(20)} << QString() << user << failed << unreadable;
    QTest::newRow("oversized feed without a length")
        << Response{200, oversized, Mode::NoLength} << QString() << user << failed
        << "The update feed is too large to be real.";
    QTest::newRow("server error") << Response{500, releases} << QString() << user << failed
                                  << "The update server answered with an error (HTTP 500).";
    QTest::newRow("stalled server") << Response{200, releases, Mode::Stall} << QString() << user
                                    << failed << "The update server stopped responding.";
    QTest::newRow("connection refused") << Response{0, {}} << QString() << user << failed
                                        << "Could not connect to the update server.";
    QTest::newRow("redirect to plain HTTP")
        << Response{302, {}, Mode::Normal, "http://zonara.example/appcast.xml"} << QString() << user
        << failed << "The update feed moved to an address that is not secure.";
}

void TestUpdateEngine::check()
{
    QFETCH(Response, response);
    QFETCH(QString, skipped);
    QFETCH(UpdateOrigin, origin);
    QFETCH(CheckOutcome, outcome);
    QFETCH(QString, expected);

    m_server->serve(QStringLiteral("/appcast.xml"), response);
    MemoryPreferencesStore preferences;
    if (!skipped.isEmpty())
        preferences.writeText(UpdateEngine::skippedVersionKey, skipped);
    UpdateConfiguration setup = configuration(false);
    if (response.status == 0)
        setup.feedUrl = LoopbackHttpServer::refusingUrl(QStringLiteral("/appcast.xml"));
    UpdateEngine engine(preferences, setup);
    engine.start();
    QSignalSpy finished(&engine, &UpdateEngine::checkFinished);

    engine.checkForUpdates(origin);
    QVERIFY(!engine.canCheckForUpdates());
    QVERIFY(finished.wait(waitLimit));
    QCOMPARE(finished.size(), 1);
    const auto result = finished.at(0).at(0).value<UpdateCheckResult>();
    QCOMPARE(result.outcome, outcome);
    QCOMPARE(result.origin, origin);
    QCOMPARE(result.outcome == CheckOutcome::UpdateAvailable ? result.item.version : result.message,
             expected);
    QVERIFY(engine.canCheckForUpdates());
    // Only a feed that was read counts as a check.
    const bool read = outcome != CheckOutcome::Failed;
    QCOMPARE(engine.lastUpdateCheckDate().isValid(), read);
    QCOMPARE(preferences.contains(UpdateEngine::lastCheckDateKey), read);
}

void TestUpdateEngine::install_data()
{
    QTest::addColumn<bool>("appImage");
    QTest::addColumn<Signing>("signing");
    QTest::addColumn<Address>("address");
    QTest::addColumn<Response>("file");  // a null body: the release itself
    QTest::addColumn<int>("sizeChange"); // bytes served beyond the release
    QTest::addColumn<InstallOutcome>("outcome");
    QTest::addColumn<QString>("message");

    const QString badSignature = QStringLiteral(
        "The update's signature is not valid, so it was discarded. Nothing was installed.");
    const QString incomplete = QStringLiteral("The download was incomplete, so it was discarded.");
    const auto valid = Signing::Valid;
    const auto served = Address::Served;
    const auto failed = InstallOutcome::Failed;
    const Response ok{200, {}};

    // Failures alternate between saving to Downloads and replacing the AppImage.
    QTest::newRow("valid signature, saved to Downloads")
        << false << valid << served << ok << 0 << InstallOutcome::Saved << QString();
    QTest::newRow("valid signature, AppImage replaced")
        << true << valid << served << ok << 0 << InstallOutcome::Installed << QString();
    QTest::newRow("wrong signature")
        << false << Signing::OtherData << served << ok << 0 << failed << badSignature;
    QTest::newRow("wrong key") << true << Signing::OtherKey << served << ok << 0 << failed
                               << badSignature;
    QTest::newRow("older release relabelled as newer")
        << true << Signing::OlderRelease << served << ok << 0 << failed << badSignature;
    QTest::newRow("truncated download")
        << false << valid << served << ok << -10 << failed << incomplete;
    QTest::newRow("server hangs up halfway")
        << true << valid << served << Response{200, {}, Mode::HangUpHalfway} << 0 << failed
        << incomplete;
    QTest::newRow("longer download without a length")
        << true << valid << served << Response{200, {}, Mode::NoLength} << 10 << failed
        << "The download was larger than the update feed says, so it was discarded.";
    QTest::newRow("stalled download")
        << true << valid << served << Response{200, {}, Mode::Stall} << 0 << failed
        << "The update could not be downloaded: the server stopped responding.";
    QTest::newRow("server error")
        << false << valid << served << Response{503, {}} << 0 << failed
        << "The update could not be downloaded: the server answered with an error (HTTP 503).";
    QTest::newRow("connection refused")
        << false << valid << Address::Refused << ok << 0 << failed
        << "The update could not be downloaded: could not connect to the server.";
    QTest::newRow("plain HTTP off this machine")
        << true << valid << Address::Insecure << ok << 0 << failed
        << "The update's download address is not secure, so it was not downloaded.";
}

void TestUpdateEngine::install()
{
    QFETCH(bool, appImage);
    QFETCH(Signing, signing);
    QFETCH(Address, address);
    QFETCH(Response, file);
    QFETCH(int, sizeChange);
    QFETCH(InstallOutcome, outcome);
    QFETCH(QString, message);

    const QByteArray payload = releasePayload(QStringLiteral("1.0.0"));
    file.body =
        sizeChange < 0 ? payload.chopped(-sizeChange) : payload + QByteArray(sizeChange, 'x');
    serveRelease(file, signing, address);
    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, configuration(appImage));
    engine.start();
    const UpdateCheckResult check = checkNow(engine);
    QCOMPARE(check.outcome, CheckOutcome::UpdateAvailable);

    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    QSignalSpy progress(&engine, &UpdateEngine::downloadProgress);
    engine.downloadAndInstall(check.item);
    QVERIFY(!engine.canCheckForUpdates());
    QVERIFY(installed.wait(waitLimit));
    QCOMPARE(installed.size(), 1);
    const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
    QCOMPARE(result.outcome, outcome);
    QCOMPARE(result.message, message);
    QVERIFY(engine.canCheckForUpdates());
    for (const QList<QVariant> &step : std::as_const(progress))
        QVERIFY(step.at(0).toLongLong() <= payload.size());

    // Nothing but a verified file is left anywhere.
    const QString image = QDir(m_appDir).filePath(appImageName);
    QCOMPARE(entries(m_appDir), QStringList{appImageName});
    QFile imageFile(image);
    QVERIFY(imageFile.open(QIODevice::ReadOnly));
    QCOMPARE(imageFile.readAll(), outcome == InstallOutcome::Installed ? payload : oldBuild);
    QVERIFY(imageFile.permissions() & QFileDevice::ExeOwner);
    QVERIFY(imageFile.permissions() & QFileDevice::ExeGroup);
    if (outcome == InstallOutcome::Installed)
        QCOMPARE(result.path, image);
    if (outcome != InstallOutcome::Saved) {
        QCOMPARE(entries(m_downloads), QStringList());
        return;
    }
    QCOMPARE(result.path, QDir(m_downloads).filePath(savedName));
    QCOMPARE(entries(m_downloads), QStringList{savedName});
    QFile saved(result.path);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    QCOMPARE(saved.readAll(), payload);
}

void TestUpdateEngine::downloadNeedsRoom()
{
    serveRelease({200, {}});
    UpdateConfiguration cramped = configuration(false);
    cramped.freeSpaceReserve = std::numeric_limits<qint64>::max() / 2;
    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, cramped);
    engine.start();
    const UpdateCheckResult check = checkNow(engine);
    QCOMPARE(check.outcome, CheckOutcome::UpdateAvailable);
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    const int requests = m_server->requestCount();
    engine.downloadAndInstall(check.item);
    QVERIFY(installed.wait(waitLimit));
    const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
    QCOMPARE(result.outcome, InstallOutcome::Failed);
    QVERIFY2(result.message.contains(QStringLiteral("not enough free space")),
             qPrintable(result.message));
    // Not even asked for.
    QCOMPARE(m_server->requestCount(), requests);
    QCOMPARE(entries(m_downloads), QStringList());
}

void TestUpdateEngine::installKeepsExistingDownload()
{
    serveRelease({200, {}});
    QVERIFY(QDir().mkpath(m_downloads));
    QFile existing(QDir(m_downloads).filePath(savedName));
    QVERIFY(existing.open(QIODevice::WriteOnly));
    existing.write("the user's own file");
    existing.close();

    MemoryPreferencesStore preferences;
    UpdateEngine engine(preferences, configuration(false));
    engine.start();
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    engine.downloadAndInstall(checkNow(engine).item);
    QVERIFY(installed.wait(waitLimit));

    const auto result = installed.at(0).at(0).value<UpdateInstallResult>();
    QCOMPARE(result.outcome, InstallOutcome::Saved);
    QCOMPARE(QFileInfo(result.path).fileName(), QStringLiteral("Zonara-1.0.0-x86_64 (1).AppImage"));
    QVERIFY(existing.open(QIODevice::ReadOnly));
    QCOMPARE(existing.readAll(), QByteArray("the user's own file"));
}

void TestUpdateEngine::cancelDownload()
{
    serveRelease({200, {}, Mode::Stall});
    MemoryPreferencesStore preferences;
    UpdateConfiguration slow = configuration(false);
    slow.stallTimeout = 60s;
    UpdateEngine engine(preferences, slow);
    engine.start();
    QSignalSpy installed(&engine, &UpdateEngine::installFinished);
    engine.downloadAndInstall(checkNow(engine).item);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount(), 2, waitLimit);

    engine.cancel();
    QVERIFY(engine.canCheckForUpdates());
    QCOMPARE(installed.size(), 1);
    QCOMPARE(installed.at(0).at(0).value<UpdateInstallResult>().outcome, InstallOutcome::Cancelled);
    QCOMPARE(entries(m_downloads), QStringList());
}

void TestUpdateEngine::allowsAutomaticUpdates_data()
{
    QTest::addColumn<QString>("imageName"); // in the apps folder
    QTest::addColumn<bool>("readOnly");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("writable AppImage") << appImageName << false << true;
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
    setup.appImagePath = QDir(m_appDir).filePath(imageName);
    if (readOnly)
        QFile::setPermissions(setup.appImagePath, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyDownloadsKey, true);
    UpdateEngine engine(preferences, setup);
    QSignalSpy changed(&engine, &UpdateEngine::allowsAutomaticUpdatesChanged);
    engine.start();
    QCOMPARE(engine.allowsAutomaticUpdates(), allowed);
    QCOMPARE(changed.size(), allowed ? 1 : 0);
    // A stored wish to download by itself only applies where it is allowed.
    QCOMPARE(engine.automaticallyDownloadsUpdates(), allowed);
}

void TestUpdateEngine::nextScheduledCheck_data()
{
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QString>("lastCheck"); // as stored
    QTest::addColumn<QString>("expected");  // empty: none planned

    // It is 2026-01-05T12:00:00Z, and the first check waits a minute after the start.
    QTest::newRow("automatic checks off") << false << "2026-01-04T12:00:00.000Z" << QString();
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
    preferences.writeText(UpdateEngine::lastCheckDateKey, lastCheck);
    UpdateConfiguration setup = configuration(false);
    setup.firstCheckDelay = 1min;
    setup.currentTime = [] {
        return QDateTime::fromString(QStringLiteral("2026-01-05T12:00:00Z"), Qt::ISODate);
    };
    UpdateEngine engine(preferences, setup);
    engine.start();
    QCOMPARE(engine.nextScheduledCheck(), QDateTime::fromString(expected, Qt::ISODateWithMs));

    engine.setAutomaticallyChecksForUpdates(!automatic);
    QCOMPARE(engine.nextScheduledCheck().isValid(), !automatic);
}

QTEST_GUILESS_MAIN(TestUpdateEngine)
#include "tst_updateengine.moc"
