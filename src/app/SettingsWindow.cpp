#include "SettingsWindow.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

SettingsWindow::SettingsWindow(QWidget *parent)
    : QWidget(parent, Qt::Window)
{
    setObjectName(QStringLiteral("zonara-settings"));
    setWindowTitle(QStringLiteral("Zonara Settings"));

    auto *layout = new QVBoxLayout(this);
    auto *placeholder = new QLabel(QStringLiteral("Zonara keeps your cities in the tray."), this);
    placeholder->setWordWrap(true);
    layout->addWidget(placeholder);
    layout->addStretch();
    auto *quit = new QPushButton(QStringLiteral("Quit Zonara"), this);
    quit->setObjectName(QStringLiteral("quit-zonara"));
    connect(quit, &QPushButton::clicked, this, &SettingsWindow::quitRequested);
    layout->addWidget(quit, 0, Qt::AlignRight);
    resize(420, 320);
}

void SettingsWindow::present()
{
    if (isMinimized())
        showNormal();
    show();
    raise();
    activateWindow();
}
