#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUrl>

// One release as an update feed announces it.
struct AppcastItem
{
    QString version;        // machine version, compared to decide what is newer
    QString displayVersion; // shown to people; the machine version when the feed has none
    QUrl releaseNotesUrl;   // empty when the feed gives none
    QDateTime publicationDate;
    QUrl downloadUrl;
    qint64 length = 0; // exact size of the release file in bytes
    QString contentType;
    QByteArray signature; // raw Ed25519 signature of the whole file

    bool operator==(const AppcastItem &) const = default;
};
