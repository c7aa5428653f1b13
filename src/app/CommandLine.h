#pragma once

#include "CommandArguments.h"
#include "MenuBarFormat.h"
#include "SavedZone.h"

#include <QDBusConnection>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class MemoryPreferencesStore;
class PreferencesStore;
class QCommandLineParser;
class QTextStream;
class ZoneEditor;
class ZoneStore;

// The `zonara` command line: the saved cities for scripts and status bars.
// Edits go through a running Zonara when there is one, so that its store
// stays the one owner of the list; otherwise through a store of our own.
class CommandLine final
{
public:
    using enum CommandArguments::ExitCode;

    // The session bus, connected to only when a command first needs it.
    using BusSource = std::function<QDBusConnection()>;

    CommandLine(PreferencesStore &preferences, BusSource bus, QTextStream &out, QTextStream &err);
    ~CommandLine();

    // Runs the command in the arguments (the program name first) and returns
    // the exit status.
    int run(const QStringList &arguments);

private:
    int dispatch(const QStringList &arguments);
    int help();
    int watch(QCommandLineParser &parser);
    int list(QCommandLineParser &parser);
    int at(QCommandLineParser &parser);
    // Every saved city at the moment the query names; for `at` and `list --at`.
    int moment(const QStringList &query, const QCommandLineParser &parser);
    int add(QCommandLineParser &parser);
    int rename(QCommandLineParser &parser);
    int setPinned(QCommandLineParser &parser, bool pinned);
    int remove(QCommandLineParser &parser);
    int move(QCommandLineParser &parser);
    int search(QCommandLineParser &parser);
    int format(QCommandLineParser &parser);
    int hours(QCommandLineParser &parser);

    // The running Zonara when there is one, else a store over the file;
    // reading alone never writes the file.
    ZoneEditor &editor(bool forEditing);
    std::optional<MenuBarFormat> chosenFormat(const QCommandLineParser &parser, int &status);
    // Resolves ZONE in the current list; writes the error and gives nothing.
    std::optional<SavedZone> zoneNamed(const QString &text);
    int editResult(int result, const QString &ignoredMessage = QString());
    int usageError(const QString &message);
    int print(const QString &text);
    QDBusConnection &bus();

    PreferencesStore &m_preferences;
    BusSource m_busSource;
    std::optional<QDBusConnection> m_bus;
    QTextStream &m_out;
    QTextStream &m_err;
    std::unique_ptr<MemoryPreferencesStore> m_snapshot;
    std::unique_ptr<ZoneStore> m_store;
    std::unique_ptr<ZoneEditor> m_editor;
};
