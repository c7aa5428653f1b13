#pragma once

#include <QWidget>

class AddZoneView;
class Clock;
class Eyebrow;
class QPushButton;
class QStackedLayout;
class SaveErrorLine;
class ShiftStrip;
class TextLine;
class ZoneCollectionView;
class ZoneStore;

// The panel's content: the header, the count of cities with "Add city", the
// editable list and a footer with settings, the update check and quit, and
// above it a line while the preferences cannot be saved.
// "Add city" swaps all of it for the city search until that closes.
class ZoneListView final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int panelWidth = 400;
    static constexpr int panelHeight = 480;

    ZoneListView(ZoneStore &store, Clock &clock, QWidget *parent = nullptr);

    bool isShowingAdd() const { return m_addView != nullptr; }
    ZoneCollectionView &collection() const { return *m_collection; }
    AddZoneView *addView() const { return m_addView; }
    ShiftStrip &shiftStrip() const { return *m_shiftStrip; }

    // Whether an update check may start now; the update button follows it.
    void setCanCheckForUpdates(bool canCheck);

    void showAdd();
    void showList();

Q_SIGNALS:
    // The panel closes first, then the host acts.
    void settingsRequested();
    void updateCheckRequested();
    void quitRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void updateCount();
    void updateTint();

    ZoneStore &m_store;
    Clock &m_clock;
    QStackedLayout *m_pages;
    QWidget *m_list;
    Eyebrow *m_count;
    SaveErrorLine *m_saveError;
    ShiftStrip *m_shiftStrip;
    ZoneCollectionView *m_collection;
    QPushButton *m_updateButton;
    QPushButton *m_settingsButton;
    QPushButton *m_addButton = nullptr;
    AddZoneView *m_addView = nullptr;
    bool m_tinting = false;
};
