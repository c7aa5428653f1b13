#pragma once

#include "DBusMenuEvent.h"
#include "DBusMenuItemProperties.h"
#include "DBusMenuItemPropertyNames.h"
#include "DBusMenuLayoutItem.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QList>
#include <QStringList>

class DBusMenuExporter;

// The com.canonical.dbusmenu interface of a DBusMenuExporter.
class DBusMenuAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_CLASSINFO("D-Bus Introspection",
                "  <interface name=\"com.canonical.dbusmenu\">\n"
                "    <property name=\"Version\" type=\"u\" access=\"read\"/>\n"
                "    <property name=\"TextDirection\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"Status\" type=\"s\" access=\"read\"/>\n"
                "    <property name=\"IconThemePath\" type=\"as\" access=\"read\"/>\n"
                "    <method name=\"GetLayout\">\n"
                "      <arg name=\"parentId\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"recursionDepth\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>\n"
                "      <arg name=\"revision\" type=\"u\" direction=\"out\"/>\n"
                "      <arg name=\"layout\" type=\"(ia{sv}av)\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <method name=\"GetGroupProperties\">\n"
                "      <arg name=\"ids\" type=\"ai\" direction=\"in\"/>\n"
                "      <arg name=\"propertyNames\" type=\"as\" direction=\"in\"/>\n"
                "      <arg name=\"properties\" type=\"a(ia{sv})\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <method name=\"GetProperty\">\n"
                "      <arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"name\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"value\" type=\"v\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <method name=\"Event\">\n"
                "      <arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"eventId\" type=\"s\" direction=\"in\"/>\n"
                "      <arg name=\"data\" type=\"v\" direction=\"in\"/>\n"
                "      <arg name=\"timestamp\" type=\"u\" direction=\"in\"/>\n"
                "    </method>\n"
                "    <method name=\"EventGroup\">\n"
                "      <arg name=\"events\" type=\"a(isvu)\" direction=\"in\"/>\n"
                "      <arg name=\"idErrors\" type=\"ai\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <method name=\"AboutToShow\">\n"
                "      <arg name=\"id\" type=\"i\" direction=\"in\"/>\n"
                "      <arg name=\"needUpdate\" type=\"b\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <method name=\"AboutToShowGroup\">\n"
                "      <arg name=\"ids\" type=\"ai\" direction=\"in\"/>\n"
                "      <arg name=\"updatesNeeded\" type=\"ai\" direction=\"out\"/>\n"
                "      <arg name=\"idErrors\" type=\"ai\" direction=\"out\"/>\n"
                "    </method>\n"
                "    <signal name=\"ItemsPropertiesUpdated\">\n"
                "      <arg name=\"updatedProps\" type=\"a(ia{sv})\"/>\n"
                "      <arg name=\"removedProps\" type=\"a(ias)\"/>\n"
                "    </signal>\n"
                "    <signal name=\"LayoutUpdated\">\n"
                "      <arg name=\"revision\" type=\"u\"/>\n"
                "      <arg name=\"parent\" type=\"i\"/>\n"
                "    </signal>\n"
                "    <signal name=\"ItemActivationRequested\">\n"
                "      <arg name=\"id\" type=\"i\"/>\n"
                "      <arg name=\"timestamp\" type=\"u\"/>\n"
                "    </signal>\n"
                "  </interface>\n")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    explicit DBusMenuAdaptor(DBusMenuExporter *exporter);

    uint version() const { return 3; }
    QString textDirection() const { return QStringLiteral("ltr"); }
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

    // Slot and signal parameters name their types in full: QtDBus looks input
    // types up by the name written here, and an alias is not registered.
public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                   DBusMenuLayoutItem &layout);
    DBusMenuItemPropertiesList GetGroupProperties(const QList<int> &ids,
                                                  const QStringList &propertyNames);
    QDBusVariant GetProperty(int id, const QString &name);
    void Event(int id, const QString &eventId, const QDBusVariant &data, uint timestamp);
    QList<int> EventGroup(const QList<DBusMenuEvent> &events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<DBusMenuItemProperties> &updatedProps,
                                const QList<DBusMenuItemPropertyNames> &removedProps);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    void sendError(const QString &message);
    void sendUnknownId(int id);

    DBusMenuExporter *m_exporter;
};
