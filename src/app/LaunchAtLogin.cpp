#include "LaunchAtLogin.h"

#include "AutostartEntry.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrl>

namespace {

const QString entryName = QStringLiteral("io.github.zonara.Zonara.desktop");

QString autostartDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/autostart");
}

bool isTrue(const QString &value)
{
    return value.compare(QStringLiteral("true"), Qt::CaseInsensitive) == 0;
}

bool programExists(const QString &program)
{
    if (program.isEmpty())
        return false;
    if (QDir::isRelativePath(program))
        return !QStandardPaths::findExecutable(program).isEmpty();
    const QFileInfo file(program);
    return file.isFile() && file.isExecutable();
}

} // namespace

namespace LaunchAtLogin {

QString entryPath()
{
    return autostartDirectory() + u'/' + entryName;
}

QString programPath()
{
    const QString appImage = qEnvironmentVariable("APPIMAGE");
    if (!appImage.isEmpty() && QFileInfo(appImage).isFile())
        return QFileInfo(appImage).absoluteFilePath();
    return QCoreApplication::applicationFilePath();
}

bool setEnabled(bool enabled)
{
    if (!enabled) {
        QFile entry(entryPath());
        return !entry.exists() || entry.remove();
    }
    if (!QDir().mkpath(autostartDirectory()))
        return false;
    // Written beside and renamed over, so a session starting now never reads half an entry.
    QSaveFile entry(entryPath());
    if (!entry.open(QIODevice::WriteOnly))
        return false;
    entry.write(AutostartEntry::contents(programPath()).toUtf8());
    return entry.commit();
}

LoginItemStatus status()
{
    QFile file(entryPath());
    if (!file.open(QIODevice::ReadOnly))
        return LoginItemStatus::notRegistered;
    const auto keys = AutostartEntry::read(QString::fromUtf8(file.readAll()));
    // The desktops' own switches: Hidden=true (the standard one) and GNOME's.
    if (isTrue(keys.value(QStringLiteral("Hidden"))) ||
        keys.value(QStringLiteral("X-GNOME-Autostart-enabled"))
                .compare(QStringLiteral("false"), Qt::CaseInsensitive) == 0)
        return LoginItemStatus::notRegistered;
    const QStringList exec = AutostartEntry::splitExec(keys.value(QStringLiteral("Exec")));
    return programExists(exec.value(0)) ? LoginItemStatus::enabled : LoginItemStatus::notFound;
}

QStringList loginItemsCommand(const QString &currentDesktop,
                              const std::function<QString(const QString &)> &findExecutable)
{
    struct Tool
    {
        const char *desktop;
        QStringList command;
    };
    static const QList<Tool> tools = {
        {"KDE", {QStringLiteral("systemsettings"), QStringLiteral("kcm_autostart")}},
        {"KDE", {QStringLiteral("kcmshell5"), QStringLiteral("kcm_autostart")}},
        {"XFCE", {QStringLiteral("xfce4-session-settings")}},
        {"GNOME", {QStringLiteral("gnome-session-properties")}},
        {"GNOME", {QStringLiteral("gnome-tweaks")}},
        {"MATE", {QStringLiteral("mate-session-properties")}},
        {"X-CINNAMON", {QStringLiteral("cinnamon-session-properties")}},
        {"LXQT", {QStringLiteral("lxqt-config-session")}},
    };
    // $XDG_CURRENT_DESKTOP lists the desktop and those it derives from, most specific first.
    for (const QString &desktop : currentDesktop.split(u':', Qt::SkipEmptyParts)) {
        for (const Tool &tool : tools) {
            if (desktop.compare(QLatin1String(tool.desktop), Qt::CaseInsensitive) != 0)
                continue;
            const QString program = findExecutable(tool.command.first());
            if (!program.isEmpty())
                return QStringList{program} + tool.command.mid(1);
        }
    }
    return {};
}

void openSystemSettingsLoginItems()
{
    const QStringList command =
        loginItemsCommand(qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
                          [](const QString &name) { return QStandardPaths::findExecutable(name); });
    if (!command.isEmpty() && QProcess::startDetached(command.first(), command.mid(1)))
        return;
    QDir().mkpath(autostartDirectory());
    QDesktopServices::openUrl(QUrl::fromLocalFile(autostartDirectory()));
}

} // namespace LaunchAtLogin
