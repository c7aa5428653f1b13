#pragma once

#include "MenuBarFormat.h"
#include "NameField.h"
#include "SavedZone.h"

#include <QDateTime>
#include <QPointer>
#include <QTime>
#include <QTimeZone>
#include <QWidget>

class InlineEditButton;
class QLabel;
class QToolButton;
class QVBoxLayout;
class TextLine;

// One saved zone as one line: drag handle, name over the offset line, the
// time in large digits, and the pin and rename buttons, which give way to
// Cancel and Save while the name is a rename field. A view of the state it
// is given: it decides nothing and reports every action as a signal.
class ZoneRow final : public QWidget
{
    Q_OBJECT

public:
    struct State
    {
        SavedZone zone;
        QDateTime now;
        MenuBarFormat format = MenuBarFormat::labelTime24;
        QTimeZone localZone;
        bool isRenaming = false;
        QString draftName;
        bool isReorderHighlighted = false;
        bool canReorder = true;
        // The drag, scroll and typing on the time that plan across zones.
        bool canShiftTime = false;
        // "clocks go back Sun" when the zone's offset changes soon; else empty.
        QString changeNotice;
        // Outside the user's working hours at the shown moment: drawn faint.
        bool isOutsideWorkingHours = false;

        friend bool operator==(const State &, const State &) = default;
    };

    explicit ZoneRow(const State &state, QWidget *parent = nullptr);

    const State &state() const { return m_state; }
    // Updates in place only what differs from the current state.
    void setState(const State &state);

    // The rename field while renaming, otherwise null.
    NameField *nameField() const { return m_field; }
    // The field a time is typed into, otherwise null.
    NameField *timeField() const { return m_timeField; }
    QWidget *timeArea() const;

    // Replaces the time with a field holding `text` (the time shown when
    // empty), for typing a time of day; ends with `timeEntered` or
    // `timeEntryEnded` alone.
    void beginTimeEntry(const QString &text);

Q_SIGNALS:
    void togglePinRequested();
    void beginRenameRequested();
    void saveRenameRequested();
    void cancelRenameRequested();
    // The rename field's text, on every keystroke and before a save.
    void draftNameEdited(const QString &text);
    // A valid time typed into the time field; the field has closed.
    void timeEntered(const QTime &time);
    // The field closed without a time (Escape, or the focus went elsewhere).
    void timeEntryEnded();

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void updateTexts();
    void updateSymbols();
    void updateRenaming();
    void endTimeEntry();
    void placeTimeField();

    State m_state;
    QLabel *m_handle;
    QWidget *m_nameBlock;
    QVBoxLayout *m_nameLayout;
    TextLine *m_name;
    TextLine *m_subtitle;
    TextLine *m_time;
    QToolButton *m_pin;
    QToolButton *m_rename;
    InlineEditButton *m_cancel;
    InlineEditButton *m_save;
    QPointer<NameField> m_field;
    QPointer<NameField> m_timeField;
};
