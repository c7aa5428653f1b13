#include "ReturnPressesButtons.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QKeyEvent>

void ReturnPressesButtons::install()
{
    static ReturnPressesButtons *filter = [] {
        auto *made = new ReturnPressesButtons(QCoreApplication::instance());
        QCoreApplication::instance()->installEventFilter(made);
        return made;
    }();
    Q_UNUSED(filter)
}

bool ReturnPressesButtons::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if ((key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) ||
        (key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    auto *button = qobject_cast<QAbstractButton *>(watched);
    if (!button || !button->hasFocus() || !button->isEnabled() || !button->isVisible())
        return false;
    button->animateClick();
    return true;
}
