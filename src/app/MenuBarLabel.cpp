#include "MenuBarLabel.h"

#include "Clock.h"
#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneStore.h"

MenuBarLabel::MenuBarLabel(const ZoneStore &store, const Clock &clock, QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_clock(clock)
{
    connect(&store, &ZoneStore::zonesChanged, this, &MenuBarLabel::update);
    connect(&store, &ZoneStore::formatChanged, this, &MenuBarLabel::update);
    connect(&clock, &Clock::nowChanged, this, &MenuBarLabel::update);
    update();
}

QString MenuBarLabel::accessibleName() const
{
    if (showsGlobe())
        return QStringLiteral("Zonara");
    return QStringLiteral("Zonara, ") + m_text;
}

void MenuBarLabel::update()
{
    // The local zone is read afresh: the user may have moved since the last tick.
    const QString text = MenuBarFormatter::string(m_store.zones(), m_store.format(), m_clock.now(),
                                                  TimeZoneDatabase::localZone());
    const QString guide = MenuBarFormatter::guide(m_store.zones(), m_store.format());
    if (text == m_text && guide == m_guide)
        return;
    m_text = text;
    m_guide = guide;
    Q_EMIT textChanged();
}
