// `zonara`: the command line's front. `line`, which a status bar may ask for
// every few seconds, runs here on QtCore alone; every other command goes to
// zonara-cli (which also loads the bus) and no command to the tray program,
// each in this same process so that whoever started it keeps its id.
#include "CommandArguments.h"
#include "LineCommand.h"
#include "SettingsPreferencesStore.h"

#include <QCoreApplication>
#include <QTextStream>

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

int runLine(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationName(QStringLiteral("zonara"));
    const SettingsPreferencesStore preferences;
    QTextStream out(stdout);
    QTextStream err(stderr);
    return LineCommand(preferences, out, err).run(QCoreApplication::arguments());
}

// A program of ours beside this one (a build tree), else where it is installed.
std::filesystem::path ourProgram(const char *name)
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    const std::filesystem::path directory = error ? std::filesystem::path(".") : self.parent_path();
    for (const std::filesystem::path &candidate :
         {directory / name, directory / ZONARA_LIBEXEC_FROM_BINDIR / name}) {
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return directory / ZONARA_LIBEXEC_FROM_BINDIR / name;
}

int runInstead(const char *name, char *argv[])
{
    const std::filesystem::path program = ourProgram(name);
    ::execv(program.c_str(), argv);
    std::fprintf(stderr, "zonara: cannot start %s: %s\n", program.c_str(), std::strerror(errno));
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (arguments.value(1) == u"line")
        return runLine(argc, argv);
    if (CommandArguments::isCommand(arguments))
        return runInstead("zonara-cli", argv);
    // Refused before anything needs a display.
    if (const std::optional<QString> unknown = CommandArguments::unknownTrayOption(arguments)) {
        std::fprintf(stderr, "zonara: unknown option \"%s\"; see \"zonara --help\"\n",
                     unknown->toLocal8Bit().constData());
        return CommandArguments::UsageError;
    }
    return runInstead("zonara-tray", argv);
}
