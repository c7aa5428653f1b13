#pragma once

#include <QString>

// Where the running Zonara answers on the session bus.
namespace ZonaraBus {

inline const QString serviceName = QStringLiteral("io.github.zonara.Zonara");
inline const QString objectPath = QStringLiteral("/io/github/zonara/Zonara");

} // namespace ZonaraBus
