#pragma once

#include <QLabel>

// One line of text in a colour taken from the palette at paint time, so it
// follows a light/dark switch. Optionally cut with an ellipsis when narrow,
// or wrapped over several lines.
// Stays a QLabel so that assistive technology reads it as static text.
class TextLine : public QLabel
{
    Q_OBJECT

public:
    enum class Tone { primary, secondary, error, accent };

    explicit TextLine(const QFont &font, Tone tone = Tone::primary, QWidget *parent = nullptr);

    Tone tone() const { return m_tone; }
    void setTone(Tone tone);
    // Drawn faint, for a line that matters less just now.
    bool isDimmed() const { return m_dimmed; }
    void setDimmed(bool dimmed);
    bool elides() const { return m_elides; }
    void setElides(bool elides);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tone m_tone;
    bool m_elides = false;
    bool m_dimmed = false;
};
