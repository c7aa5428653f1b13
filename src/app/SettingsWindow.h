#pragma once

#include <QWidget>

// The settings window: made on first request, kept when closed, raised and
// activated on every request. Its size is its content's.
class SettingsWindow final : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsWindow(QWidget *content, QWidget *parent = nullptr);

    void present();
};
