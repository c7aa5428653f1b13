#include "UpdateEngine.h"

#include "Appcast.h"
#include "PreferencesStore.h"
#include "UpdateInstaller.h"
#include "UpdateSignature.h"
#include "UpdateUrlPolicy.h"
#include "UpdateVersion.h"

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>
#include <QTemporaryFile>

namespace {

using namespace std::chrono_literals;

// The schedule wakes at least this often, so that a suspended machine does
// not push the daily check back by the time it slept.
constexpr std::chrono::milliseconds scheduleWakeInterval = 1h;

QString feedFailure(UpdateTransfer::Result result, int httpStatus)
{
    switch (result) {
    case UpdateTransfer::Result::InsecureAddress:
        return QStringLiteral("The update feed moved to an address that is not secure.");
    case UpdateTransfer::Result::ServerError:
        return QStringLiteral("The update server answered with an error (HTTP %1).")
            .arg(httpStatus);
    case UpdateTransfer::Result::Stalled:
        return QStringLiteral("The update server stopped responding.");
    case UpdateTransfer::Result::TooLarge:
        return QStringLiteral("The update feed is too large to be real.");
    case UpdateTransfer::Result::WriteFailed:
    case UpdateTransfer::Result::ConnectionFailed:
    case UpdateTransfer::Result::Incomplete:
    case UpdateTransfer::Result::Completed:
    case UpdateTransfer::Result::Cancelled:
        break;
    }
    return QStringLiteral("Could not connect to the update server.");
}

QString downloadFailure(UpdateTransfer::Result result, int httpStatus)
{
    switch (result) {
    case UpdateTransfer::Result::InsecureAddress:
        return QStringLiteral("The update's download address is not secure, so it was not "
                              "downloaded.");
    case UpdateTransfer::Result::ServerError:
        return QStringLiteral("The update could not be downloaded: the server answered with an "
                              "error (HTTP %1).")
            .arg(httpStatus);
    case UpdateTransfer::Result::Stalled:
        return QStringLiteral("The update could not be downloaded: the server stopped "
                              "responding.");
    case UpdateTransfer::Result::TooLarge:
        return QStringLiteral("The download was larger than the update feed says, so it was "
                              "discarded.");
    case UpdateTransfer::Result::Incomplete:
        return QStringLiteral("The download was incomplete, so it was discarded.");
    case UpdateTransfer::Result::WriteFailed:
        return QStringLiteral("The update could not be saved: the disk refused to write it.");
    case UpdateTransfer::Result::ConnectionFailed:
    case UpdateTransfer::Result::Completed:
    case UpdateTransfer::Result::Cancelled:
        break;
    }
    return QStringLiteral("The update could not be downloaded: could not connect to the server.");
}

QDateTime later(const QDateTime &a, const QDateTime &b)
{
    if (!a.isValid())
        return b;
    if (!b.isValid())
        return a;
    return a < b ? b : a;
}

} // namespace

UpdateEngine::UpdateEngine(PreferencesStore &preferences, UpdateConfiguration configuration,
                           QObject *parent)
    : QObject(parent)
    , m_preferences(preferences)
    , m_configuration(std::move(configuration))
{
    m_automaticallyChecks = m_preferences.readBool(automaticallyChecksKey);
    m_automaticallyDownloadsStored = m_preferences.readBool(automaticallyDownloadsKey);
    if (const auto text = m_preferences.readText(lastCheckDateKey))
        m_lastCheckDate = QDateTime::fromString(*text, Qt::ISODateWithMs);
    m_skippedVersion = m_preferences.readText(skippedVersionKey).value_or(QString());
    m_scheduleTimer.setSingleShot(true);
    connect(&m_scheduleTimer, &QTimer::timeout, this, &UpdateEngine::onScheduleTimer);
}

UpdateEngine::~UpdateEngine()
{
    discardTransfer();
}

void UpdateEngine::discardTransfer()
{
    if (m_transfer) {
        m_transfer->disconnect(this);
        delete m_transfer;
    }
    // Removes any unverified download from the disk.
    m_download.reset();
}

