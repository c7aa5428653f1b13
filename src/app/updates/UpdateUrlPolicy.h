#pragma once

#include <QUrl>

// Which addresses the updater may contact: HTTPS anywhere, plain HTTP only on
// this machine's loopback addresses (local test servers).
namespace UpdateUrlPolicy {

bool isAllowed(const QUrl &url);

} // namespace UpdateUrlPolicy
