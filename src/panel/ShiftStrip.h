#pragma once

#include <QWidget>

class QPushButton;
class TextLine;

// The line over a list that shows another moment than now: how far from now
// and which time in which city ("+3 h · Tue 15:00 in Tokyo"), with "Back to
// now". Hidden while the list shows now. Assistive technology hears it as a
// notification each time its text changes.
class ShiftStrip final : public QWidget
{
    Q_OBJECT

public:
    explicit ShiftStrip(QWidget *parent = nullptr);

    QString text() const;
    // Empty hides the strip.
    void setText(const QString &text);
    QPushButton *backButton() const { return m_back; }

Q_SIGNALS:
    void backToNowRequested();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    TextLine *m_text;
    QPushButton *m_back;
};
