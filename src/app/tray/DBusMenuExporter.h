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

// A flat menu of plain items exported as com.canonical.dbusmenu, so that
// StatusNotifierItem hosts can show it (GNOME hides items without one).
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

    // Appends an item and returns its id; ids start at 1.
    int addItem(const QString &label);

    bool contains(int id) const;
    // The subtree at id, children down to depth levels (-1: all); only the
    // named properties unless names is empty. Nothing for an unknown id.
    std::optional<DBusMenuLayoutItem> layout(int id, int depth, const QStringList &names) const;
    std::optional<QVariantMap> properties(int id, const QStringList &names) const;
    // Returns whether id is known; a "clicked" event on an item emits itemClicked.
    bool handleEvent(int id, const QString &eventId);

Q_SIGNALS:
    void itemClicked(int id);

private:
    struct Item
    {
        int id;
        QString label;
    };

    QDBusConnection m_bus;
    QString m_path;
    QList<Item> m_items;
    uint m_revision = 1;
    bool m_exported = false;
    DBusMenuAdaptor *m_adaptor = nullptr;
};
