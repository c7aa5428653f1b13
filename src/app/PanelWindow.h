#pragma once

#include <QWidget>

#include <functional>

class Clock;
class QVBoxLayout;

// The frameless panel opened from the tray. It closes on Escape, on a click
// outside it and when it loses focus, and never shows a stale minute.
class PanelWindow final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int panelWidth = 400;
    static constexpr int panelHeight = 480;

    explicit PanelWindow(Clock &clock, QWidget *parent = nullptr);

    // Sets the content; the panel owns it.
    void setContent(QWidget *content);

    // Opens next to a point on screen (the tray click), or at the pointer for
    // a null point.
    void openAt(const QPoint &globalPosition);
    // Shows it as an ordinary window, for desktops without any tray.
    void openAsWindow();
    // False once shown as a window, until opened from a tray again.
    bool isPopup() const { return m_popup; }

Q_SIGNALS:
    void opened();
    void closed();

protected:
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void present();

    Clock &m_clock;
    QVBoxLayout *m_layout = nullptr;
    QWidget *m_content = nullptr;
    bool m_wasActive = false;
    bool m_popup = true;
};
