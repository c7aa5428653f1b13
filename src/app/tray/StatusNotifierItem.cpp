#include "StatusNotifierItem.h"

#include "DirectBusSignal.h"
#include "GlobeIcon.h"
#include "StatusNotifierItemAdaptor.h"
#include "StatusNotifierItemState.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QIcon>

const QString StatusNotifierItem::watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString StatusNotifierItem::objectPath = QStringLiteral("/StatusNotifierItem");
const QString StatusNotifierItem::appId = QStringLiteral("io.github.zonara.Zonara");
const QString StatusNotifierItem::iconName = appId + QStringLiteral("-symbolic");

namespace {

const QString appName = QStringLiteral("Zonara");

// Hosts that announce a change re-read every property, the pixmaps too, so
// they are kept few: hosts that draw larger take the installed icon by name,
// or scale these.
SniIconPixmapList globePixmaps()
{
    SniIconPixmapList pixmaps;
    for (int size : {16, 32})
        pixmaps.append(SniIconPixmap::fromImage(GlobeIcon::image(size)));
    return pixmaps;
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection &bus, const QDBusObjectPath &menuPath,
                                       QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_menuPath(menuPath)
    , m_serviceName(
          QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid()))
{
    qDBusRegisterMetaType<SniIconPixmap>();
    qDBusRegisterMetaType<SniIconPixmapList>();
    qDBusRegisterMetaType<SniToolTip>();
    // Hosts prefer a name to the pixmaps even when their theme lacks it.
    m_state = new StatusNotifierItemState(QIcon::hasThemeIcon(iconName) ? iconName : QString(),
                                          globePixmaps(), m_menuPath);
    m_adaptor = new StatusNotifierItemAdaptor(m_state);
    publish();
    connect(m_state, &StatusNotifierItemState::activateRequested, this,
            &StatusNotifierItem::activateRequested);
    connect(m_state, &StatusNotifierItemState::secondaryActivateRequested, this,
            &StatusNotifierItem::secondaryActivateRequested);
    connect(m_state, &StatusNotifierItemState::contextMenuRequested, this,
            &StatusNotifierItem::contextMenuRequested);
    connect(m_state, &StatusNotifierItemState::scrollRequested, this,
            &StatusNotifierItem::scrollRequested);

    if (!m_bus.isConnected())
        return;
    m_state->moveToThread(m_bus.interface()->thread());
    // The object goes first so that a host never sees the name without it.
    if (!m_bus.registerObject(objectPath, m_state, QDBusConnection::ExportAdaptors))
        return;
    if (!m_bus.registerService(m_serviceName)) {
        m_bus.unregisterObject(objectPath);
        return;
    }
    m_exported = true;

    m_watcher = new QDBusServiceWatcher(watcherService, m_bus,
                                        QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &newOwner) {
                if (newOwner.isEmpty())
                    setHosted(false);
                else
                    registerWithWatcher();
            });
    // Asked after the watch is in place, so an owner change in between is not lost.
    if (m_bus.interface()->isServiceRegistered(watcherService))
        registerWithWatcher();
}

StatusNotifierItem::~StatusNotifierItem()
{
    if (m_exported) {
        m_bus.unregisterService(m_serviceName);
        m_bus.unregisterObject(objectPath);
    }
    // Deleted here, not on the bus's thread: the bus waits on that thread
    // to hear of the object's end, and would wait for itself.
    if (m_state->thread() != thread()) {
        QMetaObject::invokeMethod(
            m_state, [state = m_state, home = thread()] { state->moveToThread(home); },
            Qt::BlockingQueuedConnection);
    }
    delete m_state;
}

void StatusNotifierItem::registerWithWatcher()
{
    const quint64 registration = ++m_registration;
    setHosted(true);
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherService, QStringLiteral("/StatusNotifierWatcher"), watcherService,
        QStringLiteral("RegisterStatusNotifierItem"));
    call << m_serviceName;
    // Never a blocking call: the watcher may live in this very thread.
    auto *pending = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, pending, registration] {
        pending->deleteLater();
        if (registration == m_registration && pending->isError())
            setHosted(false);
    });
}

void StatusNotifierItem::setHosted(bool hosted)
{
    if (m_hosted == hosted)
        return;
    m_hosted = hosted;
    Q_EMIT hostedChanged();
}

void StatusNotifierItem::setLine(const QString &text, const QString &accessibleName,
                                 const QString &guide)
{
    // Each announcement makes hosts read the item again, most of them all of
    // it, so only what changed is announced and a minute's tick changes two
    // properties: the label, which its signal carries, and the tooltip.
    const QString oldLabel = label();
    const QString oldGuide = labelGuide();
    const QString oldToolTip = toolTip().title;
    m_text = text;
    m_accessibleName = accessibleName;
    m_guide = guide;
    publish();
    const bool labelChanged = label() != oldLabel || labelGuide() != oldGuide;
    const bool toolTipChanged = toolTip().title != oldToolTip;
    if ((!labelChanged && !toolTipChanged) || !m_exported)
        return;
    // Sent from here, straight to the bus: handing them to QtDBus's thread
    // would wake this process twice a tick. QtDBus relays only signals
    // emitted on its own thread, so that is where they go otherwise.
    const QString interface = QStringLiteral("org.kde.StatusNotifierItem");
    const bool labelSent =
        !labelChanged || (DirectBusSignal(objectPath, interface, QStringLiteral("XAyatanaNewLabel"))
                          << label() << labelGuide())
                             .send(m_bus);
    const bool toolTipSent =
        !toolTipChanged ||
        DirectBusSignal(objectPath, interface, QStringLiteral("NewToolTip")).send(m_bus);
    if (labelSent && toolTipSent)
        return;
    QMetaObject::invokeMethod(m_state, [adaptor = m_adaptor, label = label(), guide = labelGuide(),
                                        labelSent, toolTipSent] {
        if (!labelSent)
            Q_EMIT adaptor->XAyatanaNewLabel(label, guide);
        if (!toolTipSent)
            Q_EMIT adaptor->NewToolTip();
    });
}

void StatusNotifierItem::publish()
{
    m_state->setValues({title(), label(), labelGuide(), toolTip()});
}

QString StatusNotifierItem::title() const
{
    // The program's name: the line is in the label and the tooltip already,
    // and a title that ticked would cost hosts a second reading each minute.
    return appName;
}

SniToolTip StatusNotifierItem::toolTip() const
{
    return {QString(), {}, m_accessibleName.isEmpty() ? appName : m_accessibleName, QString()};
}