QString UpdateEngine::startupProblem()
{
    if (m_configuration.feedUrl.isEmpty())
        return QStringLiteral("this build has no update feed.");
    if (!UpdateUrlPolicy::isAllowed(m_configuration.feedUrl))
        return QStringLiteral("the update feed address of this build is not a secure (HTTPS) "
                              "address.");
    if (m_configuration.publicKeyBase64.trimmed().isEmpty())
        return QStringLiteral("this build has no key to verify updates with.");
    const auto key = UpdateSignature::publicKeyFromBase64(m_configuration.publicKeyBase64);
    if (!key)
        return QStringLiteral("the key this build verifies updates with is not valid.");
    if (!UpdateSignature::initialize())
        return QStringLiteral("the signature library could not be started.");
    m_publicKey = *key;
    return {};
}

bool UpdateEngine::installationIsWritable() const
{
    if (m_configuration.appImagePath.isEmpty())
        return false;
    const QFileInfo image(m_configuration.appImagePath);
    // Replacing it means creating a file beside it and renaming over it.
    return image.isFile() && image.isWritable() && QFileInfo(image.absolutePath()).isWritable();
}

void UpdateEngine::start()
{
    if (m_phase != Phase::NotStarted)
        return;
    if (const QString problem = startupProblem(); !problem.isEmpty()) {
        m_startupError = QStringLiteral("Updates are unavailable: ") + problem;
        setPhase(Phase::Unavailable);
        Q_EMIT startupErrorChanged(m_startupError);
        return;
    }
    m_startedAt = m_configuration.currentTime();
    if (installationIsWritable()) {
        m_allowsAutomaticUpdates = true;
        Q_EMIT allowsAutomaticUpdatesChanged(true);
        if (m_automaticallyDownloadsStored)
            Q_EMIT automaticallyDownloadsUpdatesChanged(true);
    }
    setPhase(Phase::Idle);
    reschedule();
}

bool UpdateEngine::automaticallyDownloadsUpdates() const
{
    return m_allowsAutomaticUpdates && m_automaticallyDownloadsStored;
}

void UpdateEngine::setPhase(Phase phase)
{
    if (phase == m_phase)
        return;
    const bool couldCheck = canCheckForUpdates();
    m_phase = phase;
    Q_EMIT phaseChanged(phase);
    if (couldCheck != canCheckForUpdates())
        Q_EMIT canCheckForUpdatesChanged(canCheckForUpdates());
}

void UpdateEngine::setAutomaticallyChecksForUpdates(bool enabled)
{
    if (enabled == m_automaticallyChecks)
        return;
    m_automaticallyChecks = enabled;
    m_preferences.writeBool(automaticallyChecksKey, enabled);
    Q_EMIT automaticallyChecksForUpdatesChanged(enabled);
    reschedule();
}

void UpdateEngine::setAutomaticallyDownloadsUpdates(bool enabled)
{
    if (enabled && !m_allowsAutomaticUpdates)
        return;
    const bool before = automaticallyDownloadsUpdates();
    if (enabled != m_automaticallyDownloadsStored) {
        m_automaticallyDownloadsStored = enabled;
        m_preferences.writeBool(automaticallyDownloadsKey, enabled);
    }
    if (before != automaticallyDownloadsUpdates())
        Q_EMIT automaticallyDownloadsUpdatesChanged(automaticallyDownloadsUpdates());
}

void UpdateEngine::skipVersion(const QString &version)
{
    if (version == m_skippedVersion)
        return;
    m_skippedVersion = version;
    m_preferences.writeText(skippedVersionKey, version);
    Q_EMIT skippedVersionChanged(version);
}

void UpdateEngine::checkForUpdates(UpdateOrigin origin)
{
    if (m_phase != Phase::Idle)
        return;
    m_origin = origin;
    m_feedBuffer.close();
    m_feedBuffer.setData(QByteArray());
    m_feedBuffer.open(QIODevice::WriteOnly);
    UpdateTransfer::Limits limits;
    limits.maximumSize = m_configuration.maximumFeedSize;
    limits.stallTimeout = m_configuration.stallTimeout;
    m_transfer = new UpdateTransfer(m_network, m_configuration.feedUrl, m_feedBuffer, limits, this);
    connect(m_transfer, &UpdateTransfer::finished, this, &UpdateEngine::onFeedFinished);
    setPhase(Phase::Checking);
    m_transfer->start();
}

void UpdateEngine::cancel()
{
    if (m_transfer)
        m_transfer->cancel();
}

