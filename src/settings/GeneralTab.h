#pragma once

#include "LoginItemStatus.h"

#include <QString>
#include <QWidget>

class AppUpdater;
class FormGroup;
class QLabel;
class QPushButton;
class TextLine;
class ToggleSwitch;

// Launch at login, the update preferences, the version and "Quit Zonara".
// The login item's status is read from the autostart layer, never kept
// beyond this view; the update rows mirror the updater.
class GeneralTab final : public QWidget
{
    Q_OBJECT

public:
    explicit GeneralTab(AppUpdater &updates, QWidget *parent = nullptr);

    LoginItemStatus loginStatus() const { return m_loginStatus; }
    QString launchError() const { return m_launchError; }

    // Reads the login item's status again; the error line stays.
    void refreshLoginStatus();

Q_SIGNALS:
    void quitRequested();

private:
    FormGroup *makeStartupGroup();
    FormGroup *makeUpdatesGroup();
    FormGroup *makeAboutGroup();
    void setLaunchAtLogin(bool enabled);
    void showLoginStatus();
    void showUpdates();

    AppUpdater &m_updates;
    LoginItemStatus m_loginStatus;
    QString m_launchError;

    ToggleSwitch *m_launchAtLogin = nullptr;
    TextLine *m_approvalHint = nullptr;
    TextLine *m_loginError = nullptr;
    ToggleSwitch *m_checksAutomatically = nullptr;
    ToggleSwitch *m_downloadsAutomatically = nullptr;
    QPushButton *m_checkButton = nullptr;
    QWidget *m_lastCheckedRow = nullptr;
    QLabel *m_lastChecked = nullptr;
    TextLine *m_startupError = nullptr;
};
