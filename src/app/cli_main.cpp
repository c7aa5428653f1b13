// `zonara-cli`: every command but `line`, which `zonara` hands over in the
// same process. On QtCore and QtDBus alone: no widgets, no network stack.
#include "CommandLine.h"
#include "SettingsPreferencesStore.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QTextStream>

int main(int argc, char *argv[])
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
