#pragma once

#include "AppcastItem.h"
#include "UpdateConfiguration.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>

#include <memory>
#include <optional>

class PreferencesStore;
class UpdateEngine;
class UpdateUserDriver;
struct UpdateCheckResult;
struct UpdateInstallResult;

// The program's one updater, as the settings window and the panel see it:
// observable mirrors of the engine's state, a user-initiated check with its
// dialogs, and the two automatic-update preferences.
class AppUpdater final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool canCheckForUpdates READ canCheckForUpdates NOTIFY canCheckForUpdatesChanged)
    Q_PROPERTY(bool automaticallyChecksForUpdates READ automaticallyChecksForUpdates WRITE
                   setAutomaticallyChecksForUpdates NOTIFY automaticallyChecksForUpdatesChanged)
    Q_PROPERTY(bool automaticallyDownloadsUpdates READ automaticallyDownloadsUpdates WRITE
                   setAutomaticallyDownloadsUpdates NOTIFY automaticallyDownloadsUpdatesChanged)
    Q_PROPERTY(bool allowsAutomaticUpdates READ allowsAutomaticUpdates NOTIFY
                   allowsAutomaticUpdatesChanged)
    Q_PROPERTY(
        QDateTime lastUpdateCheckDate READ lastUpdateCheckDate NOTIFY lastUpdateCheckDateChanged)
    Q_PROPERTY(QString startupError READ startupError NOTIFY startupErrorChanged)
public:
    // This build's feed and key, with the standard dialogs. Starts at once.
    explicit AppUpdater(PreferencesStore &preferences, QObject *parent = nullptr);
    // A given configuration and user interface (not owned; the standard
    // dialogs when null). Starts at once.
    AppUpdater(PreferencesStore &preferences, UpdateConfiguration configuration,
               UpdateUserDriver *driver, QObject *parent = nullptr);
    ~AppUpdater() override;

    bool canCheckForUpdates() const { return m_canCheckForUpdates; }
    bool automaticallyChecksForUpdates() const { return m_automaticallyChecksForUpdates; }
    bool automaticallyDownloadsUpdates() const { return m_automaticallyDownloadsUpdates; }
    bool allowsAutomaticUpdates() const { return m_allowsAutomaticUpdates; }
    QDateTime lastUpdateCheckDate() const { return m_lastUpdateCheckDate; } // invalid: never
    QString startupError() const { return m_startupError; }                 // empty: none

    UpdateEngine &engine() const { return *m_engine; }

    // A check on the user's behalf with its dialogs; does nothing at all
    // unless canCheckForUpdates is true.
    void checkForUpdates();
    // Both ask the engine; the mirror follows what it reports, so a refused
    // change is announced again with the value kept, and a control springs back.
    void setAutomaticallyChecksForUpdates(bool enabled);
    void setAutomaticallyDownloadsUpdates(bool enabled);

Q_SIGNALS:
    void canCheckForUpdatesChanged(bool canCheck);
    void automaticallyChecksForUpdatesChanged(bool enabled);
    void automaticallyDownloadsUpdatesChanged(bool enabled);
    void allowsAutomaticUpdatesChanged(bool allowed);
    void lastUpdateCheckDateChanged(const QDateTime &date);
    void startupErrorChanged(const QString &error);

private:
    void mirrorEngine();
    void connectDriver();
    void onCheckFinished(const UpdateCheckResult &result);
    void onInstallFinished(const UpdateInstallResult &result);
    void install();

    std::unique_ptr<UpdateUserDriver> m_ownDriver;
    QPointer<UpdateUserDriver> m_driver;
    std::unique_ptr<UpdateEngine> m_engine;
    std::optional<AppcastItem> m_offered;
    QString m_installedPath;
    bool m_userSession = false;

    bool m_canCheckForUpdates = false;
    bool m_automaticallyChecksForUpdates = false;
    bool m_automaticallyDownloadsUpdates = false;
    bool m_allowsAutomaticUpdates = false;
    QDateTime m_lastUpdateCheckDate;
    QString m_startupError;
};
