#pragma once

#include <QObject>
#include <QPointer>

class QLineEdit;

// Gives one field the keyboard focus, once, as soon as it is on screen in an
// active window, activating that window first when another one (or another
// application) has it. Each attempt runs on a later turn of the event loop;
// a failed one is retried only when the field is shown again or its window
// becomes active, never on a timer.
class InitialFieldFocus final : public QObject
{
    Q_OBJECT

public:
    // Owned by the field.
    explicit InitialFieldFocus(QLineEdit *field);

    // Starts over for the field's current window: `didFocus` becomes false
    // and the next chance focuses the field.
    void attach();
    void stopObserving();

    // Whether the focused field's text is selected, to be typed over (the
    // default), or the caret put at its end, to be typed on.
    void setSelectsAll(bool selectsAll) { m_selectsAll = selectsAll; }

    // The initial focus was given, or tried with the window active.
    bool didFocus() const { return m_didFocus; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void schedule();
    void focusWhenReady();

    QPointer<QLineEdit> m_field;
    QMetaObject::Connection m_applicationState;
    bool m_didFocus = false;
    bool m_observing = false;
    bool m_selectsAll = true;
};
