#include "DBusMenuExporter.h"

#include "DBusMenuAdaptor.h"
#include "DBusMenuEvent.h"
#include "DBusMenuItemProperties.h"
#include "DBusMenuItemPropertyNames.h"

#include <QDBusMetaType>

#include <algorithm>

const QString DBusMenuExporter::interfaceName = QStringLiteral("com.canonical.dbusmenu");

namespace {

void registerTypes()
{
    qDBusRegisterMetaType<DBusMenuLayoutItem>();
    qDBusRegisterMetaType<DBusMenuItemProperties>();
    qDBusRegisterMetaType<DBusMenuItemPropertiesList>();
    qDBusRegisterMetaType<DBusMenuItemPropertyNames>();
    qDBusRegisterMetaType<DBusMenuItemPropertyNamesList>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<DBusMenuEventList>();
}

QVariantMap filtered(const QVariantMap &all, const QStringList &names)
{
    if (names.isEmpty())
        return all;
    QVariantMap result;
    for (const QString &name : names) {
        const auto it = all.constFind(name);
        if (it != all.constEnd())
            result.insert(name, it.value());
    }
    return result;
}

// An underscore marks a mnemonic in dbusmenu labels; a literal one is doubled.
QString escapedLabel(const QString &label)
{
    QString escaped = label;
    return escaped.replace(QLatin1Char('_'), QLatin1String("__"));
}

} // namespace

DBusMenuExporter::DBusMenuExporter(const QDBusConnection &bus, const QString &path, QObject *parent)
    : QObject(parent)
    , m_bus(bus)
    , m_path(path)
{
    registerTypes();
    m_adaptor = new DBusMenuAdaptor(this);
    m_exported =
        m_bus.isConnected() && m_bus.registerObject(m_path, this, QDBusConnection::ExportAdaptors);
}

DBusMenuExporter::~DBusMenuExporter()
{
    if (m_exported)
        m_bus.unregisterObject(m_path);
}

int DBusMenuExporter::addItem(const QString &label)
{
    const int id = m_items.isEmpty() ? 1 : m_items.last().id + 1;
    m_items.append({id, label});
    ++m_revision;
    Q_EMIT m_adaptor->LayoutUpdated(m_revision, rootId);
    return id;
}

bool DBusMenuExporter::contains(int id) const
{
    return id == rootId || std::any_of(m_items.cbegin(), m_items.cend(),
                                       [id](const Item &item) { return item.id == id; });
}

std::optional<QVariantMap> DBusMenuExporter::properties(int id, const QStringList &names) const
{
    if (id == rootId)
        return filtered({{QStringLiteral("children-display"), QStringLiteral("submenu")}}, names);
    for (const Item &item : m_items) {
        if (item.id == id) {
            return filtered({{QStringLiteral("type"), QStringLiteral("standard")},
                             {QStringLiteral("label"), escapedLabel(item.label)},
                             {QStringLiteral("enabled"), true},
                             {QStringLiteral("visible"), true}},
                            names);
        }
    }
    return std::nullopt;
}

std::optional<DBusMenuLayoutItem> DBusMenuExporter::layout(int id, int depth,
                                                           const QStringList &names) const
{
    const std::optional<QVariantMap> props = properties(id, names);
    if (!props)
        return std::nullopt;
    DBusMenuLayoutItem node{id, *props, {}};
    // Only the root has children in this flat menu.
    if (id == rootId && depth != 0) {
        for (const Item &item : m_items)
            node.children.append(*layout(item.id, depth < 0 ? depth : depth - 1, names));
    }
    return node;
}

bool DBusMenuExporter::handleEvent(int id, const QString &eventId)
{
    if (!contains(id))
        return false;
    if (id != rootId && eventId == QLatin1String("clicked"))
        Q_EMIT itemClicked(id);
    return true;
}
