#include "DecorativeAccessible.h"

#include "AccessibleRetirement.h"

#include <QVariant>
#include <QWidget>

namespace {

constexpr char decorativeProperty[] = "zonaraDecorative";

QAccessibleInterface *decorativeFactory(const QString &, QObject *object)
{
    if (AccessibleRetirement::isRetired(object))
        return nullptr;
    auto *widget = qobject_cast<QWidget *>(object);
    if (widget && DecorativeAccessible::isHidden(widget))
        return new DecorativeAccessible(widget);
    return nullptr;
}

} // namespace

DecorativeAccessible::DecorativeAccessible(QWidget *widget)
    : QAccessibleWidget(widget, QAccessible::Graphic)
{}

void DecorativeAccessible::hide(QWidget *widget)
{
    static const bool installed = [] {
        QAccessible::installFactory(decorativeFactory);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(decorativeProperty, true);
}

bool DecorativeAccessible::isHidden(const QWidget *widget)
{
    return widget->property(decorativeProperty).toBool();
}

QAccessible::State DecorativeAccessible::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.invisible = true;
    state.focusable = false;
    return state;
}

QString DecorativeAccessible::text(QAccessible::Text) const
{
    return {};
}

int DecorativeAccessible::childCount() const
{
    return 0;
}

QAccessibleInterface *DecorativeAccessible::child(int) const
{
    return nullptr;
}
