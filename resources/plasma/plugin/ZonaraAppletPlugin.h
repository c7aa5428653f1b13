#pragma once

#include <QQmlExtensionPlugin>

// The QML module io.github.zonara.applet: Zonara's bus for the Plasma applet,
// whose QML has no D-Bus of its own.
class ZonaraAppletPlugin final : public QQmlExtensionPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QQmlExtensionInterface_iid)

public:
    void registerTypes(const char *uri) override;
};
