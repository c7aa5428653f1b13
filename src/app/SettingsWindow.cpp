#include "SettingsWindow.h"

#include "WindowAccessible.h"

#include <QVBoxLayout>

SettingsWindow::SettingsWindow(QWidget *content, QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("zonara-settings"));
    setWindowTitle(QStringLiteral("Zonara Settings"));
    WindowAccessible::mark(this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void SettingsWindow::present()
{
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}
