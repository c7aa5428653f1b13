#include "DBusMenuAdaptor.h"

#include "DBusMenuExporter.h"

#include <QDBusConnection>
#include <QDBusError>

DBusMenuAdaptor::DBusMenuAdaptor(DBusMenuExporter *exporter)
    : QDBusAbstractAdaptor(exporter)
    , m_exporter(exporter)
{}

void DBusMenuAdaptor::sendError(const QString &message)
{
    // QtDBus keeps the call's context on the exported object, not on its adaptor.
    m_exporter->sendErrorReply(QDBusError::InvalidArgs, message);
}

void DBusMenuAdaptor::sendUnknownId(int id)
{
    sendError(QStringLiteral("No menu item with id %1").arg(id));
}

uint DBusMenuAdaptor::GetLayout(int parentId, int recursionDepth, const QStringList &propertyNames,
                                DBusMenuLayoutItem &layout)
{
    const auto node = m_exporter->layout(parentId, recursionDepth, propertyNames);
    if (node)
        layout = *node;
    else
        sendUnknownId(parentId);
    return m_exporter->revision();
}

DBusMenuItemPropertiesList DBusMenuAdaptor::GetGroupProperties(const QList<int> &ids,
                                                               const QStringList &propertyNames)
{
    // Unknown ids are skipped, as the protocol asks.
    DBusMenuItemPropertiesList result;
    for (int id : ids) {
        if (const auto props = m_exporter->properties(id, propertyNames))
            result.append({id, *props});
    }
    return result;
}

QDBusVariant DBusMenuAdaptor::GetProperty(int id, const QString &name)
{
    const auto props = m_exporter->properties(id, {name});
    if (!props) {
        sendUnknownId(id);
        return QDBusVariant(QString());
    }
    if (!props->contains(name)) {
        sendError(QStringLiteral("Menu item %1 has no property %2").arg(id).arg(name));
        return QDBusVariant(QString());
    }
    return QDBusVariant(props->value(name));
}

void DBusMenuAdaptor::Event(int id, const QString &eventId, const QDBusVariant &, uint)
{
    if (!m_exporter->handleEvent(id, eventId))
        sendUnknownId(id);
}

QList<int> DBusMenuAdaptor::EventGroup(const QList<DBusMenuEvent> &events)
{
    QList<int> idErrors;
    for (const DBusMenuEvent &event : events) {
        if (!m_exporter->handleEvent(event.id, event.eventId))
            idErrors.append(event.id);
    }
    if (!events.isEmpty() && idErrors.size() == events.size()) {
        sendError(QStringLiteral("No menu item found"));
    }
    return idErrors;
}

bool DBusMenuAdaptor::AboutToShow(int id)
{
    bool changed = false;
    if (!m_exporter->prepareToShow(id, changed))
        sendUnknownId(id);
    return changed;
}

QList<int> DBusMenuAdaptor::AboutToShowGroup(const QList<int> &ids, QList<int> &idErrors)
{
    idErrors.clear();
    QList<int> updatesNeeded;
    for (int id : ids) {
        bool changed = false;
        if (!m_exporter->prepareToShow(id, changed))
            idErrors.append(id);
        else if (changed)
            updatesNeeded.append(id);
    }
    if (!ids.isEmpty() && idErrors.size() == ids.size())
        sendError(QStringLiteral("No menu item found"));
    return updatesNeeded;
}
