#pragma once

#include <QObject>

#include <functional>

class QWidget;

// An update a hidden widget need not run: requested while the widget is
// shown it runs at once, otherwise once when the widget is next shown. Keeps
// the tick of a closed panel or settings window from doing any work.
class ShownUpdate final : public QObject
{
public:
    ShownUpdate(QWidget *widget, std::function<void()> update);

    void request();
    // Whether a request waits for the widget to be shown.
    bool isPending() const { return m_pending; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_widget;
    std::function<void()> m_update;
    bool m_pending = false;
};
