#pragma once

#include "SniIconPixmap.h"
#include "SniToolTip.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>
#include <QString>

class QDBusServiceWatcher;
class StatusNotifierItemAdaptor;
class StatusNotifierItemState;

// Our tray item as a freedesktop StatusNotifierItem: exports itself on the bus
// and registers with org.kde.StatusNotifierWatcher whenever one appears. The
// line of text travels as the Ayatana label and the tooltip.
class StatusNotifierItem final : public QObject
{
    Q_OBJECT

public:
    static const QString watcherService;
    static const QString objectPath;
    static const QString appId;
    // The installed globe, which hosts recolour to their panel; where the
    // theme has no such icon, they draw IconPixmap.
    static const QString iconName;

    StatusNotifierItem(const QDBusConnection &bus, const QDBusObjectPath &menuPath,
                       QObject *parent = nullptr);
    ~StatusNotifierItem() override;

    bool isExported() const { return m_exported; }
    QString serviceName() const { return m_serviceName; }
    // Whether a watcher owns its name and has not refused our registration.
    bool isHosted() const { return m_hosted; }

    // An empty text shows the globe alone. The guide is the
    // widest the line can grow to; without one, hosts size it for the text.
    void setLine(const QString &text, const QString &accessibleName,
                 const QString &guide = QString());

    QString title() const;
    QString label() const { return m_text; }
    QString labelGuide() const { return m_text.isEmpty() || m_guide.isEmpty() ? m_text : m_guide; }
    SniToolTip toolTip() const;
    QDBusObjectPath menu() const { return m_menuPath; }

Q_SIGNALS:
    void hostedChanged();
    void activateRequested(const QPoint &position);
    void secondaryActivateRequested(const QPoint &position);
    void contextMenuRequested(const QPoint &position);
    void scrollRequested(int delta, Qt::Orientation orientation);

private:
    void registerWithWatcher();
    // Hands the current values to the state the bus reads.
    void publish();
    void setHosted(bool hosted);

    QDBusConnection m_bus;
    QDBusObjectPath m_menuPath;
    QString m_serviceName;
    // Lives on the bus's thread while exported.
    StatusNotifierItemState *m_state = nullptr;
    StatusNotifierItemAdaptor *m_adaptor = nullptr;
    QDBusServiceWatcher *m_watcher = nullptr;
    QString m_text;
    QString m_accessibleName;
    QString m_guide;
    bool m_exported = false;
    bool m_hosted = false;
    // Replies to earlier registrations are stale once a newer one is sent.
    quint64 m_registration = 0;
};
