#include "GeneralTab.h"

#include "AppStyle.h"
#include "AppUpdater.h"
#include "FormGroup.h"
#include "LaunchAtLogin.h"
#include "SettingsTexts.h"
#include "TextLine.h"
#include "ToggleSwitch.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

TextLine *callout(const QString &text, TextLine::Tone tone = TextLine::Tone::secondary)
{
    auto *line = new TextLine(AppStyle::uiFont(12), tone);
    line->setWordWrap(true);
    line->setText(text);
    return line;
}

QPushButton *formButton(const QString &text, const QString &objectName)
{
    auto *button = new QPushButton(text);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    return button;
}

// A button at the start of its row, at its natural width.
QWidget *buttonRow(QPushButton *button)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(button);
    layout->addStretch();
    return row;
}

} // namespace

GeneralTab::GeneralTab(AppUpdater &updates, QWidget *parent)
    : QWidget(parent)
    , m_updates(updates)
    , m_loginStatus(LaunchAtLogin::status())
{
    auto *quit = formButton(QStringLiteral("Quit Zonara"), QStringLiteral("quit-zonara"));
    connect(quit, &QPushButton::clicked, this, &GeneralTab::quitRequested);
    auto *quitGroup = new FormGroup;
    quitGroup->addRow(buttonRow(quit));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(20);
    layout->addWidget(makeStartupGroup());
    layout->addWidget(makeUpdatesGroup());
    layout->addWidget(makeAboutGroup());
    layout->addWidget(quitGroup);
    layout->addStretch();

    showLoginStatus();
    showUpdates();
    connect(&m_updates, &AppUpdater::automaticallyChecksForUpdatesChanged, this,
            &GeneralTab::showUpdates);
    connect(&m_updates, &AppUpdater::automaticallyDownloadsUpdatesChanged, this,
            &GeneralTab::showUpdates);
    connect(&m_updates, &AppUpdater::allowsAutomaticUpdatesChanged, this, &GeneralTab::showUpdates);
    connect(&m_updates, &AppUpdater::canCheckForUpdatesChanged, this, &GeneralTab::showUpdates);
    connect(&m_updates, &AppUpdater::lastUpdateCheckDateChanged, this, &GeneralTab::showUpdates);
    connect(&m_updates, &AppUpdater::startupErrorChanged, this, &GeneralTab::showUpdates);
}

FormGroup *GeneralTab::makeStartupGroup()
{
    m_launchAtLogin = new ToggleSwitch(QStringLiteral("Launch at login"));
    m_launchAtLogin->setObjectName(QStringLiteral("launch-at-login"));
    connect(m_launchAtLogin, &ToggleSwitch::clicked, this, &GeneralTab::setLaunchAtLogin);
    m_approvalHint =
        callout(QStringLiteral("Allow Zonara in Login Items to finish enabling launch at login."));
    m_approvalHint->setObjectName(QStringLiteral("login-approval-hint"));
    auto *open =
        formButton(QStringLiteral("Open Login Items\u2026"), QStringLiteral("open-login-items"));
    connect(open, &QPushButton::clicked, this,
            [] { LaunchAtLogin::openSystemSettingsLoginItems(); });
    m_loginError = callout(QString(), TextLine::Tone::error);
    m_loginError->setObjectName(QStringLiteral("login-error"));

    auto *group = new FormGroup(QStringLiteral("Startup"));
    group->addRow(m_launchAtLogin);
    group->addRow(m_approvalHint);
    group->addRow(buttonRow(open));
    group->addRow(m_loginError);
    return group;
}

