#pragma once

// The program's own login item, as the login-item layer reports it.
enum class LoginItemStatus {
    notRegistered,    // does not start at login
    enabled,          // starts at login
    requiresApproval, // registered, waiting for the user to allow it
    notFound,         // registered, but the program it names is gone
};

// Whether the "Launch at login" switch shows on.
constexpr bool launchesAtLogin(LoginItemStatus status)
{
    return status == LoginItemStatus::enabled || status == LoginItemStatus::requiresApproval;
}
