#pragma once

#include <QList>
#include <QString>

#include <optional>

// How the pinned zones are written into the tray line.
enum class MenuBarFormat {
    labelTime24,
    labelTime12,
    timeOnly24,
    labelDayTime24,
    labelTime24Seconds,
};

namespace MenuBarFormats {

// Every format, in the order the settings window offers them.
QList<MenuBarFormat> allCases();

// The stored name of a format: its case name.
QString rawValue(MenuBarFormat format);

// The format whose raw value is exactly the given text (case-sensitive).
std::optional<MenuBarFormat> fromRawValue(const QString &text);

QString title(MenuBarFormat format);

} // namespace MenuBarFormats
