#pragma once

#include "AccessibleRetirement.h"

#include <QAccessible>

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

} // namespace AccessibleFactory
