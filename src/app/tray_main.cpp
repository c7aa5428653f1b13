// The tray program, started by `zonara` in its own place when the arguments
// ask for no command. It alone loads the widgets, SVG and network stack.
#include "CommandArguments.h"
#include "FocusRingStyle.h"
#include "SingleInstance.h"
#include "ZonaraApp.h"

#include <QApplication>
#include <QDBusConnection>
#include <QIcon>

#include <cstdio>

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    // Also refused here, when started directly, before anything needs a display.
    if (const std::optional<QString> unknown = CommandArguments::unknownTrayOption(arguments)) {
        std::fprintf(stderr, "zonara: unknown option \"%s\"; see \"zonara --help\"\n",
                     unknown->toLocal8Bit().constData());
        return CommandArguments::UsageError;
    }

    QApplication app(argc, argv);
    QApplication::setStyle(new FocusRingStyle);
    QCoreApplication::setOrganizationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZONARA_VERSION));
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
