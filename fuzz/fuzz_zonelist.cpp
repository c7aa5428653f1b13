#include "ZoneListCodec.h"

#include <cstdlib>

// Any bytes: no crash, and a list that decodes survives a round trip.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QList<SavedZone>> zones = ZoneListCodec::decode(bytes);
    if (!zones)
        return 0;
    const std::optional<QByteArray> encoded = ZoneListCodec::encode(*zones);
    if (!encoded || ZoneListCodec::decode(*encoded) != zones)
        std::abort();
    return 0;
}
