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

void DBusMenuExporter::setItems(const QList<Entry> &entries)
{
    QList<Item> items;
    items.reserve(entries.size());
    for (const Entry &entry : entries) {
        const std::optional<int> id = idOf(entry.key);
        items.append({id ? *id : ++m_lastId, entry});
    }

    const bool sameLayout =
        std::equal(items.cbegin(), items.cend(), m_items.cbegin(), m_items.cend(),
                   [](const Item &a, const Item &b) {
                       return a.id == b.id && a.entry.isSeparator == b.entry.isSeparator;
                   });
    DBusMenuItemPropertiesList changed;
    if (sameLayout) {
        for (qsizetype i = 0; i < items.size(); ++i) {
            if (items[i].entry.label != m_items[i].entry.label)
                changed.append(
                    {items[i].id, {{QStringLiteral("label"), escapedLabel(items[i].entry.label)}}});
        }
    }
    m_items = items;
    if (!sameLayout) {
        ++m_revision;
        Q_EMIT m_adaptor->LayoutUpdated(m_revision, rootId);
    } else if (!changed.isEmpty()) {
        ++m_updates;
        Q_EMIT m_adaptor->ItemsPropertiesUpdated(changed, {});
    }
}

std::optional<int> DBusMenuExporter::idOf(const QString &key) const
{
    for (const Item &item : m_items) {
        if (item.entry.key == key)
            return item.id;
    }
    return std::nullopt;
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
        if (item.id != id)
            continue;
        if (item.entry.isSeparator)
            return filtered({{QStringLiteral("type"), QStringLiteral("separator")},
                             {QStringLiteral("visible"), true}},
                            names);
        return filtered({{QStringLiteral("type"), QStringLiteral("standard")},
                         {QStringLiteral("label"), escapedLabel(item.entry.label)},
                         {QStringLiteral("enabled"), true},
                         {QStringLiteral("visible"), true}},
                        names);
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
    if (id == rootId &&
        (eventId == QLatin1String("opened") || eventId == QLatin1String("closed"))) {
        const bool open = eventId == QLatin1String("opened");
        if (open != m_open) {
            m_open = open;
            Q_EMIT openChanged();
        }
    }
    if (id == rootId || eventId != QLatin1String("clicked"))
        return true;
    for (const Item &item : m_items) {
        if (item.id == id && !item.entry.isSeparator)
            Q_EMIT itemClicked(item.entry.key);
    }
    return true;
}

bool DBusMenuExporter::prepareToShow(int id, bool &changed)
{
    if (!contains(id))
        return false;
    const uint revision = m_revision;
    const quint64 updates = m_updates;
    if (id == rootId)
        Q_EMIT aboutToShow();
    changed = m_revision != revision || m_updates != updates;
    return true;
}
