#include "ReduceMotion.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

namespace {

bool kdeAnimationsOff(const QDir &config)
{
    const QString path = config.filePath(QStringLiteral("kdeglobals"));
    if (!QFileInfo::exists(path))
        return false;
    const QSettings settings(path, QSettings::IniFormat);
    bool ok = false;
    const double factor =
        settings.value(QStringLiteral("KDE/AnimationDurationFactor")).toDouble(&ok);
    return ok && factor == 0.0;
}

bool gtkAnimationsOff(const QDir &config)
{
    const QString path = config.filePath(QStringLiteral("gtk-3.0/settings.ini"));
    if (!QFileInfo::exists(path))
        return false;
    const QSettings settings(path, QSettings::IniFormat);
    const QString value =
        settings.value(QStringLiteral("Settings/gtk-enable-animations")).toString().trimmed();
    return value.compare(QStringLiteral("false"), Qt::CaseInsensitive) == 0 ||
           value == QStringLiteral("0");
}

} // namespace

bool ReduceMotion::isOn()
{
    return isOn(qgetenv("ZONARA_REDUCE_MOTION"),
                QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
}

bool ReduceMotion::isOn(const QByteArray &environmentValue, const QString &configDirectory)
{
    const QByteArray value = environmentValue.trimmed();
    if (value == "1")
        return true;
    if (value == "0")
        return false;
    if (configDirectory.isEmpty())
        return false;
    const QDir config(configDirectory);
    return kdeAnimationsOff(config) || gtkAnimationsOff(config);
}
