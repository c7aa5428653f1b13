#include "ZonaraAppletPlugin.h"

#include "ZonaraClient.h"

#include <qqml.h>

void ZonaraAppletPlugin::registerTypes(const char *uri)
{
    qmlRegisterType<ZonaraClient>(uri, 1, 0, "ZonaraClient");
}
