#include "AppUpdater.h"
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
        shown << "downloading " + item.version;
    }
    void showProgress(qint64 received, qint64 total) override
    {
        if (received > total)
            shown << QStringLiteral("progress beyond the total");
    }
    void showUpToDate(const QString &current) override { shown << "up to date " + current; }
    void showUpdateFound(const AppcastItem &item, const QString &current, bool inPlace) override
    {
        shown << QStringLiteral("found %1 over %2, %3")
                     .arg(item.displayVersion, current, inPlace ? "install" : "download");
    }
    void showInstalled(const AppcastItem &item) override { shown << "installed " + item.version; }
    void showSaved(const AppcastItem &item, const QString &path) override
    {
        shown << QStringLiteral("saved %1 as %2").arg(item.version, QFileInfo(path).fileName());
    }
    void showError(const QString &message) override { shown << "error: " + message; }
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

    void startupError_data();
    void startupError();
    void preferences();
    void userSession_data();
    void userSession();
    void skipThisVersion();
    void cancelWhileChecking();

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
                    {200, feed({{version, m_server->url(path), payload.size(),
                                 signRelease(payload, version, m_keys), version + " (shown)"}})});
    m_server->serve(path, {200, payload});
}

void TestAppUpdater::startupError_data()
{
    QTest::addColumn<QString>("feedUrl");
    QTest::addColumn<bool>("validKey"); // otherwise: none
    QTest::addColumn<QString>("error");

    QTest::newRow("no feed") << QString() << true << "this build has no update feed.";
    QTest::newRow("plain HTTP feed")
        << "http://zonara.example/appcast.xml" << true
        << "the update feed address of this build is not a secure (HTTPS) address.";
    QTest::newRow("no key") << "https://zonara.example/appcast.xml" << false
                            << "this build has no key to verify updates with.";
}

void TestAppUpdater::startupError()
{
    QFETCH(QString, feedUrl);
    QFETCH(bool, validKey);
    QFETCH(QString, error);
    UpdateConfiguration setup = configuration(true);
    setup.feedUrl = QUrl(feedUrl);
    setup.publicKeyBase64 = validKey ? m_keys.publicKeyBase64() : QByteArray();
    MemoryPreferencesStore preferences;
    RecordingDriver driver;
    AppUpdater updater(preferences, setup, &driver);
    QCOMPARE(updater.startupError(), "Updates are unavailable: " + error);
    QVERIFY(!updater.canCheckForUpdates());

    // Nothing happens afterwards, and the error stays the only one.
    QSignalSpy errorChanged(&updater, &AppUpdater::startupErrorChanged);
    updater.checkForUpdates();
    QCoreApplication::processEvents();
    QCOMPARE(driver.shown, QStringList());
    QCOMPARE(m_server->requestCount(), 0);
    QCOMPARE(errorChanged.size(), 0);
    QVERIFY(!updater.canCheckForUpdates());
}

void TestAppUpdater::preferences()
{
    MemoryPreferencesStore preferences;
    preferences.writeText(UpdateEngine::lastCheckDateKey, "2026-01-04T08:30:00.000Z");
    RecordingDriver driver;
    AppUpdater packaged(preferences, configuration(false), &driver);
    QCOMPARE(packaged.lastUpdateCheckDate(), QDateTime(QDate(2026, 1, 4), QTime(8, 30), Qt::UTC));
    // Downloading by itself needs an AppImage to replace: the switch springs back.
    QSignalSpy refused(&packaged, &AppUpdater::automaticallyDownloadsUpdatesChanged);
    packaged.setAutomaticallyDownloadsUpdates(true);
    QCOMPARE(refused.size(), 1);
    QVERIFY(!packaged.automaticallyDownloadsUpdates());
    QVERIFY(!preferences.contains(UpdateEngine::automaticallyDownloadsKey));

    AppUpdater updater(preferences, configuration(true), &driver);
    QSignalSpy downloads(&updater, &AppUpdater::automaticallyDownloadsUpdatesChanged);
    QVERIFY(updater.setProperty("automaticallyChecksForUpdates", true));
    updater.setAutomaticallyDownloadsUpdates(true);
    updater.setAutomaticallyDownloadsUpdates(true); // unchanged: not announced again
    QCOMPARE(downloads.size(), 1);
    QVERIFY(preferences.readBool(UpdateEngine::automaticallyChecksKey));
    QVERIFY(preferences.readBool(UpdateEngine::automaticallyDownloadsKey));
}

