#pragma once

#include "AppcastItem.h"
#include "UpdateOrigin.h"

#include <QString>

struct UpdateCheckResult
{
    enum class Outcome { UpToDate, UpdateAvailable, Failed, Cancelled };

    UpdateOrigin origin = UpdateOrigin::User;
    Outcome outcome = Outcome::Failed;
    AppcastItem item;                   // the newest release, when one is available
    QString message;                    // what went wrong, in plain words, when failed
    bool installsAutomatically = false; // the engine goes on to install it unasked
};
