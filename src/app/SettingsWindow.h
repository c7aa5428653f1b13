#pragma once

#include <QWidget>

// The settings window: made on first request, kept when closed, raised and
// activated on every request.
class SettingsWindow final : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsWindow(QWidget *parent = nullptr);

    void present();

Q_SIGNALS:
    void quitRequested();
};
