#pragma once

#include <QObject>
#include <QString>

class Clock;
class ZoneStore;

// What the tray shows: the line of the pinned cities' times, or the globe
// when there is nothing to show. Follows the zones, the format and the clock.
class MenuBarLabel final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY textChanged)

public:
    MenuBarLabel(const ZoneStore &store, const Clock &clock, QObject *parent = nullptr);

    // The line; empty when the globe is shown.
    QString text() const { return m_text; }
    // The widest the line can grow to as time passes, for hosts that reserve room.
    QString guide() const { return m_guide; }
    bool showsGlobe() const { return m_text.isEmpty(); }
    // "Zonara" for the globe, otherwise "Zonara, " and the line.
    QString accessibleName() const;

Q_SIGNALS:
    void textChanged();

private:
    void update();

    const ZoneStore &m_store;
    const Clock &m_clock;
    QString m_text;
    QString m_guide;
};
