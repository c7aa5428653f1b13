#pragma once

#include "DBusMenuLayoutItem.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

class DBusMenuAdaptor;

// A flat menu of plain items and separators exported as com.canonical.dbusmenu,
// so that StatusNotifierItem hosts can show it (GNOME hides items without one).
class DBusMenuExporter final : public QObject, protected QDBusContext
{
    Q_OBJECT
    // The adaptor answers calls with errors through our call context.
    friend class DBusMenuAdaptor;

public:
    static const QString interfaceName;
    static constexpr int rootId = 0;

    DBusMenuExporter(const QDBusConnection &bus, const QString &path, QObject *parent = nullptr);
    ~DBusMenuExporter() override;

    bool isExported() const { return m_exported; }
    QString path() const { return m_path; }
    uint revision() const { return m_revision; }

    struct Entry
    {
        // Names the item to its owner; an item keeps its id while its key stays.
        QString key;
        QString label;
        bool isSeparator = false;
    };

    // Replaces the items. New keys or a new order update the layout; new
    // labels alone go out as property updates, so an open menu keeps its place.
    void setItems(const QList<Entry> &entries);
    // The item's id, or nothing for a key not in the menu.
    std::optional<int> idOf(const QString &key) const;
    // Between the host's "opened" and "closed" events.
    bool isOpen() const { return m_open; }

    bool contains(int id) const;
    // The subtree at id, children down to depth levels (-1: all); only the
    // named properties unless names is empty. Nothing for an unknown id.
    std::optional<DBusMenuLayoutItem> layout(int id, int depth, const QStringList &names) const;
    std::optional<QVariantMap> properties(int id, const QStringList &names) const;
    // Returns whether id is known; a "clicked" event on an item emits itemClicked.
    bool handleEvent(int id, const QString &eventId);
    // Lets the owner bring the items up to date before the host shows them;
    // answers whether anything changed. Returns false for an unknown id too.
    bool prepareToShow(int id, bool &changed);

Q_SIGNALS:
    void itemClicked(const QString &key);
    // Hosts ask before showing the menu: a slot may call setItems at once.
    void aboutToShow();
    void openChanged();

private:
    struct Item
    {
        int id;
        Entry entry;
    };

    QDBusConnection m_bus;
    QString m_path;
    QList<Item> m_items;
    uint m_revision = 1;
    int m_lastId = 0;
    // Label updates sent since the counter last moved; tells AboutToShow's answer.
    quint64 m_updates = 0;
    bool m_exported = false;
    bool m_open = false;
    DBusMenuAdaptor *m_adaptor = nullptr;
};