void TestAppUpdater::userSession_data()
{
    QTest::addColumn<bool>("appImage");
    QTest::addColumn<bool>("scheduled");  // with automatic checks and downloads on
    QTest::addColumn<QString>("release"); // empty: the feed fails
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<bool>("installed");

    const QString found = QStringLiteral("found 1.0.0 (shown) over 0.1.0, ");
    QTest::newRow("up to date") << false << false << "0.1.0"
                                << QStringList{"checking", "up to date 0.1.0"} << false;
    QTest::newRow("feed fails")
        << false << false << QString()
        << QStringList{"checking", "error: The update server answered with an error (HTTP 404)."}
        << false;
    QTest::newRow("packaged: download and reveal")
        << false << false << "1.0.0"
        << QStringList{"checking", found + "download", "downloading 1.0.0",
                       "saved 1.0.0 as Zonara-1.0.0.AppImage"}
        << false;
    QTest::newRow("AppImage: install and restart")
        << true << false << "1.0.0"
        << QStringList{"checking", found + "install", "downloading 1.0.0", "installed 1.0.0"}
        << true;
    QTest::newRow("scheduled, up to date: silent")
        << false << true << "0.1.0" << QStringList() << false;
    QTest::newRow("scheduled, packaged: offered")
        << false << true << "1.0.0" << QStringList{found + "download"} << false;
    QTest::newRow("scheduled, AppImage: installed quietly for the next start")
        << true << true << "1.0.0" << QStringList() << true;
}

void TestAppUpdater::userSession()
{
    QFETCH(bool, appImage);
    QFETCH(bool, scheduled);
    QFETCH(QString, release);
    QFETCH(QStringList, shown);
    QFETCH(bool, installed);
    if (!release.isEmpty())
        serveRelease(release);
    MemoryPreferencesStore preferences;
    preferences.writeBool(UpdateEngine::automaticallyChecksKey, scheduled);
    preferences.writeBool(UpdateEngine::automaticallyDownloadsKey, scheduled);
    UpdateConfiguration setup = configuration(appImage);
    setup.firstCheckDelay = 0ms;
    RecordingDriver driver;
    AppUpdater updater(preferences, setup, &driver);
    QSignalSpy lastCheck(&updater, &AppUpdater::lastUpdateCheckDateChanged);
    QSignalSpy installs(&updater.engine(), &UpdateEngine::installFinished);

    if (scheduled) {
        QVERIFY(lastCheck.wait(waitLimit));
        QTRY_COMPARE_WITH_TIMEOUT(installs.size(), installed ? 1 : 0, waitLimit);
    } else {
        updater.checkForUpdates();
        QVERIFY(!updater.canCheckForUpdates());
        updater.checkForUpdates(); // already checking: nothing more
        QVERIFY(driver.waitFor(2));
        if (shown.size() > 2) {
            Q_EMIT driver.installRequested();
            QVERIFY(driver.waitFor(4));
        }
    }
    QTRY_VERIFY_WITH_TIMEOUT(updater.canCheckForUpdates(), waitLimit);
    QCOMPARE(driver.shown, shown);
    QCOMPARE(updater.lastUpdateCheckDate().isValid(), !release.isEmpty());
    if (scheduled) // the next one is a day after this check, not right away
        QVERIFY(updater.engine().nextScheduledCheck() >
                updater.lastUpdateCheckDate().addSecs(23 * 3600));

    QFile image(configuration(true).appImagePath);
    QVERIFY(image.open(QIODevice::ReadOnly));
    QCOMPARE(image.readAll() == "old", !installed);
    Q_EMIT driver.restartRequested();
    QCOMPARE(m_restarts, installed ? QStringList{image.fileName()} : QStringList());
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
    m_server->serve(QStringLiteral("/appcast.xml"),
                    {200, QByteArray(1000, ' '), LoopbackHttpServer::Mode::Stall});
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

QTEST_GUILESS_MAIN(TestAppUpdater)
#include "tst_appupdater.moc"
