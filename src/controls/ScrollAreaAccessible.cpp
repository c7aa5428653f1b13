#include "ScrollAreaAccessible.h"

#include "AccessibleRetirement.h"

#include <QScrollArea>

namespace {

QAccessibleInterface *scrollAreaFactory(const QString &className, QObject *object)
{
    if (className != QLatin1String("QScrollArea") || AccessibleRetirement::isRetired(object))
        return nullptr;
    return new ScrollAreaAccessible(static_cast<QScrollArea *>(object));
}

} // namespace

ScrollAreaAccessible::ScrollAreaAccessible(QScrollArea *area)
    : QAccessibleWidget(area, QAccessible::Client)
{}

void ScrollAreaAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(scrollAreaFactory);
        return true;
    }();
    Q_UNUSED(installed)
}
