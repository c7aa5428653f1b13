#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>
#include <memory>

class DBusMenuExporter;
class QAction;
class QMenu;
class QSystemTrayIcon;
class QTimer;
class StatusNotifierItem;
class XEmbedTrayWatcher;

// The app's presence in the panel: our own StatusNotifierItem while a watcher
// is on the bus, else a QSystemTrayIcon (XEmbed) where the desktop has one.
class TrayIcon final : public QObject
{
    Q_OBJECT

public:
    enum class Kind { StatusNotifierItem, XEmbed, None };
    Q_ENUM(Kind)

    // How long the item waits for a vanished watcher to come back before it
    // falls back, so that a restarting panel does not flip the kind.
    static constexpr int fallbackDelayMs = 2000;

    // Uses the given session bus; with a StatusNotifierWatcher on it, exports our own
    // StatusNotifierItem; without one, falls back to QSystemTrayIcon (XEmbed) if
    // QSystemTrayIcon::isSystemTrayAvailable(); otherwise Kind::None.
    explicit TrayIcon(const QDBusConnection &bus, QObject *parent = nullptr);
    ~TrayIcon() override;

    struct City
    {
        QString key;
        QString label;
        bool isPinned = false;
    };
    using CityList = std::function<QList<City>()>;

    Kind kind() const { return m_kind; }

    // The cities both menus list above their commands, pinned ones first.
    // Asked for when a menu is about to show, on reloadCities(), and on
    // updateCityTimes() only while a menu is open: a closed one costs nothing
    // as the minutes pass, yet opens at its full size.
    void setCityList(CityList cities);
    void reloadCities();
    void updateCityTimes();

    // The line of pinned times; an empty text shows the globe icon alone.
    // accessibleName is "Zonara" for the globe, else "Zonara, " + text (the caller computes it).
    // guide: the widest the text can grow to, for hosts that reserve its room.
    void setLine(const QString &text, const QString &accessibleName,
                 const QString &guide = QString());

Q_SIGNALS:
    void activated(const QPoint &position); // Activate(x, y), or a click on the fallback icon
    void showRequested();                   // menu "Show Zonara"
    void settingsRequested();               // menu "Settings…"
    void quitRequested();                   // menu "Quit"
    void cityChosen(const QString &key);    // a city in the menu
    void kindChanged();

private:
    void onHostedChanged();
    void updateMenus(bool evenIfClosed);
    void updateKind();
    void showFallback();
    QString fallbackToolTip() const;

    std::unique_ptr<QMenu> m_menu;
    QList<QAction *> m_cityActions;
    QAction *m_firstCommand = nullptr;
    CityList m_cities;
    DBusMenuExporter *m_menuExporter = nullptr;
    StatusNotifierItem *m_item = nullptr;
    QSystemTrayIcon *m_fallback = nullptr;
    QTimer *m_fallbackTimer = nullptr;
    XEmbedTrayWatcher *m_xembedTrays = nullptr;
    Kind m_kind = Kind::None;
    QString m_text;
};
