#include "TrayIcon.h"

#include "DBusMenuExporter.h"
#include "GlobeIcon.h"
#include "StatusNotifierItem.h"

#include <QCursor>
#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

namespace {

const QString menuPath = QStringLiteral("/MenuBar");
const QString showText = QStringLiteral("Show Zonara");
const QString settingsText = QStringLiteral("Settings\u2026");
const QString quitText = QStringLiteral("Quit");

} // namespace

TrayIcon::TrayIcon(const QDBusConnection &bus, QObject *parent)
    : QObject(parent)
    , m_menu(std::make_unique<QMenu>())
    , m_fallbackTimer(new QTimer(this))
{
    // The same three actions in the exported menu and in the fallback's menu.
    connect(m_menu->addAction(showText), &QAction::triggered, this, &TrayIcon::showRequested);
    connect(m_menu->addAction(settingsText), &QAction::triggered, this,
            &TrayIcon::settingsRequested);
    connect(m_menu->addAction(quitText), &QAction::triggered, this, &TrayIcon::quitRequested);

    m_menuExporter = new DBusMenuExporter(bus, menuPath, this);
    const int showId = m_menuExporter->addItem(showText);
    const int settingsId = m_menuExporter->addItem(settingsText);
    const int quitId = m_menuExporter->addItem(quitText);
    connect(m_menuExporter, &DBusMenuExporter::itemClicked, this,
            [this, showId, settingsId, quitId](int id) {
                if (id == showId)
                    Q_EMIT showRequested();
                else if (id == settingsId)
                    Q_EMIT settingsRequested();
                else if (id == quitId)
                    Q_EMIT quitRequested();
            });

    m_item = new StatusNotifierItem(bus, QDBusObjectPath(menuPath), this);
    connect(m_item, &StatusNotifierItem::activateRequested, this, &TrayIcon::activated);
    connect(m_item, &StatusNotifierItem::contextMenuRequested, this,
            [this](const QPoint &position) { m_menu->popup(position); });
    connect(m_item, &StatusNotifierItem::hostedChanged, this, &TrayIcon::onHostedChanged);

    m_fallbackTimer->setSingleShot(true);
    m_fallbackTimer->setInterval(fallbackDelayMs);
    connect(m_fallbackTimer, &QTimer::timeout, this, &TrayIcon::updateKind);

    updateKind();
}

TrayIcon::~TrayIcon()
{
    // The fallback refers to the menu, which goes first otherwise.
    delete m_fallback;
}

void TrayIcon::setLine(const QString &text, const QString &accessibleName)
{
    m_text = text;
    m_item->setLine(text, accessibleName);
    if (m_fallback)
        m_fallback->setToolTip(fallbackToolTip());
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
    else if (QSystemTrayIcon::isSystemTrayAvailable())
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
