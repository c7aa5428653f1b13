#pragma once

#include "AppcastItem.h"

#include <QObject>

// What the updater shows the user, and the user's answers. The program uses
// the standard dialogs; tests use a recording stand-in.
class UpdateUserDriver : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void showChecking() = 0;
    virtual void showDownloading(const AppcastItem &item) = 0;
    virtual void showProgress(qint64 received, qint64 total) = 0;
    virtual void showUpToDate(const QString &currentVersion) = 0;
    // installsInPlace: the update replaces this program (Install) rather
    // than being saved for the user (Download).
    virtual void showUpdateFound(const AppcastItem &item, const QString &currentVersion,
                                 bool installsInPlace) = 0;
    virtual void showInstalled(const AppcastItem &item) = 0;
    virtual void showSaved(const AppcastItem &item, const QString &path) = 0;
    virtual void showError(const QString &message) = 0;
    virtual void dismiss() = 0;

Q_SIGNALS:
    void cancelRequested();
    void installRequested();
    void remindLaterRequested();
    void skipRequested();
    void restartRequested();
};
