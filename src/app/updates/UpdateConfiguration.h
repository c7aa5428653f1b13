#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

// Everything the updater needs to know about this build and this
// installation. Tests build their own; the program uses forThisBuild().
struct UpdateConfiguration
{
    QUrl feedUrl;               // empty: this build has no update feed
    QByteArray publicKeyBase64; // Ed25519 public key the releases are signed with
    QString currentVersion;     // the running program's version

    // The running AppImage, replaced in place by an update; empty when the
    // program was installed some other way.
    QString appImagePath;
    // Where a verified update is saved when it cannot be installed in place.
    QString downloadDirectory;

    // A transfer that receives nothing for this long is given up.
    std::chrono::milliseconds stallTimeout{std::chrono::seconds(30)};
    std::chrono::milliseconds checkInterval{std::chrono::hours(24)};
    // The first automatic check waits this long after start.
    std::chrono::milliseconds firstCheckDelay{std::chrono::minutes(1)};
    qint64 maximumFeedSize = 1024 * 1024;
    // Space a download must leave free on its disk, beyond its own size.
    qint64 freeSpaceReserve = 64 * 1024 * 1024;

    std::function<QDateTime()> currentTime = [] { return QDateTime::currentDateTimeUtc(); };
    // Starts the replaced AppImage in place of this process.
    std::function<void(const QString &appImagePath)> restart = restartAfterExit;

    // Starts the program at path once this process has ended, then quits.
    static void restartAfterExit(const QString &path);

    // The build-time feed and key, this program's version, $APPIMAGE and the
    // user's Downloads folder.
    static UpdateConfiguration forThisBuild();
};
