#include "ZoneService.h"

#include "CityTimes.h"
#include "DirectBusSignal.h"
#include "StoreZoneEditor.h"
#include "TimeZoneDatabase.h"
#include "ZonaraBus.h"
#include "ZoneLimits.h"
#include "ZoneListCodec.h"
#include "ZoneStore.h"

#include <QDateTime>

namespace {

std::optional<QString> nicknameFrom(bool hasNickname, const QString &nickname)
{
    return hasNickname ? std::optional(nickname) : std::nullopt;
}

bool done(ZoneEditor::Result result)
{
    return result == ZoneEditor::Result::Done || result == ZoneEditor::Result::Unsaved;
}

} // namespace

const QString ZoneService::interfaceName = QStringLiteral("io.github.zonara.Zones1");

ZoneService::ZoneService(ZoneStore &store, const QDBusConnection &bus, QObject *parent)
    : QDBusAbstractAdaptor(parent)
    , m_store(store)
    , m_bus(bus)
{}

void ZoneService::setLine(const QString &line)
{
    if (line == m_line)
        return;
    m_line = line;
    // Sent from here: QtDBus would relay it through its own thread, a
    // second wake-up of this process at every tick.
    if (!(DirectBusSignal(ZonaraBus::objectPath, interfaceName, QStringLiteral("LineChanged"))
          << m_line)
             .send(m_bus))
        Q_EMIT LineChanged(m_line);
}

void ZoneService::setPanelToggle(std::function<void(const QPoint &)> toggle)
{
    m_togglePanel = std::move(toggle);
}

QByteArray ZoneService::Zones() const
{
    return ZoneListCodec::encode(m_store.zones()).value_or(QByteArray());
}

QString ZoneService::Format() const
{
    return MenuBarFormats::rawValue(m_store.format());
}

bool ZoneService::SaveFailed() const
{
    return m_store.saveFailed();
}

void ZoneService::refuse(const QDBusMessage &call, QDBusError::ErrorType error,
                         const QString &text) const
{
    // The error goes instead of the slot's answer.
    call.setDelayedReply(true);
    m_bus.send(call.createErrorReply(error, text));
}

bool ZoneService::startsInTime(qint64 deadline, const QDBusMessage &call) const
{
    if (QDateTime::currentMSecsSinceEpoch() + longestEditMs <= deadline)
        return true;
    refuse(call, QDBusError::TimedOut,
           QStringLiteral("Zonara was too busy to make the change in time; nothing was changed"));
    return false;
}

bool ZoneService::withinLimits(const std::optional<QString> &problem,
                               const QDBusMessage &call) const
{
    if (!problem)
        return true;
    refuse(call, QDBusError::InvalidArgs, *problem);
    return false;
}

bool ZoneService::Add(const QString &identifier, bool hasNickname, const QString &nickname,
                      bool pinned, qint64 deadline, const QDBusMessage &call)
{
    const std::optional<QString> chosen = nicknameFrom(hasNickname, nickname);
    if (!withinLimits(ZoneLimits::nicknameProblem(chosen), call) ||
        !withinLimits(ZoneLimits::countProblem(m_store.zones().size()), call) ||
        !startsInTime(deadline, call))
        return false;
    return done(StoreZoneEditor(m_store).add(identifier, chosen, pinned));
}

bool ZoneService::Rename(const QString &id, bool hasNickname, const QString &nickname,
                         qint64 deadline, const QDBusMessage &call)
{
    std::optional<QString> chosen = nicknameFrom(hasNickname, nickname);
    if (chosen)
        chosen = trimmedText(*chosen);
    if (!withinLimits(ZoneLimits::nicknameProblem(chosen), call) || !startsInTime(deadline, call))
        return false;
    return done(StoreZoneEditor(m_store).rename(QUuid::fromString(id),
                                                nicknameFrom(hasNickname, nickname)));
}

bool ZoneService::SetPinned(const QString &id, bool pinned, qint64 deadline,
                            const QDBusMessage &call)
{
    return startsInTime(deadline, call) &&
           done(StoreZoneEditor(m_store).setPinned(QUuid::fromString(id), pinned));
}

bool ZoneService::Remove(const QString &id, qint64 deadline, const QDBusMessage &call)
{
    return startsInTime(deadline, call) &&
           done(StoreZoneEditor(m_store).remove(QUuid::fromString(id)));
}

bool ZoneService::MoveZones(const QStringList &ids, const QString &before, qint64 deadline,
                            const QDBusMessage &call)
{
    if (!startsInTime(deadline, call))
        return false;
    QList<QUuid> uuids;
    for (const QString &id : ids)
        uuids.append(QUuid::fromString(id));
    std::optional<QUuid> anchor;
    if (!before.isEmpty())
        anchor = QUuid::fromString(before);
    return done(StoreZoneEditor(m_store).moveZones(uuids, anchor));
}

bool ZoneService::SetFormat(const QString &format, qint64 deadline, const QDBusMessage &call)
{
    const std::optional<MenuBarFormat> chosen = MenuBarFormats::fromRawValue(format);
    return chosen && startsInTime(deadline, call) &&
           done(StoreZoneEditor(m_store).setFormat(*chosen));
}

QString ZoneService::Line() const
{
    return m_line;
}

QString ZoneService::Cities() const
{
    // The instant of the call: an applet asks just before it shows them.
    return CityTimes::summary(m_store.zones(), m_store.format(), QDateTime::currentDateTimeUtc(),
                              TimeZoneDatabase::localZone());
}

void ZoneService::TogglePanel(int x, int y)
{
    if (m_togglePanel)
        m_togglePanel(QPoint(x, y));
}
