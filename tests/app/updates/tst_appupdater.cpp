#include "AppUpdater.h"
#include "LoopbackHttpServer.h"
#include "MemoryPreferencesStore.h"
#include "UpdateEngine.h"
#include "UpdateTestSupport.h"
#include "UpdateUserDriver.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace std::chrono_literals;
using namespace UpdateTestSupport;
using Mode = LoopbackHttpServer::Mode;

namespace {

constexpr int waitLimit = 10000;

// Writes down what the user would see, one line per dialog page.
class RecordingDriver final : public UpdateUserDriver
{
    Q_OBJECT
public:
    QStringList shown;

    void showChecking() override { shown << QStringLiteral("checking"); }
    void showDownloading(const AppcastItem &item) override
    {
        shown << QStringLiteral("downloading ") + item.version;
    }
    void showProgress(qint64 received, qint64 total) override
    {
        if (received > total)
            shown << QStringLiteral("progress beyond the total");
    }
    void showUpToDate(const QString &currentVersion) override
    {
        shown << QStringLiteral("up to date ") + currentVersion;
    }
    void showUpdateFound(const AppcastItem &item, const QString &currentVersion,
                         bool installsInPlace) override
    {
        shown << QStringLiteral("found %1 over %2, %3")
                     .arg(item.displayVersion, currentVersion,
                          installsInPlace ? QStringLiteral("install") : QStringLiteral("download"));
    }
    void showInstalled(const AppcastItem &item) override
    {
        shown << QStringLiteral("installed ") + item.version;
    }
    void showSaved(const AppcastItem &item, const QString &path) override
    {
        shown << QStringLiteral("saved %1 as %2").arg(item.version, QFileInfo(path).fileName());
    }
    void showError(const QString &message) override
    {
        shown << QStringLiteral("error: ") + message;
    }
    void dismiss() override { shown << QStringLiteral("dismissed"); }

    // Waits until the user has been shown count pages.
    bool waitFor(qsizetype count)
    {
        return QTest::qWaitFor([&] { return shown.size() >= count; }, waitLimit) &&
               shown.size() == count;
    }
};

} // namespace

class TestAppUpdater : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void startupError_data();
    void startupError();
    void thisBuildWithoutFeed();
    void mirrorsStoredPreferences();
    void refusedChangeSpringsBack();
    void acceptedChangeIsStored();
    void userSession_data();
    void userSession();
    void skipThisVersion();
    void cancelWhileChecking();
    void scheduledCheckSpeaksOnlyWhenSomethingIsNew_data();
    void scheduledCheckSpeaksOnlyWhenSomethingIsNew();

private:
    UpdateConfiguration configuration(bool appImage);
    void serveRelease(const QString &version);

    std::unique_ptr<LoopbackHttpServer> m_server;
    std::unique_ptr<QTemporaryDir> m_dir;
    KeyPair m_keys = makeKeyPair();
    QStringList m_restarts;
};

void TestAppUpdater::init()
{
    m_server = std::make_unique<LoopbackHttpServer>();
    m_dir = std::make_unique<QTemporaryDir>();
    m_restarts.clear();
    QFile image(m_dir->filePath(QStringLiteral("Zonara.AppImage")));
    QVERIFY(image.open(QIODevice::WriteOnly));
    image.write("old");
}

void TestAppUpdater::cleanup()
{
    m_server.reset();
    m_dir.reset();
}

UpdateConfiguration TestAppUpdater::configuration(bool appImage)
{
    UpdateConfiguration configuration;
    configuration.feedUrl = m_server->url(QStringLiteral("/appcast.xml"));
    configuration.publicKeyBase64 = m_keys.publicKeyBase64();
    configuration.currentVersion = QStringLiteral("0.1.0");
    configuration.appImagePath =
        appImage ? m_dir->filePath(QStringLiteral("Zonara.AppImage")) : QString();
    configuration.downloadDirectory = m_dir->filePath(QStringLiteral("Downloads"));
    configuration.stallTimeout = 750ms;
    configuration.restart = [this](const QString &path) { m_restarts << path; };
    return configuration;
}

void TestAppUpdater::serveRelease(const QString &version)
{
    const QByteArray payload = releasePayload(version);
    const QString path = QStringLiteral("/Zonara-%1.AppImage").arg(version);
    m_server->serve(QStringLiteral("/appcast.xml"),
                    {200,
                     feed({{version, m_server->url(path), payload.size(), sign(payload, m_keys),
                            version + QStringLiteral(" (shown)")}}),
                     Mode::Normal,
                     {}});
    m_server->serve(path, {200, payload, Mode::Normal, {}});
}