void UpdateEngine::onFeedFinished(UpdateTransfer::Result result)
{
    const int httpStatus = m_transfer->httpStatus();
    m_transfer->deleteLater();
    m_transfer = nullptr;
    m_feedBuffer.close();
    const QByteArray document = m_feedBuffer.data();
    m_feedBuffer.setData(QByteArray());

    UpdateCheckResult check;
    check.origin = m_origin;
    if (result == UpdateTransfer::Result::Cancelled) {
        check.outcome = UpdateCheckResult::Outcome::Cancelled;
        finishCheck(check);
        return;
    }
    if (result != UpdateTransfer::Result::Completed) {
        check.message = feedFailure(result, httpStatus);
        finishCheck(check);
        return;
    }
    const auto items = Appcast::parse(document);
    if (!items) {
        check.message = QStringLiteral("The update feed could not be read: it is not a valid "
                                       "update feed.");
        finishCheck(check);
        return;
    }
    const auto newest = Appcast::newest(*items);
    if (!newest) {
        check.message = QStringLiteral("The update feed lists no releases.");
        finishCheck(check);
        return;
    }
    recordCheck();
    // An unreadable version of our own is treated as older than any release.
    const bool isNewer =
        UpdateVersion::compare(newest->version, m_configuration.currentVersion).value_or(1) > 0;
    // Only the schedule honours a skipped version; asking explicitly shows it.
    const bool isSkipped =
        m_origin == UpdateOrigin::Scheduled &&
        UpdateVersion::compare(newest->version, m_skippedVersion).value_or(1) <= 0;
    if (!isNewer || isSkipped) {
        check.outcome = UpdateCheckResult::Outcome::UpToDate;
        finishCheck(check);
        return;
    }
    check.outcome = UpdateCheckResult::Outcome::UpdateAvailable;
    check.item = *newest;
    check.installsAutomatically =
        m_origin == UpdateOrigin::Scheduled && automaticallyDownloadsUpdates();
    if (check.installsAutomatically) {
        // Straight from checking to downloading, never idle in between.
        Q_EMIT checkFinished(check);
        beginDownload(check.item, UpdateOrigin::Scheduled);
        return;
    }
    finishCheck(check);
}

void UpdateEngine::finishCheck(UpdateCheckResult result)
{
    setPhase(Phase::Idle);
    Q_EMIT checkFinished(result);
    reschedule();
}

void UpdateEngine::recordCheck()
{
    m_lastCheckDate = m_configuration.currentTime().toUTC();
    m_preferences.writeText(lastCheckDateKey, m_lastCheckDate.toString(Qt::ISODateWithMs));
    Q_EMIT lastUpdateCheckDateChanged(m_lastCheckDate);
}

void UpdateEngine::downloadAndInstall(const AppcastItem &item, UpdateOrigin origin)
{
    if (m_phase != Phase::Idle)
        return;
    beginDownload(item, origin);
}

void UpdateEngine::beginDownload(const AppcastItem &item, UpdateOrigin origin)
{
    m_origin = origin;
    m_downloadItem = item;
    setPhase(Phase::Downloading);

    const QString directory = m_allowsAutomaticUpdates
                                  ? QFileInfo(m_configuration.appImagePath).absolutePath()
                                  : m_configuration.downloadDirectory;
    // Hidden, and removed on any failure: nothing unverified is left visible.
    // The whole release lands on disk before it can be verified: it must
    // fit with room to spare, so that a feed cannot fill the disk.
    bool roomy = true;
    if (!directory.isEmpty() && QDir().mkpath(directory)) {
        const QStorageInfo disk(directory);
        roomy = !disk.isValid() ||
                disk.bytesAvailable() - item.length >= m_configuration.freeSpaceReserve;
        if (roomy) {
            m_download = std::make_unique<QTemporaryFile>(
                QDir(directory).filePath(QStringLiteral(".zonara-update-XXXXXX")));
        }
    }
    if (!m_download || !m_download->open()) {
        m_download.reset();
        UpdateInstallResult failed;
        failed.origin = origin;
        failed.item = item;
        const QString shown = QDir::toNativeSeparators(directory);
        failed.message =
            directory.isEmpty() ? QStringLiteral("There is no folder to save the update in.")
            : !roomy
                ? QStringLiteral("There is not enough free space in %1 for the update.").arg(shown)
                : QStringLiteral("The update could not be saved in %1.").arg(shown);
        // Results always come after the call that asked for them.
        QMetaObject::invokeMethod(
            this, [this, failed] { finishInstall(failed); }, Qt::QueuedConnection);
        return;
    }
    UpdateTransfer::Limits limits;
    limits.maximumSize = item.length;
    limits.exactSize = true;
    limits.stallTimeout = m_configuration.stallTimeout;
    m_transfer = new UpdateTransfer(m_network, item.downloadUrl, *m_download, limits, this);
    connect(m_transfer, &UpdateTransfer::progress, this,
            [this](qint64 received) { Q_EMIT downloadProgress(received, m_downloadItem.length); });
    connect(m_transfer, &UpdateTransfer::finished, this, &UpdateEngine::onDownloadFinished);
    m_transfer->start();
}

