#include "CommandLine.h"
#include "FocusRingStyle.h"
#include "SettingsPreferencesStore.h"
#include "SingleInstance.h"
#include "ZonaraApp.h"

#include <QApplication>
#include <QDBusConnection>
#include <QIcon>
#include <QTextStream>

#include <cstdio>

namespace {

void nameApplication()
{
    QCoreApplication::setOrganizationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZONARA_VERSION));
}

int runCommandLine(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    nameApplication();
    SettingsPreferencesStore preferences;
    QTextStream out(stdout);
    QTextStream err(stderr);
    CommandLine commandLine(preferences, QDBusConnection::sessionBus(), out, err);
    return commandLine.run(QCoreApplication::arguments());
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

    QApplication app(argc, argv);
    QApplication::setStyle(new FocusRingStyle);
    nameApplication();
    const QString appId = QStringLiteral("io.github.zonara.Zonara");
    QApplication::setDesktopFileName(appId);
    // The installed icon where the theme has it, else our own copy.
    QApplication::setWindowIcon(
        QIcon::fromTheme(appId, QIcon(QStringLiteral(":/zonara/io.github.zonara.Zonara.svg"))));
    // Zonara lives in the tray: closing a window never ends it.
    QApplication::setQuitOnLastWindowClosed(false);

    using Request = SingleInstance::Request;
    const Request request = arguments.contains(QStringLiteral("--settings")) ? Request::settings
                            : arguments.contains(QStringLiteral("--panel"))  ? Request::panel
                                                                             : Request::reopen;
    SingleInstance instance(QDBusConnection::sessionBus());
    if (!instance.claim()) {
        if (instance.forward(request))
            return 0;
        std::fputs("zonara: another Zonara is running but did not answer\n", stderr);
        return 1;
    }

    ZonaraApp zonara(instance, request);
    return app.exec();
}
