#include "InitialFieldFocus.h"

#include <QApplication>
#include <QEvent>
#include <QLineEdit>

InitialFieldFocus::InitialFieldFocus(QLineEdit *field)
    : QObject(field)
    , m_field(field)
{}

void InitialFieldFocus::attach()
{
    stopObserving();
    m_didFocus = false;
    if (!m_field)
        return;
    m_field->installEventFilter(this);
    m_applicationState = connect(qApp, &QGuiApplication::applicationStateChanged, this,
                                 [this](Qt::ApplicationState state) {
                                     if (state == Qt::ApplicationActive)
                                         schedule();
                                 });
    m_observing = true;
    schedule();
}

void InitialFieldFocus::stopObserving()
{
    if (!m_observing)
        return;
    m_observing = false;
    if (m_field)
        m_field->removeEventFilter(this);
    disconnect(m_applicationState);
}

bool InitialFieldFocus::eventFilter(QObject *watched, QEvent *event)
{
    // Visible children hear of their window's activation as WindowActivate.
    if (watched == m_field &&
        (event->type() == QEvent::Show || event->type() == QEvent::WindowActivate))
        schedule();
    return QObject::eventFilter(watched, event);
}

void InitialFieldFocus::schedule()
{
    // Queued on this helper: a helper destroyed meanwhile drops the call.
    QMetaObject::invokeMethod(this, &InitialFieldFocus::focusWhenReady, Qt::QueuedConnection);
}

void InitialFieldFocus::focusWhenReady()
{
    if (m_didFocus || !m_field)
        return;
    QWidget *window = m_field->window();
    if (!window->isVisible() || !m_field->isVisible())
        return;
    if (!window->isActiveWindow()) {
        window->raise();
        window->activateWindow();
    }
    // Activation is often answered later by the window system; the
    // WindowActivate it brings schedules the next attempt.
    if (!window->isActiveWindow())
        return;
    m_didFocus = true;
    m_field->setFocus(Qt::ActiveWindowFocusReason);
    if (m_field->hasFocus()) {
        if (m_selectsAll)
            m_field->selectAll();
        else
            m_field->end(false);
        stopObserving();
    }
}
