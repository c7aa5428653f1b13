#include "UpdateInstaller.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstdio>
#include <cstring>

bool UpdateInstaller::replace(QTemporaryFile &file, const QString &target, QString *error)
{
    const QFileInfo targetInfo(target);
    file.close();
    if (!file.setPermissions(targetInfo.permissions() | QFileDevice::ReadOwner |
                             QFileDevice::WriteOwner | QFileDevice::ExeOwner)) {
        *error = file.errorString();
        return false;
    }
    // rename(2) replaces the target in one step; QFile::rename refuses to.
    if (std::rename(QFile::encodeName(file.fileName()).constData(),
                    QFile::encodeName(target).constData()) != 0) {
        *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    file.setAutoRemove(false);
    return true;
}

QString UpdateInstaller::keep(QTemporaryFile &file, const QString &fileName, QString *error)
{
    const QDir directory = QFileInfo(file.fileName()).absoluteDir();
    const QFileInfo nameInfo(fileName);
    const QString base = nameInfo.completeBaseName();
    const QString suffix = nameInfo.suffix().isEmpty() ? QString() : u'.' + nameInfo.suffix();
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                        QFileDevice::ReadOther);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString candidate = directory.filePath(
            attempt == 0 ? fileName : base + QStringLiteral(" (%1)").arg(attempt) + suffix);
        if (QFileInfo::exists(candidate))
            continue;
        if (file.rename(candidate)) {
            file.setAutoRemove(false);
            return candidate;
        }
        if (!QFileInfo::exists(candidate)) {
            *error = file.errorString();
            return {};
        }
    }
    *error = QStringLiteral("too many files of that name");
    return {};
}

QString UpdateInstaller::fileNameFor(const AppcastItem &item)
{
    QString name = item.downloadUrl.fileName();
    if (name.isEmpty() || name.startsWith(u'.'))
        name = QStringLiteral("Zonara-") + item.displayVersion;
    // The feed chooses these texts; they must stay one name inside the folder.
    name.replace(u'/', u'_').replace(QChar(0), u'_');
    return name;
}
