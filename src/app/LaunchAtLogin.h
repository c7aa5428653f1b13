#pragma once

#include "LoginItemStatus.h"

#include <QString>
#include <QStringList>

#include <functional>

// Zonara's login item: an XDG autostart entry,
// $XDG_CONFIG_HOME/autostart/io.github.zonara.Zonara.desktop. The entry is
// the only record of the setting; nothing else keeps a copy.
namespace LaunchAtLogin {

// Registers (writes the entry) or unregisters (removes it); false when the
// autostart folder could not be changed.
bool setEnabled(bool enabled);

// What the entry says now. Never requiresApproval: autostart needs none.
LoginItemStatus status();

// Opens the desktop's own startup-applications settings, or the autostart
// folder in the file manager when no such tool is installed.
void openSystemSettingsLoginItems();

// The entry's path.
QString entryPath();
// The program the entry starts: the AppImage when Zonara runs from one.
QString programPath();

// The startup-applications tool for the desktops named in
// $XDG_CURRENT_DESKTOP, as a program and its arguments; empty when none of
// the known tools is found.
QStringList loginItemsCommand(const QString &currentDesktop,
                              const std::function<QString(const QString &)> &findExecutable);

} // namespace LaunchAtLogin
