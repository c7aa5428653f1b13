#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QDateTime>
#include <QString>
#include <QTimeZone>

#include <optional>

// The texts a zone card shows and speaks, for one instant.
namespace ZoneRowTexts {

// The zone's time in the format, or "--:--" when the database does not know it.
QString timeText(const SavedZone &zone, MenuBarFormat format, const QDateTime &now);

// The second line: the offset against the local zone (e.g. "JST · +8h"),
// behind the city part when a nickname hides it, or the bare identifier of
// a zone the database does not know.
QString subtitle(const SavedZone &zone, const QDateTime &now, const QTimeZone &localZone);

// e.g. "Time in Stockholm: 14:05".
QString timeAccessibleName(const QString &displayName, const QString &timeText);

QString pinToolTip(bool isPinned);
QString pinAccessibleName(const SavedZone &zone);
QString renameAccessibleName(const SavedZone &zone);
QString nicknameAccessibleName(const SavedZone &zone);

// What "Copy time" puts on the clipboard, e.g. "Tokyo 09:30"; nothing for a
// zone the database does not know.
std::optional<QString> copyText(const SavedZone &zone, MenuBarFormat format, const QDateTime &now);

} // namespace ZoneRowTexts
