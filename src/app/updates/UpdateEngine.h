#pragma once

#include "AppcastItem.h"
#include "UpdateCheckResult.h"
#include "UpdateConfiguration.h"
#include "UpdateInstallResult.h"
#include "UpdateTransfer.h"

#include <QBuffer>
#include <QDateTime>
#include <QNetworkAccessManager>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class PreferencesStore;
class QTemporaryFile;

// The updater without any user interface: reads the feed, picks the newest
// release, downloads and verifies it, installs or saves it, keeps the update
// preferences and runs the daily check. Dialogs react to its results.
class UpdateEngine final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Phase phase READ phase NOTIFY phaseChanged)
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)
    Q_PROPERTY(bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates WRITE
                   setAutomaticallyChecksForUpdates NOTIFY automaticallyChecksForUpdatesChanged)
    Q_PROPERTY(bool automaticallyDownloadsUpdates READ automaticallyDownloadsUpdates WRITE
                   setAutomaticallyDownloadsUpdates NOTIFY automaticallyDownloadsUpdatesChanged)
    Q_PROPERTY(bool allowsAutomaticUpdates READ allowsAutomaticUpdates NOTIFY
                   allowsAutomaticUpdatesChanged)
    Q_PROPERTY(
        QDateTime lastUpdateCheckDate READ lastUpdateCheckDate NOTIFY lastUpdateCheckDateChanged)
    Q_PROPERTY(QString skippedVersion READ skippedVersion NOTIFY skippedVersionChanged)
    Q_PROPERTY(QString startupError READ startupError NOTIFY startupErrorChanged)
public:
    enum class Phase { NotStarted, Unavailable, Idle, Checking, Downloading };
    Q_ENUM(Phase)

    static inline const QString automaticallyChecksKey =
        QStringLiteral("updates.automaticallyChecks");
    static inline const QString automaticallyDownloadsKey =
        QStringLiteral("updates.automaticallyDownloads");
    static inline const QString lastCheckDateKey = QStringLiteral("updates.lastCheckDate");
    static inline const QString skippedVersionKey = QStringLiteral("updates.skippedVersion");

    // Reads the stored preferences; nothing else happens before start().
    UpdateEngine(PreferencesStore &preferences, UpdateConfiguration configuration,
                 QObject *parent = nullptr);
    ~UpdateEngine() override;

    // Checks this build's configuration once. On failure startupError() says
    // why and the engine stays Unavailable for good.
    void start();

    const UpdateConfiguration &configuration() const { return m_configuration; }
    Phase phase() const { return m_phase; }
    bool canCheckForUpdates() const { return m_phase == Phase::Idle; }
    bool automaticallyChecksForUpdates() const { return m_automaticallyChecks; }
    // Only ever true while automatic installs are allowed.
    bool automaticallyDownloadsUpdates() const;
    // True exactly when this installation can replace itself (an AppImage
    // the user may write).
    bool allowsAutomaticUpdates() const { return m_allowsAutomaticUpdates; }
    QDateTime lastUpdateCheckDate() const { return m_lastCheckDate; }
    QString skippedVersion() const { return m_skippedVersion; }
    QString startupError() const { return m_startupError; }
    // When the next automatic check is due; invalid while none is planned.
    QDateTime nextScheduledCheck() const { return m_nextScheduledCheck; }

    void setAutomaticallyChecksForUpdates(bool enabled);
    // Turning it on is refused while automatic installs are not allowed.
    void setAutomaticallyDownloadsUpdates(bool enabled);
    void skipVersion(const QString &version);

    // Each does nothing unless the engine is idle; the result comes as a
    // signal, never from within the call.
    void checkForUpdates(UpdateOrigin origin = UpdateOrigin::User);
    void downloadAndInstall(const AppcastItem &item, UpdateOrigin origin = UpdateOrigin::User);
    // Stops a check or download at once; its result comes out as Cancelled.
    void cancel();

Q_SIGNALS:
    void phaseChanged(UpdateEngine::Phase phase);
    void canCheckForUpdatesChanged(bool canCheck);
    void automaticallyChecksForUpdatesChanged(bool enabled);
    void automaticallyDownloadsUpdatesChanged(bool enabled);
    void allowsAutomaticUpdatesChanged(bool allowed);
    void lastUpdateCheckDateChanged(const QDateTime &date);
    void skippedVersionChanged(const QString &version);
    void startupErrorChanged(const QString &error);

    void checkFinished(const UpdateCheckResult &result);
    void downloadProgress(qint64 received, qint64 total);
    void installFinished(const UpdateInstallResult &result);

private:
    QString startupProblem();
    bool installationIsWritable() const;
    void setPhase(Phase phase);
    void onFeedFinished(UpdateTransfer::Result result);
    void finishCheck(UpdateCheckResult result);
    void beginDownload(const AppcastItem &item, UpdateOrigin origin);
    void onDownloadFinished(UpdateTransfer::Result result);
    void finishInstall(UpdateInstallResult result);
    void recordCheck();
    void reschedule();
    void onScheduleTimer();
    void discardTransfer();

    PreferencesStore &m_preferences;
    UpdateConfiguration m_configuration;
    QByteArray m_publicKey;
    QNetworkAccessManager m_network;

    Phase m_phase = Phase::NotStarted;
    bool m_automaticallyChecks = false;
    bool m_automaticallyDownloadsStored = false;
    bool m_allowsAutomaticUpdates = false;
    QDateTime m_lastCheckDate;
    QString m_skippedVersion;
    QString m_startupError;

    UpdateOrigin m_origin = UpdateOrigin::User;
    QPointer<UpdateTransfer> m_transfer;
    QBuffer m_feedBuffer;
    std::unique_ptr<QTemporaryFile> m_download;
    AppcastItem m_downloadItem;

    QTimer m_scheduleTimer;
    QDateTime m_startedAt;
    QDateTime m_lastScheduledAttempt;
    QDateTime m_nextScheduledCheck;
};
