#pragma once

#include <QAbstractItemModel>
#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

#include <memory>

class QListView;

// The add-city results as assistive technology sees them: a list whose items
// are named after their place, described by where and what time it is
// there, and whose one action, "Add", adds the place as Return does.
// Qt's own table cells offer only "Toggle", which merely selects.
class ZoneResultsAccessible final : public QAccessibleWidget
{
public:
    explicit ZoneResultsAccessible(QListView *view);
    ~ZoneResultsAccessible() override;

    // Takes over the interface of every list view with this object name.
    static void install(const QString &objectName);

    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *focusChild() const override;

private:
    QListView *view() const;
    void watchModel() const;
    void dropItems();

    mutable QHash<int, QAccessible::Id> m_items;
    mutable QPointer<QAbstractItemModel> m_model;
    // Disconnects the model's signals when this interface or model goes.
    mutable std::unique_ptr<QObject> m_modelWatch;
};
