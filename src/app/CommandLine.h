#pragma once

#include <QStringList>

class PreferencesStore;
class QTextStream;

// The `zonara` command line: commands for scripts and status bars.
class CommandLine final
{
public:
    enum ExitCode { Success = 0, Refused = 1, UsageError = 2 };

    CommandLine(PreferencesStore &preferences, QTextStream &out, QTextStream &err);

    // Runs the command in the arguments (the program name first) and returns
    // the exit status.
    int run(const QStringList &arguments);

private:
    int line(const QStringList &arguments);
    int usageError(const QString &message);

    PreferencesStore &m_preferences;
    QTextStream &m_out;
    QTextStream &m_err;
};