void TestAppUpdater::startupError_data()
{
    QTest::addColumn<QString>("feedUrl");
    QTest::addColumn<QByteArray>("publicKey"); // "valid": the test's own key
    QTest::addColumn<QString>("error");

    QTest::newRow("no feed, no key")
        << QString() << QByteArray() << "Updates are unavailable: this build has no update feed.";
    QTest::newRow("no feed") << QString() << QByteArray("valid")
                             << "Updates are unavailable: this build has no update feed.";
    QTest::newRow("plain HTTP feed")
        << "http://zonara.example/appcast.xml" << QByteArray("valid")
        << "Updates are unavailable: the update feed address of this build is not a secure "
           "(HTTPS) address.";
    QTest::newRow("no key") << "https://zonara.example/appcast.xml" << QByteArray()
                            << "Updates are unavailable: this build has no key to verify "
                               "updates with.";
    QTest::newRow("short key") << "https://zonara.example/appcast.xml"
                               << QByteArray(31, 'k').toBase64()
                               << "Updates are unavailable: the key this build verifies updates "
                                  "with is not valid.";
}

void TestAppUpdater::startupError()
{
    QFETCH(QString, feedUrl);
    QFETCH(QByteArray, publicKey);
    QFETCH(QString, error);
    UpdateConfiguration setup = configuration(true);
    setup.feedUrl = QUrl(feedUrl);
    setup.publicKeyBase64 = publicKey == "valid" ? m_keys.publicKeyBase64() : publicKey;
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, setup, &driver);

    QCOMPARE(updater.startupError(), error);
    QVERIFY(!updater.canCheckForUpdates());
    QVERIFY(!updater.allowsAutomaticUpdates());
    QCOMPARE(updater.property("startupError").toString(), error);

    QSignalSpy errorChanged(&updater, &AppUpdater::startupErrorChanged);
    QSignalSpy canCheckChanged(&updater, &AppUpdater::canCheckForUpdatesChanged);
    updater.checkForUpdates();
    updater.setAutomaticallyDownloadsUpdates(true);
    QVERIFY(!updater.automaticallyDownloadsUpdates());
    QCoreApplication::processEvents(); // lets anything queued by the calls run
    QCOMPARE(driver.shown, QStringList());
    QCOMPARE(updater.engine().phase(), UpdateEngine::Phase::Unavailable);
    QCOMPARE(m_server->requestCount(), 0);
    QCOMPARE(errorChanged.size(), 0);
    QCOMPARE(canCheckChanged.size(), 0);
    QCOMPARE(updater.startupError(), error);
}

void TestAppUpdater::thisBuildWithoutFeed()
{
    if (ZONARA_TEST_BUILD_HAS_FEED)
        QSKIP("this build was configured with an update feed");
    MemoryPreferencesStore preferences;
    AppUpdater updater(preferences);
    QCOMPARE(updater.startupError(),
             QStringLiteral("Updates are unavailable: this build has no update feed."));
    QVERIFY(!updater.canCheckForUpdates());
    updater.checkForUpdates();
    QCOMPARE(updater.engine().phase(), UpdateEngine::Phase::Unavailable);
}

void TestAppUpdater::mirrorsStoredPreferences()
{
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyChecksKey, true);
    preferences.writeBool(UpdateEngine::automaticallyDownloadsKey, true);
    const QDateTime checked =
        QDateTime::fromString(QStringLiteral("2026-01-04T08:30:00.000Z"), Qt::ISODateWithMs);
    preferences.writeText(UpdateEngine::lastCheckDateKey, checked.toString(Qt::ISODateWithMs));
    RecordingDriver driver;
    AppUpdater updater(preferences, configuration(true), &driver);
    QVERIFY(updater.startupError().isEmpty());
    QVERIFY(updater.canCheckForUpdates());
    QVERIFY(updater.automaticallyChecksForUpdates());
    QVERIFY(updater.allowsAutomaticUpdates());
    QVERIFY(updater.automaticallyDownloadsUpdates());
    QCOMPARE(updater.lastUpdateCheckDate(), checked);

    AppUpdater packaged(preferences, configuration(false), &driver);
    QVERIFY(!packaged.allowsAutomaticUpdates());
    QVERIFY(!packaged.automaticallyDownloadsUpdates());
}

void TestAppUpdater::refusedChangeSpringsBack()
{
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, configuration(false), &driver);
    QSignalSpy changed(&updater, &AppUpdater::automaticallyDownloadsUpdatesChanged);
    updater.setAutomaticallyDownloadsUpdates(true);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toBool(), false);
    QVERIFY(!updater.automaticallyDownloadsUpdates());
    QVERIFY(!preferences.contains(UpdateEngine::automaticallyDownloadsKey));
}

void TestAppUpdater::acceptedChangeIsStored()
{
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, configuration(true), &driver);
    QSignalSpy checks(&updater, &AppUpdater::automaticallyChecksForUpdatesChanged);
    QSignalSpy downloads(&updater, &AppUpdater::automaticallyDownloadsUpdatesChanged);
    QVERIFY(updater.setProperty("automaticallyChecksForUpdates", true));
    updater.setAutomaticallyDownloadsUpdates(true);
    updater.setAutomaticallyDownloadsUpdates(true); // unchanged: not announced again
    QCOMPARE(checks.size(), 1);
    QCOMPARE(downloads.size(), 1);
    QVERIFY(updater.automaticallyChecksForUpdates());
    QVERIFY(updater.automaticallyDownloadsUpdates());
    QVERIFY(preferences.readBool(UpdateEngine::automaticallyChecksKey));
    QVERIFY(preferences.readBool(UpdateEngine::automaticallyDownloadsKey));
}

