#include "ZoneResultsAccessible.h"

#include "AccessibleRetirement.h"
#include "ZoneResultsModel.h"

#include <QListView>
#include <QSet>

namespace {

QSet<QString> &takenNames()
{
    static QSet<QString> names;
    return names;
}

QAccessibleInterface *resultsFactory(const QString &className, QObject *object)
{
    if (className != QLatin1String("QListView") || AccessibleRetirement::isRetired(object) ||
        !takenNames().contains(object->objectName()))
        return nullptr;
    return new ZoneResultsAccessible(static_cast<QListView *>(object));
}

// One result row.
class ResultItemAccessible final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    static inline const QString addAction = QStringLiteral("Add");

    ResultItemAccessible(QListView *view, int row)
        : m_view(view)
        , m_row(row)
    {}

    bool isValid() const override { return m_view && index().isValid(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_view ? m_view->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_view);
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    void setText(QAccessible::Text, const QString &) override {}

    QString text(QAccessible::Text t) const override
    {
        const QModelIndex row = index();
        switch (t) {
        case QAccessible::Name:
            return row.data(ZoneResultsModel::TitleRole).toString();
        case QAccessible::Description: {
            QStringList parts{row.data(ZoneResultsModel::SubtitleRole).toString(),
                              row.data(ZoneResultsModel::TimeRole).toString()};
            if (row.data(ZoneResultsModel::AlreadyAddedRole).toBool())
                parts.append(QStringLiteral("already added"));
            parts.removeAll(QString());
            return parts.join(QStringLiteral(", "));
        }
        default:
            return {};
        }
    }

    QRect rect() const override
    {
        if (!m_view)
            return {};
        const QRect area = m_view->visualRect(index());
        return QRect(m_view->viewport()->mapToGlobal(area.topLeft()), area.size());
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!m_view)
            return state;
        const QModelIndex row = index();
        state.selectable = true;
        state.focusable = true;
        state.selected = m_view->selectionModel()->isSelected(row);
        state.focused = m_view->hasFocus() && m_view->currentIndex() == row;
        state.disabled = !(row.flags() & Qt::ItemIsEnabled);
        state.invisible = !m_view->viewport()->rect().intersects(m_view->visualRect(row));
        state.offscreen = state.invisible;
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

    QStringList actionNames() const override { return {addAction}; }
    QStringList keyBindingsForAction(const QString &) const override
    {
        return {QStringLiteral("Return")};
    }
    void doAction(const QString &actionName) override
    {
        if (actionName == addAction && isValid())
            Q_EMIT m_view->activated(index());
    }

private:
    QModelIndex index() const { return m_view ? m_view->model()->index(m_row, 0) : QModelIndex(); }

    QPointer<QListView> m_view;
    int m_row;
};

} // namespace

ZoneResultsAccessible::ZoneResultsAccessible(QListView *view)
    : QAccessibleWidget(view, QAccessible::List)
{}

ZoneResultsAccessible::~ZoneResultsAccessible()
{
    dropItems();
}

void ZoneResultsAccessible::install(const QString &objectName)
{
    static const bool installed = [] {
        QAccessible::installFactory(resultsFactory);
        return true;
    }();
    Q_UNUSED(installed)
    takenNames().insert(objectName);
}

int ZoneResultsAccessible::childCount() const
{
    watchModel();
    return view()->model() ? view()->model()->rowCount() : 0;
}

QAccessibleInterface *ZoneResultsAccessible::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    watchModel();
    auto it = m_items.constFind(index);
    if (it != m_items.cend())
        return QAccessible::accessibleInterface(*it);
    auto *item = new ResultItemAccessible(view(), index);
    m_items.insert(index, QAccessible::registerAccessibleInterface(item));
    return item;
}

int ZoneResultsAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
        if (QAccessible::accessibleInterface(it.value()) == child)
            return it.key();
    }
    return -1;
}

QAccessibleInterface *ZoneResultsAccessible::focusChild() const
{
    if (view()->hasFocus() && view()->currentIndex().isValid())
        return child(view()->currentIndex().row());
    return nullptr;
}

QListView *ZoneResultsAccessible::view() const
{
    return static_cast<QListView *>(widget());
}

void ZoneResultsAccessible::watchModel() const
{
    // The view may be given its model after this interface was made.
    QAbstractItemModel *model = view()->model();
    if (model == m_model)
        return;
    const_cast<ZoneResultsAccessible *>(this)->dropItems();
    m_model = model;
    m_modelWatch = std::make_unique<QObject>();
    if (!model)
        return;
    // Rows are made per query: their interfaces go with the rows they stood for.
    auto *self = const_cast<ZoneResultsAccessible *>(this);
    const auto drop = [self] { self->dropItems(); };
    QObject *watch = m_modelWatch.get();
    QObject::connect(model, &QAbstractItemModel::modelReset, watch, drop);
    QObject::connect(model, &QAbstractItemModel::rowsRemoved, watch, drop);
    QObject::connect(model, &QAbstractItemModel::rowsInserted, watch, drop);
    QObject::connect(model, &QAbstractItemModel::layoutChanged, watch, drop);
}

void ZoneResultsAccessible::dropItems()
{
    for (const QAccessible::Id id : std::as_const(m_items))
        QAccessible::deleteAccessibleInterface(id);
    m_items.clear();
}
