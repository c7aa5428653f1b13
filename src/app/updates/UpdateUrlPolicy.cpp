#include "UpdateUrlPolicy.h"

#include <QHostAddress>

bool UpdateUrlPolicy::isAllowed(const QUrl &url)
{
    if (!url.isValid() || url.host().isEmpty())
        return false;
    const QString scheme = url.scheme();
    if (scheme == QLatin1String("https"))
        return true;
    if (scheme != QLatin1String("http"))
        return false;
    if (url.host() == QLatin1String("localhost"))
        return true;
    const QHostAddress address(url.host());
    return !address.isNull() && address.isLoopback();
}