void TestAppUpdater::userSession_data()
{
    QTest::addColumn<bool>("appImage");
    QTest::addColumn<QString>("release"); // empty: the feed fails
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<bool>("restarts");

    QTest::newRow("up to date") << false << "0.1.0" << QStringList{"checking", "up to date 0.1.0"}
                                << false;
    QTest::newRow("feed fails") << false << QString()
                                << QStringList{"checking", "error: The update server answered "
                                                           "with an error (HTTP 404)."}
                                << false;
    QTest::newRow("packaged: download and reveal")
        << false << "1.0.0"
        << QStringList{"checking", "found 1.0.0 (shown) over 0.1.0, download", "downloading 1.0.0",
                       "saved 1.0.0 as Zonara-1.0.0.AppImage"}
        << false;
    QTest::newRow("AppImage: install and restart")
        << true << "1.0.0"
        << QStringList{"checking", "found 1.0.0 (shown) over 0.1.0, install", "downloading 1.0.0",
                       "installed 1.0.0"}
        << true;
}

void TestAppUpdater::userSession()
{
    QFETCH(bool, appImage);
    QFETCH(QString, release);
    QFETCH(QStringList, shown);
    QFETCH(bool, restarts);
    if (!release.isEmpty())
        serveRelease(release);
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, configuration(appImage), &driver);
    QSignalSpy canCheck(&updater, &AppUpdater::canCheckForUpdatesChanged);
    QSignalSpy lastCheck(&updater, &AppUpdater::lastUpdateCheckDateChanged);

    updater.checkForUpdates();
    QVERIFY(!updater.canCheckForUpdates());
    updater.checkForUpdates(); // already checking: nothing more
    QVERIFY(driver.waitFor(2));
    if (shown.size() > 2) {
        Q_EMIT driver.installRequested();
        QVERIFY(driver.waitFor(4));
    }
    QCOMPARE(driver.shown, shown);
    QTRY_VERIFY_WITH_TIMEOUT(updater.canCheckForUpdates(), waitLimit);
    QCOMPARE(lastCheck.size(), release.isEmpty() ? 0 : 1);
    QCOMPARE(updater.lastUpdateCheckDate().isValid(), !release.isEmpty());

    Q_EMIT driver.restartRequested();
    const QStringList expectedRestarts =
        restarts ? QStringList{m_dir->filePath(QStringLiteral("Zonara.AppImage"))} : QStringList();
    QCOMPARE(m_restarts, expectedRestarts);
}

void TestAppUpdater::skipThisVersion()
{
    serveRelease(QStringLiteral("1.0.0"));
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, configuration(false), &driver);
    updater.checkForUpdates();
    QVERIFY(driver.waitFor(2));
    Q_EMIT driver.skipRequested();
    QCOMPARE(preferences.readText(UpdateEngine::skippedVersionKey), QStringLiteral("1.0.0"));
    // Nothing is offered any more, so nothing can be installed now.
    Q_EMIT driver.installRequested();
    QCoreApplication::processEvents();
    QCOMPARE(driver.shown.size(), 2);
    QCOMPARE(m_server->requestCount(), 1);
}

void TestAppUpdater::cancelWhileChecking()
{
    m_server->serve(QStringLiteral("/appcast.xml"), {200, QByteArray(1000, ' '), Mode::Stall, {}});
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    UpdateConfiguration setup = configuration(false);
    setup.stallTimeout = 60s;
    AppUpdater updater(preferences, setup, &driver);
    updater.checkForUpdates();
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount(), 1, waitLimit);
    Q_EMIT driver.cancelRequested();
    QCOMPARE(driver.shown, (QStringList{"checking", "dismissed"}));
    QVERIFY(updater.canCheckForUpdates());
    QVERIFY(!updater.lastUpdateCheckDate().isValid());
}

void TestAppUpdater::scheduledCheckSpeaksOnlyWhenSomethingIsNew_data()
{
    QTest::addColumn<QString>("release");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("up to date: silent") << "0.1.0" << QStringList();
    QTest::newRow("newer: offered")
        << "2.0" << QStringList{"found 2.0 (shown) over 0.1.0, download"};
}

void TestAppUpdater::scheduledCheckSpeaksOnlyWhenSomethingIsNew()
{
    QFETCH(QString, release);
    QFETCH(QStringList, shown);
    serveRelease(release);
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyChecksKey, true);
    RecordingDriver driver;
    UpdateConfiguration setup = configuration(false);
    setup.firstCheckDelay = 0ms;
    AppUpdater updater(preferences, setup, &driver);
    QSignalSpy lastCheck(&updater, &AppUpdater::lastUpdateCheckDateChanged);
    QVERIFY(lastCheck.wait(waitLimit));
    QTRY_VERIFY_WITH_TIMEOUT(updater.canCheckForUpdates(), waitLimit);
    QCOMPARE(driver.shown, shown);
}

QTEST_GUILESS_MAIN(TestAppUpdater)
#include "tst_appupdater.moc"
