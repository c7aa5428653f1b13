#pragma once

#include <QStringList>

#include <memory>

class MemoryPreferencesStore;
class PreferencesStore;
class QTextStream;

// `zonara line`: the tray line for a status bar, which may ask for it every
// few seconds. Kept apart from the rest of the command line so that it runs
// on QtCore alone, without the bus.
class LineCommand final
{
public:
    LineCommand(const PreferencesStore &preferences, QTextStream &out, QTextStream &err);

    // The arguments as given to `zonara`: the program name, "line", options.
    int run(const QStringList &arguments);

    // The format names, comma-separated, for help and error texts.
    static QString formatNames();

    // The saved state in memory, so that reading never writes: on a first
    // run the seed stays there instead of landing in the user's file.
    static std::unique_ptr<MemoryPreferencesStore> snapshotOf(const PreferencesStore &preferences);

private:
    int usageError(const QString &message);

    const PreferencesStore &m_preferences;
    QTextStream &m_out;
    QTextStream &m_err;
};
