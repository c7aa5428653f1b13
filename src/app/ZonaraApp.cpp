#include "ZonaraApp.h"

#include "CityTimes.h"
#include "PanelWindow.h"
#include "SettingsView.h"
#include "SettingsWindow.h"
#include "SingleInstance.h"
#include "TimeZoneDatabase.h"
#include "TrayIcon.h"
#include "ZoneListView.h"
#include "ZoneRowTexts.h"
#include "ZoneService.h"

#include <QApplication>
#include <QClipboard>
#include <QDBusConnection>
#include <QPointer>
#include <QTimer>

#include <cstdio>

ZonaraApp::ZonaraApp(SingleInstance &instance, SingleInstance::Request request, QObject *parent)
    : QObject(parent)
    , m_store(m_preferences, TimeZoneDatabase::lookup())
    , m_updater(m_preferences)
    , m_label(m_store, m_clock)
    , m_tray(std::make_unique<TrayIcon>(QDBusConnection::sessionBus()))
    , m_panel(std::make_unique<PanelWindow>(m_clock))
{
    connect(&m_timeWatcher, &SystemTimeWatcher::timeChanged, &m_clock, &Clock::realign);
    connect(&m_store, &ZoneStore::formatChanged, this, &ZonaraApp::followFormat);
    followFormat();

    auto *list = new ZoneListView(m_store, m_clock);
    m_panel->setContent(list);
    list->setCanCheckForUpdates(m_updater.canCheckForUpdates());
    connect(&m_updater, &AppUpdater::canCheckForUpdatesChanged, list,
            &ZoneListView::setCanCheckForUpdates);
    connect(list, &ZoneListView::settingsRequested, this, [this] {
        m_panel->hide();
        showSettings();
    });
    connect(list, &ZoneListView::updateCheckRequested, this, [this] {
        m_panel->hide();
        m_updater.checkForUpdates();
    });
    connect(list, &ZoneListView::quitRequested, this, &ZonaraApp::quit);

    connect(&m_label, &MenuBarLabel::textChanged, this, &ZonaraApp::updateTray);
    connect(m_tray.get(), &TrayIcon::activated, this, &ZonaraApp::togglePanelAt);
    connect(m_tray.get(), &TrayIcon::showRequested, this, [this] { m_panel->openAt(QPoint()); });
    connect(m_tray.get(), &TrayIcon::settingsRequested, this, &ZonaraApp::showSettings);
    connect(m_tray.get(), &TrayIcon::quitRequested, this, &ZonaraApp::quit);
    connect(m_tray.get(), &TrayIcon::kindChanged, this, &ZonaraApp::followTrayKind);
    connect(m_tray.get(), &TrayIcon::cityChosen, this, &ZonaraApp::copyTime);
    m_tray->setCityList([this] { return menuCities(); });
    connect(&m_clock, &Clock::nowChanged, m_tray.get(), &TrayIcon::updateCityTimes);
    connect(&m_store, &ZoneStore::zonesChanged, m_tray.get(), &TrayIcon::reloadCities);
    connect(&m_store, &ZoneStore::formatChanged, m_tray.get(), &TrayIcon::reloadCities);
    updateTray();
    followTrayKind();

    // The command line edits through this store while Zonara runs.
    if (QObject *exported = instance.exportedObject()) {
        auto *service = new ZoneService(m_store, instance.bus(), exported);
        // Panel applets show the same line and open the same panel.
        service->setLine(m_label.text());
        connect(&m_label, &MenuBarLabel::textChanged, service,
                [this, service] { service->setLine(m_label.text()); });
        // The service outlives this object on the bus.
        service->setPanelToggle([app = QPointer(this)](const QPoint &at) {
            if (app)
                app->togglePanelAt(at);
        });
    }

    connect(&instance, &SingleInstance::reopenRequested, this, &ZonaraApp::reopen);
    connect(&instance, &SingleInstance::settingsRequested, this, &ZonaraApp::showSettings);
    connect(&instance, &SingleInstance::panelRequested, this, &ZonaraApp::showPanel);
    if (request == SingleInstance::Request::settings)
        QTimer::singleShot(0, this, &ZonaraApp::showSettings);
    else if (request == SingleInstance::Request::panel)
        QTimer::singleShot(0, this, &ZonaraApp::showPanel);
}

ZonaraApp::~ZonaraApp() = default;

void ZonaraApp::followFormat()
{
    m_clock.setShowsSeconds(m_store.format() == MenuBarFormat::labelTime24Seconds);
}

void ZonaraApp::updateTray()
{
    m_tray->setLine(m_label.text(), m_label.accessibleName(), m_label.guide());
}

QList<TrayIcon::City> ZonaraApp::menuCities() const
{
    QList<TrayIcon::City> cities;
    for (const CityTimes::Entry &entry : CityTimes::entries(
             m_store.zones(), m_store.format(), m_clock.now(), TimeZoneDatabase::localZone())) {
        cities.append(
            {entry.zone.id.toString(QUuid::WithoutBraces), entry.line(), entry.zone.isPinned});
    }
    return cities;
}

void ZonaraApp::copyTime(const QString &key)
{
    for (const SavedZone &zone : m_store.zones()) {
        if (zone.id.toString(QUuid::WithoutBraces) != key)
            continue;
        if (const std::optional<QString> text =
                ZoneRowTexts::copyText(zone, m_store.format(), m_clock.now()))
            QGuiApplication::clipboard()->setText(*text);
        return;
    }
}

void ZonaraApp::followTrayKind()
{
    if (m_tray->kind() != TrayIcon::Kind::None) {
        // A tray that came after us takes over from the window.
        if (m_panel->isVisible() && !m_panel->isPopup())
            m_panel->hide();
        return;
    }
    // Never unreachable: without any tray the panel is an ordinary window.
    std::fputs("zonara: no system tray was found; showing Zonara in a window\n", stderr);
    m_panel->openAsWindow();
}

void ZonaraApp::showSettings()
{
    if (!m_settings) {
        auto *view = new SettingsView(m_store, m_clock, m_updater);
        connect(view, &SettingsView::quitRequested, this, &ZonaraApp::quit);
        m_settings = std::make_unique<SettingsWindow>(view);
    }
    m_settings->present();
}

void ZonaraApp::togglePanelAt(const QPoint &globalPosition)
{
    if (m_panel->isVisible() && m_panel->isActiveWindow()) {
        m_panel->hide();
        return;
    }
    m_panel->openAt(globalPosition);
}

void ZonaraApp::showPanel()
{
    m_panel->openAt(QPoint());
}

void ZonaraApp::reopen()
{
    if (hasVisibleWindow())
        return;
    // Without a tray the panel is the only way back in.
    if (m_tray->kind() == TrayIcon::Kind::None)
        m_panel->openAsWindow();
    else
        showSettings();
}

void ZonaraApp::quit()
{
    QApplication::quit();
}

bool ZonaraApp::hasVisibleWindow() const
{
    return m_panel->isVisible() || (m_settings && m_settings->isVisible());
}
