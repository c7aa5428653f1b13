#include "AppUpdater.h"

#include "UpdateCheckResult.h"
#include "UpdateDialog.h"
#include "UpdateEngine.h"
#include "UpdateInstallResult.h"
#include "UpdateUserDriver.h"

namespace {

// Assigns a mirrored value and announces it only when it changed.
template<typename T, typename Signal>
void assign(AppUpdater *updater, T &field, const T &value, Signal signal)
{
    if (field == value)
        return;
    field = value;
    Q_EMIT(updater->*signal)(value);
}

} // namespace

AppUpdater::AppUpdater(PreferencesStore &preferences, QObject *parent)
    : AppUpdater(preferences, UpdateConfiguration::forThisBuild(), nullptr, parent)
{}

AppUpdater::AppUpdater(PreferencesStore &preferences, UpdateConfiguration configuration,
                       UpdateUserDriver *driver, QObject *parent)
    : QObject(parent)
{
    if (!driver) {
        m_ownDriver = std::make_unique<UpdateDialog>();
        driver = m_ownDriver.get();
    }
    m_driver = driver;
    m_engine = std::make_unique<UpdateEngine>(preferences, std::move(configuration));
    // The mirrors hold the engine's values before it starts, then follow it.
    mirrorEngine();
    connectDriver();
    connect(m_engine.get(), &UpdateEngine::checkFinished, this, &AppUpdater::onCheckFinished);
    connect(m_engine.get(), &UpdateEngine::installFinished, this, &AppUpdater::onInstallFinished);
    connect(m_engine.get(), &UpdateEngine::downloadProgress, this,
            [this](qint64 received, qint64 total) {
                if (m_userSession && m_driver)
                    m_driver->showProgress(received, total);
            });
    m_engine->start();
}

AppUpdater::~AppUpdater()
{
    // The engine goes first, so that no result reaches a half-gone updater.
    m_engine->disconnect(this);
    m_engine.reset();
}

void AppUpdater::mirrorEngine()
{
    UpdateEngine *engine = m_engine.get();
    m_canCheckForUpdates = engine->canCheckForUpdates();
    m_automaticallyChecksForUpdates = engine->automaticallyChecksForUpdates();
    m_automaticallyDownloadsUpdates = engine->automaticallyDownloadsUpdates();
    m_allowsAutomaticUpdates = engine->allowsAutomaticUpdates();
    m_lastUpdateCheckDate = engine->lastUpdateCheckDate();
    m_startupError = engine->startupError();

    connect(engine, &UpdateEngine::canCheckForUpdatesChanged, this, [this](bool value) {
        assign(this, m_canCheckForUpdates, value, &AppUpdater::canCheckForUpdatesChanged);
    });
    connect(engine, &UpdateEngine::automaticallyChecksForUpdatesChanged, this, [this](bool value) {
        assign(this, m_automaticallyChecksForUpdates, value,
               &AppUpdater::automaticallyChecksForUpdatesChanged);
    });
    connect(engine, &UpdateEngine::automaticallyDownloadsUpdatesChanged, this, [this](bool value) {
        assign(this, m_automaticallyDownloadsUpdates, value,
               &AppUpdater::automaticallyDownloadsUpdatesChanged);
    });
    connect(engine, &UpdateEngine::allowsAutomaticUpdatesChanged, this, [this](bool value) {
        assign(this, m_allowsAutomaticUpdates, value, &AppUpdater::allowsAutomaticUpdatesChanged);
    });
    connect(engine, &UpdateEngine::lastUpdateCheckDateChanged, this,
            [this](const QDateTime &value) {
                assign(this, m_lastUpdateCheckDate, value, &AppUpdater::lastUpdateCheckDateChanged);
            });
    connect(engine, &UpdateEngine::startupErrorChanged, this, [this](const QString &value) {
        assign(this, m_startupError, value, &AppUpdater::startupErrorChanged);
    });
}

