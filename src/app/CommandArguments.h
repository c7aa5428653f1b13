#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// What `zonara`'s arguments ask for, told apart before anything is loaded
// that only one kind of run needs.
namespace CommandArguments {

// A change that could not be saved ends with UsageError's status too.
enum ExitCode { Success = 0, Refused = 1, UsageError = 2 };

// Whether the arguments (the program name first) ask for a command rather
// than for the tray program.
bool isCommand(const QStringList &arguments);

// For arguments that start the tray program: the first one that is neither
// its own (--settings) nor one of Qt's documented options.
std::optional<QString> unknownTrayOption(const QStringList &arguments);

} // namespace CommandArguments
