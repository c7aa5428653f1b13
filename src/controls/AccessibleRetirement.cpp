#include "AccessibleRetirement.h"

#include <QAccessible>
#include <QSet>
#include <QWidget>

namespace {

QSet<const QObject *> &retired()
{
    static QSet<const QObject *> objects;
    return objects;
}

void markRetired(QObject *object)
{
    if (retired().contains(object))
        return;
    retired().insert(object);
    QObject::connect(object, &QObject::destroyed, [object] { retired().remove(object); });
}

} // namespace

namespace AccessibleRetirement {

void retire(QWidget *widget)
{
    if (!widget || retired().contains(widget))
        return;
    QList<QWidget *> objects = widget->findChildren<QWidget *>();
    objects.prepend(widget);
    if (QAccessible::isActive()) {
        QAccessibleEvent gone(widget, QAccessible::ObjectDestroyed);
        QAccessible::updateAccessibility(&gone);
    }
    // Innermost first, so that no parent is asked about a child it no longer has.
    for (auto it = objects.crbegin(); it != objects.crend(); ++it) {
        markRetired(*it);
        // Even unannounced, a cached interface would outlive the parts it reads.
        if (QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(*it))
            QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(iface));
    }
}

void deleteLater(QWidget *widget)
{
    if (!widget)
        return;
    widget->hide();
    retire(widget);
    widget->deleteLater();
}

bool isRetired(const QObject *object)
{
    return retired().contains(object);
}

} // namespace AccessibleRetirement
