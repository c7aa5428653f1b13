#pragma once

#include "SniIconPixmap.h"
#include "SniToolTip.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QString>

class StatusNotifierItemState;

// The org.kde.StatusNotifierItem interface of a StatusNotifierItem.
class StatusNotifierItemAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_CLASSINFO("D-Bus Introspection",
                "  <interface name=\"org.kde.StatusNotifierItem\">\n"
                "    <property name=\"Category\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"Id\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"Title\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"Status\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"WindowId\" type=\"i\" access=\"read\"/>\n"
                "    <property name=\"IconName\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "    <property name=\"OverlayIconName\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"OverlayIconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "    <property name=\"AttentionIconName\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"AttentionIconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "    <property name=\"AttentionMovieName\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>\n"
                "    <property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/>\n"
                "    <property name=\"Menu\" type=\"o\" access=\"read\"/>\n"
                "    <property name=\"XAyatanaLabel\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"XAyatanaLabelGuide\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"XAyatanaOrderingIndex\" type=\"u\" access=\"read\"/>\n"
                "    <method name=\"Activate\">\n"
                "      <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "    </method>\n"
                "    <method name=\"SecondaryActivate\">\n"
                "      <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "    </method>\n"
                "    <method name=\"ContextMenu\">\n"
                "      <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "    </method>\n"
                "    <method name=\"Scroll\">\n"
                "      <arg name=\"delta\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"orientation\" type=\"s\" direction=\"in\"/>\n"
                "    </method>\n"
                "    <signal name=\"NewTitle\"/>\n"
                "    <signal name=\"NewIcon\"/>\n"
                "    <signal name=\"NewAttentionIcon\"/>\n"
                "    <signal name=\"NewOverlayIcon\"/>\n"
                "    <signal name=\"NewToolTip\"/>\n"
                "    <signal name=\"NewStatus\">\n"
                "      <arg name=\"status\" type=\"s\"/>\n"
                "    </signal>\n"
                "    <signal name=\"XAyatanaNewLabel\">\n"
                "      <arg name=\"label\" type=\"s\"/>\n"
                "      <arg name=\"guide\" type=\"s\"/>\n"
                "    </signal>\n"
                "  </interface>\n")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(SniIconPixmapList IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noIconName)
    Q_PROPERTY(SniIconPixmapList OverlayIconPixmap READ noIconPixmap)
    Q_PROPERTY(QString AttentionIconName READ noIconName)
    Q_PROPERTY(SniIconPixmapList AttentionIconPixmap READ noIconPixmap)
    Q_PROPERTY(QString AttentionMovieName READ noIconName)
    Q_PROPERTY(SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ xAyatanaLabel)
    Q_PROPERTY(QString XAyatanaLabelGuide READ xAyatanaLabelGuide)
    Q_PROPERTY(uint XAyatanaOrderingIndex READ xAyatanaOrderingIndex)

public:
    explicit StatusNotifierItemAdaptor(StatusNotifierItemState *state);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const;
    QString title() const;
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconName() const;
    SniIconPixmapList iconPixmap() const;
    QString noIconName() const { return QString(); }
    SniIconPixmapList noIconPixmap() const { return {}; }
    SniToolTip toolTip() const;
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const;
    QString xAyatanaLabel() const;
    QString xAyatanaLabelGuide() const;
    uint xAyatanaOrderingIndex() const { return 0; }

public Q_SLOTS:
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString &orientation);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString &status);
    void XAyatanaNewLabel(const QString &label, const QString &guide);

private:
    StatusNotifierItemState *m_state;
};