FormGroup *GeneralTab::makeUpdatesGroup()
{
    m_checksAutomatically = new ToggleSwitch(QStringLiteral("Automatically check for updates"));
    m_checksAutomatically->setObjectName(QStringLiteral("automatic-update-checks"));
    // A switch never keeps its own state: it asks, and shows what the updater reports.
    connect(m_checksAutomatically, &ToggleSwitch::clicked, this, [this](bool enabled) {
        m_updates.setAutomaticallyChecksForUpdates(enabled);
        showUpdates();
    });
    m_downloadsAutomatically =
        new ToggleSwitch(QStringLiteral("Automatically download and install updates"));
    m_downloadsAutomatically->setObjectName(QStringLiteral("automatic-update-downloads"));
    connect(m_downloadsAutomatically, &ToggleSwitch::clicked, this, [this](bool enabled) {
        m_updates.setAutomaticallyDownloadsUpdates(enabled);
        showUpdates();
    });
    m_checkButton = formButton(QStringLiteral("Check for Updates\u2026"),
                               QStringLiteral("settings-check-updates"));
    connect(m_checkButton, &QPushButton::clicked, &m_updates, &AppUpdater::checkForUpdates);
    m_lastChecked = new QLabel;
    m_lastChecked->setObjectName(QStringLiteral("last-checked"));
    m_startupError = callout(QString());
    m_startupError->setObjectName(QStringLiteral("updates-startup-error"));

    auto *group = new FormGroup(QStringLiteral("Updates"));
    group->addRow(m_checksAutomatically);
    group->addRow(m_downloadsAutomatically);
    group->addRow(buttonRow(m_checkButton));
    m_lastCheckedRow = group->addRow(QStringLiteral("Last checked"), m_lastChecked);
    group->addRow(m_startupError);
    group->addRow(callout(QStringLiteral("Updates are signed and verified before installation. "
                                         "Automatic installation is optional.")));
    return group;
}

FormGroup *GeneralTab::makeAboutGroup()
{
    auto *version = new QLabel(SettingsTexts::thisVersion());
    version->setObjectName(QStringLiteral("version"));
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    version->setFocusPolicy(Qt::NoFocus);
    auto *about = new TextLine(AppStyle::uiFont(13));
    about->setWordWrap(true);
    about->setText(QStringLiteral("A small, native home for the people and places on your clock."));

    auto *group = new FormGroup(QStringLiteral("About Zonara"));
    group->addRow(QStringLiteral("Version"), version);
    group->addRow(about);
    group->addRow(
        callout(QStringLiteral("Your cities and preferences stay on this computer. Update "
                               "checks contact our download service without sending "
                               "your cities.")));
    return group;
}

void GeneralTab::setLaunchAtLogin(bool enabled)
{
    if (LaunchAtLogin::setEnabled(enabled))
        m_launchError.clear();
    else
        m_launchError =
            QStringLiteral("Could not update the login item. Try again in System Settings.");
    // Whatever was asked, the switch ends on what the entry really says.
    refreshLoginStatus();
}

void GeneralTab::refreshLoginStatus()
{
    m_loginStatus = LaunchAtLogin::status();
    showLoginStatus();
}

void GeneralTab::showLoginStatus()
{
    m_launchAtLogin->setChecked(launchesAtLogin(m_loginStatus));
    m_approvalHint->setVisible(m_loginStatus == LoginItemStatus::requiresApproval);
    m_loginError->setText(m_launchError);
    m_loginError->setVisible(!m_launchError.isEmpty());
}

void GeneralTab::showUpdates()
{
    m_checksAutomatically->setChecked(m_updates.automaticallyChecksForUpdates());
    m_downloadsAutomatically->setChecked(m_updates.automaticallyDownloadsUpdates());
    m_downloadsAutomatically->setEnabled(m_updates.allowsAutomaticUpdates());
    m_checkButton->setEnabled(m_updates.canCheckForUpdates());
    const QDateTime lastChecked = m_updates.lastUpdateCheckDate();
    m_lastCheckedRow->setVisible(lastChecked.isValid());
    if (lastChecked.isValid())
        m_lastChecked->setText(SettingsTexts::lastChecked(lastChecked));
    m_startupError->setText(m_updates.startupError());
    m_startupError->setVisible(!m_updates.startupError().isEmpty());
}