void AppUpdater::connectDriver()
{
    connect(m_driver, &UpdateUserDriver::cancelRequested, this, [this] { m_engine->cancel(); });
    connect(m_driver, &UpdateUserDriver::installRequested, this, &AppUpdater::install);
    connect(m_driver, &UpdateUserDriver::remindLaterRequested, this, [this] { m_offered.reset(); });
    connect(m_driver, &UpdateUserDriver::skipRequested, this, [this] {
        if (m_offered)
            m_engine->skipVersion(m_offered->version);
        m_offered.reset();
    });
    connect(m_driver, &UpdateUserDriver::restartRequested, this, [this] {
        if (!m_installedPath.isEmpty() && m_engine->configuration().restart)
            m_engine->configuration().restart(m_installedPath);
    });
}

void AppUpdater::checkForUpdates()
{
    if (!m_engine->canCheckForUpdates())
        return;
    m_userSession = true;
    if (m_driver)
        m_driver->showChecking();
    m_engine->checkForUpdates(UpdateOrigin::User);
}

void AppUpdater::setAutomaticallyChecksForUpdates(bool enabled)
{
    m_engine->setAutomaticallyChecksForUpdates(enabled);
    if (m_automaticallyChecksForUpdates != enabled)
        Q_EMIT automaticallyChecksForUpdatesChanged(m_automaticallyChecksForUpdates);
}

void AppUpdater::setAutomaticallyDownloadsUpdates(bool enabled)
{
    m_engine->setAutomaticallyDownloadsUpdates(enabled);
    if (m_automaticallyDownloadsUpdates != enabled)
        Q_EMIT automaticallyDownloadsUpdatesChanged(m_automaticallyDownloadsUpdates);
}

void AppUpdater::install()
{
    if (!m_offered || !m_engine->canCheckForUpdates())
        return;
    const AppcastItem item = *m_offered;
    m_offered.reset();
    m_userSession = true;
    if (m_driver)
        m_driver->showDownloading(item);
    m_engine->downloadAndInstall(item, UpdateOrigin::User);
}

void AppUpdater::onCheckFinished(const UpdateCheckResult &result)
{
    const bool user = result.origin == UpdateOrigin::User;
    if (!user && result.outcome != UpdateCheckResult::Outcome::UpdateAvailable)
        return; // the schedule only speaks up when there is something new
    if (result.installsAutomatically)
        return;
    m_userSession = user;
    if (!m_driver)
        return;
    switch (result.outcome) {
    case UpdateCheckResult::Outcome::UpToDate:
        m_driver->showUpToDate(m_engine->configuration().currentVersion);
        break;
    case UpdateCheckResult::Outcome::UpdateAvailable:
        m_offered = result.item;
        m_driver->showUpdateFound(result.item, m_engine->configuration().currentVersion,
                                  m_engine->allowsAutomaticUpdates());
        break;
    case UpdateCheckResult::Outcome::Failed:
        m_driver->showError(result.message);
        break;
    case UpdateCheckResult::Outcome::Cancelled:
        m_driver->dismiss();
        break;
    }
}

void AppUpdater::onInstallFinished(const UpdateInstallResult &result)
{
    if (result.outcome == UpdateInstallResult::Outcome::Installed)
        m_installedPath = result.path;
    // An automatic install waits quietly for the next start.
    if (result.origin != UpdateOrigin::User)
        return;
    m_userSession = false;
    if (!m_driver)
        return;
    switch (result.outcome) {
    case UpdateInstallResult::Outcome::Installed:
        m_driver->showInstalled(result.item);
        break;
    case UpdateInstallResult::Outcome::Saved:
        m_driver->showSaved(result.item, result.path);
        break;
    case UpdateInstallResult::Outcome::Failed:
        m_driver->showError(result.message);
        break;
    case UpdateInstallResult::Outcome::Cancelled:
        m_driver->dismiss();
        break;
    }
}
