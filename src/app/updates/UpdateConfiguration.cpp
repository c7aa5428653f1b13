#include "UpdateConfiguration.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>

#ifndef ZONARA_UPDATE_FEED_URL
#define ZONARA_UPDATE_FEED_URL ""
#endif
#ifndef ZONARA_UPDATE_PUBLIC_KEY
#define ZONARA_UPDATE_PUBLIC_KEY ""
#endif

UpdateConfiguration UpdateConfiguration::forThisBuild()
{
    UpdateConfiguration configuration;
    const QString feed = QStringLiteral(ZONARA_UPDATE_FEED_URL);
    if (!feed.isEmpty())
        configuration.feedUrl = QUrl(feed, QUrl::StrictMode);
    configuration.publicKeyBase64 = QByteArrayLiteral(ZONARA_UPDATE_PUBLIC_KEY);
    configuration.currentVersion = QStringLiteral(ZONARA_VERSION);
    // Set by the AppImage runtime to the image being run.
    configuration.appImagePath = qEnvironmentVariable("APPIMAGE");
    configuration.downloadDirectory =
        QStandardPaths::writableLocation(QStandardPaths::DownloadLocation);
    return configuration;
}

void UpdateConfiguration::restartAfterExit(const QString &path)
{
    // The new process must not meet this one, which still owns the
    // single-instance name until it has ended; a tiny shell waits for that.
    const QString waitThenStart =
        QStringLiteral("while kill -0 \"$1\" 2>/dev/null; do sleep 0.2; done; exec \"$2\"");
    const QStringList arguments = {QStringLiteral("-c"), waitThenStart, QStringLiteral("sh"),
                                   QString::number(QCoreApplication::applicationPid()), path};
    if (QProcess::startDetached(QStringLiteral("/bin/sh"), arguments))
        QCoreApplication::quit();
}
