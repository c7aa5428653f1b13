#include "TrayIcon.h"

#include "DBusMenuExporter.h"
#include "GlobeIcon.h"
#include "StatusNotifierItem.h"
#include "XEmbedTrayWatcher.h"

#include <QCursor>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

const QString menuPath = QStringLiteral("/MenuBar");
const QString showText = QStringLiteral("Show Zonara");
const QString settingsText = QStringLiteral("Settings\u2026");
const QString quitText = QStringLiteral("Quit");
// A nickname's "&" is text, not a mnemonic.
QString menuText(QString label)
{
    return label.replace(QLatin1Char('&'), QLatin1String("&&"));
}

const QString showKey = QStringLiteral("show");
const QString settingsKey = QStringLiteral("settings");
const QString quitKey = QStringLiteral("quit");

} // namespace

TrayIcon::TrayIcon(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_menu(std::make_unique<QMenu>())
    , m_fallbackTimer(new QTimer(this))
{
    // The same items in the exported menu and in the fallback's menu.
    m_firstCommand = m_menu->addAction(showText);
    connect(m_firstCommand, &QAction::triggered, this, &TrayIcon::showRequested);
    connect(m_menu->addAction(settingsText), &QAction::triggered, this,
            &TrayIcon::settingsRequested);
    connect(m_menu->addAction(quitText), &QAction::triggered, this, &TrayIcon::quitRequested);
    connect(m_menu.get(), &QMenu::aboutToShow, this, [this] { updateMenus(true); });

    m_menuExporter = new DBusMenuExporter(bus, menuPath, this);
    connect(m_menuExporter, &DBusMenuExporter::itemClicked, this, [this](const QString &key) {
        if (key == showKey)
            Q_EMIT showRequested();
        else if (key == settingsKey)
            Q_EMIT settingsRequested();
        else if (key == quitKey)
            Q_EMIT quitRequested();
        else
            Q_EMIT cityChosen(key);
    });
    connect(m_menuExporter, &DBusMenuExporter::aboutToShow, this, [this] { updateMenus(true); });
    connect(m_menuExporter, &DBusMenuExporter::openChanged, this, [this] { updateMenus(false); });
    updateMenus(true);

    m_item = new StatusNotifierItem(bus, QDBusObjectPath(menuPath), this);
    connect(m_item, &StatusNotifierItem::activateRequested, this, &TrayIcon::activated);
    connect(m_item, &StatusNotifierItem::contextMenuRequested, this,
            [this](const QPoint &position) { m_menu->popup(position); });
    connect(m_item, &StatusNotifierItem::hostedChanged, this, &TrayIcon::onHostedChanged);

    m_fallbackTimer->setSingleShot(true);
    m_fallbackTimer->setInterval(fallbackDelayMs);
    connect(m_fallbackTimer, &QTimer::timeout, this, &TrayIcon::updateKind);

    // A tray that comes later is taken at once; one that goes may be a
    // restarting panel, given the same grace as a vanished watcher.
    m_xembedTrays = new XEmbedTrayWatcher(this);
    connect(m_xembedTrays, &XEmbedTrayWatcher::trayChanged, this, [this] {
        if (m_xembedTrays->hasTray())
            updateKind();
        else if (m_kind == Kind::XEmbed)
            m_fallbackTimer->start();
    });

    updateKind();
}

TrayIcon::~TrayIcon()
{
    // The fallback refers to the menu, which goes first otherwise.
    delete m_fallback;
}

void TrayIcon::setLine(const QString &text, const QString &accessibleName, const QString &guide)
{
    m_text = text;
    m_item->setLine(text, accessibleName, guide);
    if (m_fallback)
        m_fallback->setToolTip(fallbackToolTip());
}

void TrayIcon::setCityList(CityList cities)
{
    m_cities = std::move(cities);
    updateMenus(true);
}

void TrayIcon::reloadCities()
{
    updateMenus(true);
}

void TrayIcon::updateCityTimes()
{
    updateMenus(false);
}

void TrayIcon::updateMenus(bool evenIfClosed)
{
    const bool exportedOpen = m_menuExporter->isOpen();
    const bool localOpen = m_menu->isVisible();
    if (!evenIfClosed && !exportedOpen && !localOpen)
        return;
    const QList<City> cities = m_cities ? m_cities() : QList<City>();

    // Unpinned cities after a line of their own, then the commands.
    QList<DBusMenuExporter::Entry> entries;
    for (qsizetype i = 0; i < cities.size(); ++i) {
        if (i > 0 && cities[i].isPinned != cities[i - 1].isPinned)
            entries.append({QStringLiteral("separator:unpinned"), {}, true});
        entries.append({cities[i].key, cities[i].label});
    }
    if (!cities.isEmpty())
        entries.append({QStringLiteral("separator:commands"), {}, true});
    entries.append({showKey, showText});
    entries.append({settingsKey, settingsText});
    entries.append({quitKey, quitText});
    if (evenIfClosed || exportedOpen)
        m_menuExporter->setItems(entries);

    if (!evenIfClosed && !localOpen)
        return;
    // The local menu is rebuilt in place above its commands; while it is open
    // only the labels change, so it keeps its size and the highlighted row.
    const bool sameCities = m_cityActions.size() == entries.size() - 3 &&
                            std::equal(m_cityActions.cbegin(), m_cityActions.cend(),
                                       entries.cbegin(), [](QAction *action, const auto &entry) {
                                           return action->data().toString() == entry.key;
                                       });
    if (sameCities) {
        for (qsizetype i = 0; i < m_cityActions.size(); ++i)
            m_cityActions[i]->setText(menuText(entries[i].label));
        return;
    }
    qDeleteAll(m_cityActions);
    m_cityActions.clear();
    for (qsizetype i = 0; i + 3 < entries.size(); ++i) {
        const DBusMenuExporter::Entry &entry = entries[i];
        auto *action = new QAction(menuText(entry.label), m_menu.get());
        action->setSeparator(entry.isSeparator);
        action->setData(entry.key);
        if (!entry.isSeparator) {
            connect(action, &QAction::triggered, this,
                    [this, key = entry.key] { Q_EMIT cityChosen(key); });
        }
        m_menu->insertAction(m_firstCommand, action);
        m_cityActions.append(action);
    }
}

void TrayIcon::onHostedChanged()
{
    if (m_item->isHosted()) {
        m_fallbackTimer->stop();
        updateKind();
    } else if (m_kind == Kind::StatusNotifierItem) {
        m_fallbackTimer->start();
    } else {
        updateKind();
    }
}

void TrayIcon::updateKind()
{
    // The watcher is asked first: while it is up, QSystemTrayIcon is not
    // consulted, since its probe could block on a watcher in this thread.
    Kind kind = Kind::None;
    if (m_item->isExported() && m_item->isHosted())
        kind = Kind::StatusNotifierItem;
    else if (m_xembedTrays->isWatching() ? m_xembedTrays->hasTray()
                                         : QSystemTrayIcon::isSystemTrayAvailable())
        kind = Kind::XEmbed;

    if (kind == Kind::XEmbed)
        showFallback();
    else if (m_fallback)
        m_fallback->hide();

    if (kind == m_kind)
        return;
    m_kind = kind;
    Q_EMIT kindChanged();
}

void TrayIcon::showFallback()
{
    if (!m_fallback) {
        // Not the themed icon of IconName: XEmbed trays never recolour one,
        // and the outlined globe reads on light and dark panels alike.
        m_fallback = new QSystemTrayIcon(GlobeIcon::icon(), this);
        m_fallback->setContextMenu(m_menu.get());
        connect(m_fallback, &QSystemTrayIcon::activated, this,
                [this](QSystemTrayIcon::ActivationReason reason) {
                    if (reason == QSystemTrayIcon::Trigger)
                        Q_EMIT activated(QCursor::pos());
                });
    }
    m_fallback->setToolTip(fallbackToolTip());
    m_fallback->show();
}

QString TrayIcon::fallbackToolTip() const
{
    return m_text.isEmpty() ? QStringLiteral("Zonara") : m_text;
}
