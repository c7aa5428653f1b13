#pragma once

#include "FocusedTextInput.h"

// The field that replaces a zone's name while its nickname is edited. Besides
// Return and Escape, the edit ends (as a focus loss) on a mouse press anywhere
// else in the same window, except on a visible "inline-rename-action" button,
// and when its window stops being active after the field had its focus.
class NameField final : public FocusedTextInput
{
    Q_OBJECT

public:
    explicit NameField(QWidget *parent = nullptr);
    ~NameField() override;

protected:
    bool event(QEvent *event) override;
    // Sees every mouse press of the application before its target does.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void startWatchingClicks();
    void stopWatchingClicks();
    void handleOutsideClick(const QWidget *target, const QPointF &globalPosition);

    bool m_watchingClicks = false;
};
