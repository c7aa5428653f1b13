#include "BusZoneEditor.h"

#include "ZonaraBus.h"
#include "ZoneListCodec.h"
#include "ZoneService.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDateTime>

namespace {

// An edit may wait for the preferences' lock as long as any writer does, and
// its turn for 25 s more, after which the service refuses it rather than
// make it unseen.
constexpr int editTimeoutMs = int(ZoneService::longestEditMs) + 25000;

QString idText(const QUuid &id)
{
    return id.toString(QUuid::WithoutBraces);
}

} // namespace

BusZoneEditor::BusZoneEditor(const QDBusConnection &bus)
    : m_bus(bus)
{}

bool BusZoneEditor::isServing(const QDBusConnection &bus)
{
    return bus.isConnected() && bus.interface()->isServiceRegistered(ZonaraBus::serviceName);
}

std::optional<QVariant> BusZoneEditor::call(const QString &method, const QVariantList &arguments,
                                            int timeoutMs)
{
    QDBusMessage message = QDBusMessage::createMethodCall(
        ZonaraBus::serviceName, ZonaraBus::objectPath, ZoneService::interfaceName, method);
    message.setArguments(arguments);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, timeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
        return std::nullopt;
    return reply.arguments().constFirst();
}

ZoneEditor::Result BusZoneEditor::edit(const QString &method, const QVariantList &arguments)
{
    // The service acts only while this side still waits for its answer.
    const qint64 deadline = QDateTime::currentMSecsSinceEpoch() + editTimeoutMs;
    const std::optional<QVariant> answer =
        call(method, QVariantList(arguments) << deadline, editTimeoutMs);
    if (!answer)
        return Result::Unreachable;
    if (!answer->toBool())
        return Result::Ignored;
    const std::optional<QVariant> failed = call(QStringLiteral("SaveFailed"));
    return failed && failed->toBool() ? Result::Unsaved : Result::Done;
}

std::optional<QList<SavedZone>> BusZoneEditor::zones()
{
    const std::optional<QVariant> answer = call(QStringLiteral("Zones"));
    if (!answer)
        return std::nullopt;
    return ZoneListCodec::decode(answer->toByteArray());
}

std::optional<MenuBarFormat> BusZoneEditor::format()
{
    const std::optional<QVariant> answer = call(QStringLiteral("Format"));
    if (!answer)
        return std::nullopt;
    return MenuBarFormats::fromRawValue(answer->toString());
}

ZoneEditor::Result BusZoneEditor::add(const QString &identifier,
                                      const std::optional<QString> &nickname, bool pinned)
{
    return edit(QStringLiteral("Add"),
                {identifier, nickname.has_value(), nickname.value_or(QString()), pinned});
}

ZoneEditor::Result BusZoneEditor::rename(const QUuid &id, const std::optional<QString> &nickname)
{
    return edit(QStringLiteral("Rename"),
                {idText(id), nickname.has_value(), nickname.value_or(QString())});
}

ZoneEditor::Result BusZoneEditor::setPinned(const QUuid &id, bool pinned)
{
    return edit(QStringLiteral("SetPinned"), {idText(id), pinned});
}

ZoneEditor::Result BusZoneEditor::remove(const QUuid &id)
{
    return edit(QStringLiteral("Remove"), {idText(id)});
}

ZoneEditor::Result BusZoneEditor::moveZones(const QList<QUuid> &ids,
                                            const std::optional<QUuid> &before)
{
    QStringList texts;
    for (const QUuid &id : ids)
        texts.append(idText(id));
    return edit(QStringLiteral("MoveZones"), {texts, before ? idText(*before) : QString()});
}

ZoneEditor::Result BusZoneEditor::setFormat(MenuBarFormat format)
{
    return edit(QStringLiteral("SetFormat"), {MenuBarFormats::rawValue(format)});
}
