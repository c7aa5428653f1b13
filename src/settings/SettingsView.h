#pragma once

#include "LoginItemStatus.h"

#include <QDialog>
#include <QPointer>
#include <QWidget>

class AppUpdater;
class Clock;
class GeneralTab;
class QTabWidget;
class ZoneStore;

// The settings window's content: a header, then the Cities, Menu bar and
// General tabs. Holds nothing of its own beyond the add-city sheet and the
// login item's last read status; everything else follows the shared store,
// clock and updater.
class SettingsView final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int viewWidth = 660;
    static constexpr int viewHeight = 580;

    SettingsView(ZoneStore &store, Clock &clock, AppUpdater &updates, QWidget *parent = nullptr);

    QTabWidget &tabs() const { return *m_tabs; }
    GeneralTab &generalTab() const { return *m_generalTab; }

    bool isShowingAdd() const { return m_addSheet != nullptr; }
    // The window-modal sheet with the city search; null while it is closed.
    QDialog *addSheet() const { return m_addSheet; }
    void showAdd();

Q_SIGNALS:
    void quitRequested();

protected:
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    QWidget *makeCitiesTab();
    void updateLook();

    ZoneStore &m_store;
    Clock &m_clock;
    QTabWidget *m_tabs;
    GeneralTab *m_generalTab;
    QPointer<QDialog> m_addSheet;
    bool m_updatingLook = false;
};
