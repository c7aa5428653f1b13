#pragma once

#include <QWidget>

class Clock;
class QComboBox;
class QLabel;
class TextLine;
class ZoneStore;

// The tray line's settings: the format picker with a live preview of the
// line, and how many cities are pinned. Follows the store and the clock.
class MenuBarTab final : public QWidget
{
    Q_OBJECT

public:
    MenuBarTab(ZoneStore &store, Clock &clock, QWidget *parent = nullptr);

private:
    void updateFormat();
    void updatePreview();
    void updatePinned();

    ZoneStore &m_store;
    Clock &m_clock;
    QComboBox *m_picker;
    QLabel *m_preview;
    TextLine *m_pinHint;
    QLabel *m_pinnedCount;
};
