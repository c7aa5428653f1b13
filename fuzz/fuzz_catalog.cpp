#include "CatalogJsonReader.h"

#include <cstdlib>

// Any bytes: no crash, no entry made from less than its members, and no other
// name without its city.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    CityOtherNames otherNames;
    const auto cities = CatalogJsonReader::read(
        QByteArrayView(reinterpret_cast<const char *>(data), qsizetype(size)), &otherNames);
    // {"name":"","identifier":"","country":""} is the shortest entry.
    if (cities && qsizetype(size) < 39 * cities->size())
        std::abort();
    for (qsizetype i = 0; i < otherNames.size(); ++i) {
        if (!cities || otherNames.city(i) >= cities->size() ||
            (i > 0 && otherNames.city(i) < otherNames.city(i - 1)))
            std::abort();
    }
    return 0;
}
