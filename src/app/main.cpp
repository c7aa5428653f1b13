#include "CommandLine.h"
#include "SettingsPreferencesStore.h"

#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationName(QStringLiteral("zonara"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ZONARA_VERSION));

    SettingsPreferencesStore preferences;
    QTextStream out(stdout);
    QTextStream err(stderr);
    CommandLine commandLine(preferences, out, err);
    return commandLine.run(QCoreApplication::arguments());
}
