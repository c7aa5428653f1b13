#pragma once

#include <QObject>

// Return (or Enter) presses the focused button, as Space does, anywhere in
// the program: Qt leaves Return to dialogs' default buttons only.
class ReturnPressesButtons final : public QObject
{
    Q_OBJECT

public:
    // Installs the one filter on the application; safe to call repeatedly.
    static void install();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using QObject::QObject;
};
