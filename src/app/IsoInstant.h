#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

// The instants the command line takes (--at): an ISO-8601 date and time with
// an explicit offset ("Z" or ±hh:mm).
namespace IsoInstant {

std::optional<QDateTime> parse(const QString &text);

} // namespace IsoInstant
