#include "ShownUpdate.h"

#include <QEvent>
#include <QWidget>

ShownUpdate::ShownUpdate(QWidget *widget, std::function<void()> update)
    : QObject(widget)
    , m_widget(widget)
    , m_update(std::move(update))
{
    widget->installEventFilter(this);
}

void ShownUpdate::request()
{
    if (m_widget->isVisible()) {
        m_pending = false;
        m_update();
    } else {
        m_pending = true;
    }
}

bool ShownUpdate::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_widget && event->type() == QEvent::Show && m_pending) {
        m_pending = false;
        m_update();
    }
    return QObject::eventFilter(watched, event);
}
