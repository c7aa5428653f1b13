#include "IsoInstant.h"

#include <cstdlib>

// Any text: no crash, and an instant taken always has an explicit offset.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QDateTime> instant = IsoInstant::parse(text);
    if (instant && (!instant->isValid() || instant->timeSpec() == Qt::LocalTime))
        std::abort();
    return 0;
}
