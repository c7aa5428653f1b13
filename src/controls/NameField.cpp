#include "NameField.h"

#include "InitialFieldFocus.h"
#include "InlineEditButton.h"

#include <QApplication>
#include <QMouseEvent>

namespace {

// Depth-first from `widget`: a visible edit-action button under the point.
// A hidden widget hides its whole subtree.
bool containsEditAction(const QWidget *widget, const QPointF &globalPosition)
{
    if (widget->isHidden())
        return false;
    if (widget->objectName() == InlineEditButton::editActionName &&
        widget->rect().contains(widget->mapFromGlobal(globalPosition).toPoint()))
        return true;
    for (const QObject *child : widget->children()) {
        const auto *childWidget = qobject_cast<const QWidget *>(child);
        if (childWidget && !childWidget->isWindow() &&
            containsEditAction(childWidget, globalPosition))
            return true;
    }
    return false;
}

} // namespace

NameField::NameField(QWidget *parent)
    : FocusedTextInput(QString(), QFont::Medium, parent)
{}

NameField::~NameField()
{
    stopWatchingClicks();
}

bool NameField::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        startWatchingClicks();
        break;
    case QEvent::Hide:
        stopWatchingClicks();
        break;
    case QEvent::WindowDeactivate:
        // A field that never got its initial focus was not being edited.
        if (initialFocus().didFocus())
            commitOnFocusLoss();
        break;
    default:
        break;
    }
    return FocusedTextInput::event(event);
}

bool NameField::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress && watched->isWidgetType()) {
        const auto *press = static_cast<QMouseEvent *>(event);
        if (press->button() == Qt::LeftButton || press->button() == Qt::RightButton)
            handleOutsideClick(static_cast<QWidget *>(watched), press->globalPosition());
    }
    // The press always goes on to do its normal work.
    return FocusedTextInput::eventFilter(watched, event);
}

void NameField::startWatchingClicks()
{
    if (m_watchingClicks)
        return;
    qApp->installEventFilter(this);
    m_watchingClicks = true;
}

void NameField::stopWatchingClicks()
{
    if (!m_watchingClicks)
        return;
    qApp->removeEventFilter(this);
    m_watchingClicks = false;
}

void NameField::handleOutsideClick(const QWidget *target, const QPointF &globalPosition)
{
    if (!isVisible() || !window()->isVisible())
        return;
    if (target->window() != window())
        return;
    if (rect().contains(mapFromGlobal(globalPosition).toPoint()))
        return;
    // Save and Cancel do their own action.
    if (containsEditAction(window(), globalPosition))
        return;
    commitOnFocusLoss();
}
