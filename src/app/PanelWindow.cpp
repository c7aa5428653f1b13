#include "PanelWindow.h"

#include "AccessibleRetirement.h"
#include "WindowAccessible.h"

#include "Clock.h"
#include "PanelPlacement.h"

#include <QCursor>
#include <QDateTime>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

PanelWindow::PanelWindow(Clock &clock, QWidget *parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
    , m_clock(clock)
    , m_layout(new QVBoxLayout(this))
{
    setObjectName(QStringLiteral("zonara-panel"));
    setWindowTitle(QStringLiteral("Zonara"));
    WindowAccessible::mark(this);
    setFixedSize(panelWidth, panelHeight);
    m_layout->setContentsMargins(0, 0, 0, 0);
}

void PanelWindow::setContent(QWidget *content)
{
    AccessibleRetirement::deleteLater(m_content);
    m_content = content;
    m_layout->addWidget(content);
}

void PanelWindow::openAt(const QPoint &globalPosition)
{
    const QPoint click = globalPosition.isNull() ? QCursor::pos() : globalPosition;
    QScreen *screen = QGuiApplication::screenAt(click);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (screen)
        move(PanelPlacement::topLeftFor(click, size(), screen->availableGeometry()));
    m_popup = true;
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    present();
}

void PanelWindow::openAsWindow()
{
    m_popup = false;
    setWindowFlags(Qt::Window);
    if (QScreen *screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
    present();
}

void PanelWindow::present()
{
    // Opened from the keyboard or not, the focused control shows its ring.
    setAttribute(Qt::WA_KeyboardFocusChange);
    show();
    raise();
    activateWindow();
}

void PanelWindow::showEvent(QShowEvent *event)
{
    // An opened panel never shows the minute it was last closed on.
    m_clock.setNow(QDateTime::currentDateTimeUtc());
    m_wasActive = false;
    QWidget::showEvent(event);
    Q_EMIT opened();
}

void PanelWindow::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    Q_EMIT closed();
}

void PanelWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || !m_popup)
        return;
    if (isActiveWindow()) {
        m_wasActive = true;
    } else if (m_wasActive && isVisible()) {
        // Focus went elsewhere: a click outside, or another window raised.
        hide();
    }
}

void PanelWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        hide();
        return;
    }
    QWidget::keyPressEvent(event);
}
