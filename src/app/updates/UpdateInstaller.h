#pragma once

#include "AppcastItem.h"

#include <QString>

class QTemporaryFile;

// Puts a verified release file in its place. The file is a temporary file in
// the destination's own folder, so every move is a rename on one file system.
namespace UpdateInstaller {

// Atomically replaces target (the running AppImage) by file, keeping target's
// permissions and making sure it stays executable.
bool replace(QTemporaryFile &file, const QString &target, QString *error);

// Renames file to fileName in its folder, or to "name (n).ext" when that is
// taken. Returns the final path, or an empty text on failure.
QString keep(QTemporaryFile &file, const QString &fileName, QString *error);

// A safe file name for the release: the last part of its download address.
QString fileNameFor(const AppcastItem &item);

} // namespace UpdateInstaller
