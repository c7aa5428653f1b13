#pragma once

#include <QLineEdit>

class InitialFieldFocus;

// A single-line field that takes the keyboard focus by itself once it is on
// screen, and ends each edit exactly once: by Return (save), by Escape
// (cancel) or, where a subclass offers it, by losing the focus. The owner
// keeps the text: the field reports each keystroke through `textEdited` and
// takes the owner's copy back through `setBoundText`.
class FocusedTextInput : public QLineEdit
{
    Q_OBJECT

public:
    ~FocusedTextInput() override;

    // Touches the field only when the text differs, so the caret stays put
    // while the owner echoes what the user typed.
    void setBoundText(const QString &text);

    // The current edit has ended; typing starts a new one.
    bool isFinished() const { return m_finished; }

    const InitialFieldFocus &initialFocus() const { return *m_initialFocus; }
    // See InitialFieldFocus::setSelectsAll.
    void setSelectsAllOnFocus(bool selectsAll);

Q_SIGNALS:
    // Return or Enter, with the text at that moment.
    void saveRequested(const QString &text);
    // Escape.
    void cancelRequested();
    // The edit ended by the focus going elsewhere, with the text at that moment.
    void focusLost(const QString &text);

protected:
    FocusedTextInput(const QString &placeholder, QFont::Weight weight, QWidget *parent);

    // Ends the current edit as a focus loss, unless it has already ended.
    void commitOnFocusLoss();

    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    InitialFieldFocus *m_initialFocus;
    bool m_finished = false;
};
