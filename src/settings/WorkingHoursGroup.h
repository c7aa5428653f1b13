#pragma once

#include <QWidget>

class QTimeEdit;
class ToggleSwitch;
class ZoneStore;

// The optional working hours: a switch, and the range it dims the cities
// outside of. The controls show what the store holds, also after a change
// made elsewhere; every edit goes to the store at once.
class WorkingHoursGroup final : public QWidget
{
    Q_OBJECT

public:
    explicit WorkingHoursGroup(ZoneStore &store, QWidget *parent = nullptr);

private:
    void save();
    void showStored();

    ZoneStore &m_store;
    ToggleSwitch *m_toggle;
    QTimeEdit *m_from;
    QTimeEdit *m_to;
    QWidget *m_range;
};