void UpdateEngine::onDownloadFinished(UpdateTransfer::Result result)
{
    const int httpStatus = m_transfer->httpStatus();
    m_transfer->deleteLater();
    m_transfer = nullptr;

    UpdateInstallResult install;
    install.origin = m_origin;
    install.item = m_downloadItem;
    if (result != UpdateTransfer::Result::Completed) {
        m_download.reset();
        if (result == UpdateTransfer::Result::Cancelled)
            install.outcome = UpdateInstallResult::Outcome::Cancelled;
        else
            install.message = downloadFailure(result, httpStatus);
        finishInstall(install);
        return;
    }
    if (!m_download->flush() ||
        !UpdateSignature::verifyRelease(m_download->fileName(), m_downloadItem.version,
                                        m_downloadItem.signature, m_publicKey)) {
        m_download.reset();
        install.message = QStringLiteral("The update's signature is not valid, so it was "
                                         "discarded. Nothing was installed.");
        finishInstall(install);
        return;
    }
    QString error;
    if (m_allowsAutomaticUpdates) {
        if (UpdateInstaller::replace(*m_download, m_configuration.appImagePath, &error)) {
            install.outcome = UpdateInstallResult::Outcome::Installed;
            install.path = m_configuration.appImagePath;
        } else {
            install.message = QStringLiteral("The update could not be installed: %1.").arg(error);
        }
    } else {
        install.path = UpdateInstaller::keep(*m_download,
                                             UpdateInstaller::fileNameFor(m_downloadItem), &error);
        if (!install.path.isEmpty())
            install.outcome = UpdateInstallResult::Outcome::Saved;
        else
            install.message = QStringLiteral("The update could not be saved: %1.").arg(error);
    }
    m_download.reset();
    finishInstall(install);
}

void UpdateEngine::finishInstall(UpdateInstallResult result)
{
    setPhase(Phase::Idle);
    Q_EMIT installFinished(result);
    reschedule();
}

void UpdateEngine::reschedule()
{
    const bool running =
        m_phase == Phase::Idle || m_phase == Phase::Checking || m_phase == Phase::Downloading;
    if (!running || !m_automaticallyChecks) {
        m_scheduleTimer.stop();
        m_nextScheduledCheck = QDateTime();
        return;
    }
    const QDateTime now = m_configuration.currentTime();
    const QDateTime lastChecked = later(m_lastCheckDate, m_lastScheduledAttempt);
    const QDateTime earliest =
        m_startedAt.addMSecs(qint64(m_configuration.firstCheckDelay.count()));
    m_nextScheduledCheck =
        lastChecked.isValid()
            ? later(lastChecked.addMSecs(qint64(m_configuration.checkInterval.count())), earliest)
            : earliest;
    const qint64 wait =
        std::clamp<qint64>(now.msecsTo(m_nextScheduledCheck), 0, scheduleWakeInterval.count());
    m_scheduleTimer.start(std::chrono::milliseconds(wait));
}

void UpdateEngine::onScheduleTimer()
{
    // A session under way plans the next check when it ends.
    if (m_phase != Phase::Idle)
        return;
    const QDateTime now = m_configuration.currentTime();
    if (m_nextScheduledCheck.isValid() && now >= m_nextScheduledCheck) {
        m_lastScheduledAttempt = now;
        checkForUpdates(UpdateOrigin::Scheduled);
        return;
    }
    reschedule(); // woken early, to catch up after a suspend
}
