#pragma once

#include "AppUpdater.h"
#include "Clock.h"
#include "MenuBarLabel.h"
#include "SettingsPreferencesStore.h"
#include "SingleInstance.h"
#include "SystemTimeWatcher.h"
#include "TrayIcon.h"
#include "ZoneStore.h"

#include <QObject>
#include <QPoint>

#include <memory>

class PanelWindow;
class SettingsWindow;

// The running program: the one store, the one clock, the tray item, the
// panel and the settings window, and the routes between them.
class ZonaraApp final : public QObject
{
    Q_OBJECT

public:
    // The launch's own request is served once everything is up.
    ZonaraApp(SingleInstance &instance, SingleInstance::Request request, QObject *parent = nullptr);
    ~ZonaraApp() override;

    ZoneStore &store() { return m_store; }
    Clock &clock() { return m_clock; }
    AppUpdater &updater() { return m_updater; }
    PanelWindow &panel() { return *m_panel; }
    TrayIcon &tray() { return *m_tray; }
    // Null until settings were first asked for.
    SettingsWindow *settingsWindow() const { return m_settings.get(); }

    void showSettings();
    void togglePanelAt(const QPoint &globalPosition);
    // For a bar's click: at the pointer, where the platform tells it.
    void showPanel();
    // Brings Zonara back when it is launched again while running.
    void reopen();
    void quit();

private:
    void followFormat();
    void updateTray();
    void followTrayKind();
    QList<TrayIcon::City> menuCities() const;
    void copyTime(const QString &key);
    bool hasVisibleWindow() const;

    SettingsPreferencesStore m_preferences;
    ZoneStore m_store;
    AppUpdater m_updater;
    Clock m_clock;
    SystemTimeWatcher m_timeWatcher;
    MenuBarLabel m_label;
    std::unique_ptr<TrayIcon> m_tray;
    std::unique_ptr<PanelWindow> m_panel;
    std::unique_ptr<SettingsWindow> m_settings;
};
