#include "ZoneListCodec.h"

#include "BinaryPlistShape.h"

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

namespace {

struct PlistDeleter
{
    void operator()(plist_t node) const { plist_free(node); }
};
using PlistPtr = std::unique_ptr<std::remove_pointer_t<plist_t>, PlistDeleter>;

const char *const idKey = "id";
const char *const identifierKey = "identifier";
const char *const customLabelKey = "customLabel";
const char *const isPinnedKey = "isPinned";

bool hasNul(const QString &text)
{
    return text.contains(QChar(u'\0'));
}

std::optional<QString> stringValue(plist_t node)
{
    if (node == nullptr || plist_get_node_type(node) != PLIST_STRING)
        return std::nullopt;
    uint64_t length = 0;
    const char *data = plist_get_string_ptr(node, &length);
    if (data == nullptr || length > uint64_t(std::numeric_limits<qsizetype>::max()))
        return std::nullopt;
    const QByteArrayView utf8(data, qsizetype(length));
    // Strings are handed over as UTF-8; anything else is not a text we wrote.
    // Nor is one with a NUL, which we could never write back.
    if (!utf8.isValidUtf8() || utf8.contains('\0'))
        return std::nullopt;
    return QString::fromUtf8(utf8);
}

std::optional<SavedZone> decodeZone(plist_t dict)
{
    if (dict == nullptr || plist_get_node_type(dict) != PLIST_DICT)
        return std::nullopt;

    const std::optional<QString> idText = stringValue(plist_dict_get_item(dict, idKey));
    if (!idText || !ZoneListCodec::isCanonicalUuidText(*idText))
        return std::nullopt;

    const std::optional<QString> identifier = stringValue(plist_dict_get_item(dict, identifierKey));
    if (!identifier)
        return std::nullopt;

    plist_t pinned = plist_dict_get_item(dict, isPinnedKey);
    if (pinned == nullptr || plist_get_node_type(pinned) != PLIST_BOOLEAN)
        return std::nullopt;
    uint8_t isPinned = 0;
    plist_get_bool_val(pinned, &isPinned);

    SavedZone zone;
    zone.id = QUuid::fromString(*idText);
    zone.identifier = *identifier;
    zone.isPinned = isPinned != 0;
    if (plist_t label = plist_dict_get_item(dict, customLabelKey)) {
        const std::optional<QString> text = stringValue(label);
        if (!text)
            return std::nullopt;
        zone.customLabel = *text;
    }
    return zone;
}

} // namespace

namespace ZoneListCodec {

bool isCanonicalUuidText(QStringView text)
{
    if (text.size() != 36)
        return false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (i == 8 || i == 13 || i == 18 || i == 23) {
            if (c != u'-')
                return false;
        } else if (!((c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') ||
                     (c >= u'A' && c <= u'F'))) {
            return false;
        }
    }
    return true;
}

std::optional<QByteArray> encode(const QList<SavedZone> &zones)
{
    PlistPtr root(plist_new_array());
    for (const SavedZone &zone : zones) {
        if (hasNul(zone.identifier) || (zone.customLabel && hasNul(*zone.customLabel)))
            return std::nullopt;
        plist_t dict = plist_new_dict();
        plist_array_append_item(root.get(), dict);
        const QByteArray id = zone.id.toString(QUuid::WithoutBraces).toUpper().toLatin1();
        plist_dict_set_item(dict, idKey, plist_new_string(id.constData()));
        plist_dict_set_item(dict, identifierKey,
                            plist_new_string(zone.identifier.toUtf8().constData()));
        if (zone.customLabel) {
            plist_dict_set_item(dict, customLabelKey,
                                plist_new_string(zone.customLabel->toUtf8().constData()));
        }
        plist_dict_set_item(dict, isPinnedKey, plist_new_bool(zone.isPinned ? 1 : 0));
    }

    char *data = nullptr;
    uint32_t length = 0;
    plist_to_bin(root.get(), &data, &length);
    if (data == nullptr)
        return std::nullopt;
    QByteArray bytes(data, qsizetype(length));
    plist_to_bin_free(data);
    return bytes;
}

std::optional<QList<SavedZone>> decode(const QByteArray &bytes)
{
    // The library's parser recurses into every container it meets, so only
    // the shape a zone list can have reaches it.
    if (bytes.size() > maximumSize || !BinaryPlistShape::isArrayOfFlatDictionaries(bytes))
        return std::nullopt;

    plist_t parsed = nullptr;
    plist_from_bin(bytes.constData(), uint32_t(bytes.size()), &parsed);
    const PlistPtr root(parsed);
    if (!root || plist_get_node_type(root.get()) != PLIST_ARRAY)
        return std::nullopt;

    QList<SavedZone> zones;
    const uint32_t count = plist_array_get_size(root.get());
    zones.reserve(count);
    for (uint32_t i = 0; i < count; ++i) {
        std::optional<SavedZone> zone = decodeZone(plist_array_get_item(root.get(), i));
        if (!zone)
            return std::nullopt;
        zones.append(std::move(*zone));
    }
    return zones;
}

} // namespace ZoneListCodec
