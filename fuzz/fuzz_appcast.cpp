#include "Appcast.h"

#include <cstdlib>

// Any document: no crash, and only usable releases come back.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<QList<AppcastItem>> items = Appcast::parse(document);
    if (!items)
        return 0;
    for (const AppcastItem &item : *items) {
        if (item.length <= 0 || item.signature.isEmpty() || !item.downloadUrl.isValid())
            std::abort();
    }
    Appcast::newest(*items);
    return 0;
}
