#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The text of an XDG autostart entry (a desktop entry), read and written.
// Only the "Desktop Entry" group matters here; localised keys are ignored.
namespace AutostartEntry {

// The entry that starts the program at path with no window open.
QString contents(const QString &programPath);

// The unlocalised keys of the "Desktop Entry" group, values unescaped.
QHash<QString, QString> read(const QString &text);

// A program path or argument as it stands in Exec, quoted where it must be.
QString quoteArgument(const QString &argument);
// The arguments of an Exec value; empty when its quoting is broken.
QStringList splitExec(const QString &exec);

} // namespace AutostartEntry
