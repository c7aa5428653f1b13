#include "WindowAccessible.h"

#include "AccessibleRetirement.h"

#include <QVariant>
#include <QWidget>

namespace {

constexpr char windowProperty[] = "zonaraWindow";

QAccessibleInterface *windowFactory(const QString &, QObject *object)
{
    if (AccessibleRetirement::isRetired(object))
        return nullptr;
    auto *widget = qobject_cast<QWidget *>(object);
    if (widget && widget->property(windowProperty).toBool())
        return new WindowAccessible(widget);
    return nullptr;
}

} // namespace

WindowAccessible::WindowAccessible(QWidget *widget)
    : QAccessibleWidget(widget, QAccessible::Window)
{}

void WindowAccessible::mark(QWidget *widget)
{
    static const bool installed = [] {
        QAccessible::installFactory(windowFactory);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(windowProperty, true);
}

QString WindowAccessible::text(QAccessible::Text t) const
{
    if (t == QAccessible::Name)
        return widget()->windowTitle();
    return QAccessibleWidget::text(t);
}
