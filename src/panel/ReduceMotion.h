#pragma once

#include <QByteArray>
#include <QString>

// Whether animations are off: ZONARA_REDUCE_MOTION=1 (or =0 to force them
// on), else the desktop's own switch where a file of it can be read: KDE's
// AnimationDurationFactor of 0, or GTK's gtk-enable-animations=false.
class ReduceMotion final
{
public:
    ReduceMotion() = delete;

    // For this session's environment and configuration directory.
    static bool isOn();

    // `environmentValue` is ZONARA_REDUCE_MOTION's; `configDirectory` holds
    // kdeglobals and gtk-3.0/settings.ini.
    static bool isOn(const QByteArray &environmentValue, const QString &configDirectory);
};
