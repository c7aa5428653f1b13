#pragma once

#include "AccessibleRetirement.h"

#include <QAccessible>
#include <QVariant>
#include <QWidget>

// Gives every widget of one class our own accessible interface, except
// widgets already retired from assistive technology.
namespace AccessibleFactory {

template<typename Interface, typename Widget>
QAccessibleInterface *make(const QString &className, QObject *object)
{
    if (className != QLatin1String(Widget::staticMetaObject.className()) ||
        AccessibleRetirement::isRetired(object))
        return nullptr;
    return new Interface(static_cast<Widget *>(object));
}

// Registers the factory once; safe to call repeatedly. Call it before
// anything asks for such a widget's interface, which is cached once made.
template<typename Interface, typename Widget> void install()
{
    static const bool installed = [] {
        QAccessible::installFactory(&make<Interface, Widget>);
        return true;
    }();
    Q_UNUSED(installed)
}

template<typename Interface> QAccessibleInterface *makeMarked(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget || AccessibleRetirement::isRetired(object) ||
        !widget->property(Interface::markProperty).toBool())
        return nullptr;
    return new Interface(widget);
}

// The same for widgets of any class, marked one by one (the property named
// Interface::markProperty), before anything asks for their interface.
template<typename Interface> void mark(QWidget *widget)
{
    static const bool installed = [] {
        QAccessible::installFactory(&makeMarked<Interface>);
        return true;
    }();
    Q_UNUSED(installed)
    widget->setProperty(Interface::markProperty, true);
}

} // namespace AccessibleFactory
