#pragma once

#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QDateTime>
#include <QList>
#include <QLocale>
#include <QString>
#include <QTimeZone>
#include <QVariant>

// The computed texts of the settings window, apart from any widget.
namespace SettingsTexts {

// The tray line as it reads now, or "◎" while it is empty.
QString previewText(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &now,
                    const QTimeZone &localZone);

// "3.0 (57)". A value that is missing, blank or not text reads "1.1" for
// the short version and "2" for the build.
QString version(const QVariant &shortVersion, const QVariant &build);
// The version of this build: the project's version and the build number
// it was configured with, if any.
QString thisVersion();

// The date in the locale's abbreviated style and the time in its short
// style, in the computer's time zone: "Nov 23, 2026, 2:05 PM".
QString lastChecked(const QDateTime &date, const QLocale &locale = QLocale());

} // namespace SettingsTexts
