#pragma once

#include "AppcastItem.h"
#include "UpdateOrigin.h"

#include <QString>

struct UpdateInstallResult
{
    enum class Outcome {
        Installed, // the running AppImage was replaced; it takes effect on restart
        Saved,     // the verified file was saved for the user to install
        Failed,
        Cancelled,
    };

    UpdateOrigin origin = UpdateOrigin::User;
    Outcome outcome = Outcome::Failed;
    AppcastItem item;
    QString path;    // the installed or saved file
    QString message; // what went wrong, in plain words, when failed
};
