// `zonara`: the command line, on QtCore and QtDBus alone, so that a status
// bar asking for the line every few seconds pays for nothing else. Without a
// command it becomes the tray program.
#include "CommandLine.h"
#include "SettingsPreferencesStore.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTextStream>

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

int runCommandLine(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZONARA_VERSION));
    SettingsPreferencesStore preferences;
    QTextStream out(stdout);
    QTextStream err(stderr);
    // The bus only once a command needs it.
    CommandLine commandLine(
        preferences, [] { return QDBusConnection::sessionBus(); }, out, err);
    return commandLine.run(QCoreApplication::arguments());
}

// The tray program beside this one (a build tree), else where it is installed.
std::filesystem::path trayProgram()
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path directory = error ? std::filesystem::path(".") : self.parent_path();
    for (const std::filesystem::path &candidate :
         {directory / "zonara-tray", directory / ZONARA_TRAY_FROM_BINDIR / "zonara-tray"}) {
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return directory / ZONARA_TRAY_FROM_BINDIR / "zonara-tray";
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (CommandLine::isCommand(arguments))
        return runCommandLine(argc, argv);
    // Refused before anything needs a display.
    if (const std::optional<QString> unknown = CommandLine::unknownTrayOption(arguments)) {
        std::fprintf(stderr, "zonara: unknown option \"%s\"; see \"zonara --help\"\n",
                     unknown->toLocal8Bit().constData());
        return CommandLine::UsageError;
    }
    // The same process, so that whoever started Zonara keeps its id.
    const std::filesystem::path tray = trayProgram();
    ::execv(tray.c_str(), argv);
    std::fprintf(stderr, "zonara: cannot start %s: %s\n", tray.c_str(), std::strerror(errno));
    return 1;
}
