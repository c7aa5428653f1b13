#include "BinaryPlistShape.h"

#include <QList>

#include <optional>

namespace {

constexpr qsizetype headerSize = 8;
constexpr qsizetype trailerSize = 32;

enum Kind : quint8 {
    simpleKind = 0x0,
    integerKind = 0x1,
    realKind = 0x2,
    dateKind = 0x3,
    dataKind = 0x4,
    asciiKind = 0x5,
    utf16Kind = 0x6,
    uidKind = 0x8,
    arrayKind = 0xA,
    setKind = 0xC,
    dictionaryKind = 0xD,
};

struct Object
{
    quint8 kind = 0;
    quint64 count = 0;    // elements, pairs or characters
    qsizetype start = 0;  // first byte after the marker and the count
    qsizetype length = 0; // bytes of content that follow
};

class Layout
{
public:
    explicit Layout(QByteArrayView bytes)
        : m_bytes(bytes)
    {}

    bool readTrailer()
    {
        if (m_bytes.size() < headerSize + trailerSize || !m_bytes.startsWith("bplist00"))
            return false;
        const qsizetype trailer = m_bytes.size() - trailerSize;
        m_offsetSize = quint8(m_bytes[trailer + 6]);
        m_referenceSize = quint8(m_bytes[trailer + 7]);
        if (!isIntegerSize(m_offsetSize) || !isIntegerSize(m_referenceSize))
            return false;
        const auto count = integer(trailer + 8, 8);
        const auto top = integer(trailer + 16, 8);
        const auto table = integer(trailer + 24, 8);
        if (!count || !top || !table || *table < quint64(headerSize) || *table > quint64(trailer) ||
            *top >= *count)
            return false;
        // The offset table lies between the objects and the trailer.
        if (*count > quint64(trailer - qsizetype(*table)) / m_offsetSize)
            return false;
        m_objectCount = *count;
        m_top = *top;
        m_tableOffset = qsizetype(*table);
        return true;
    }

    quint64 top() const { return m_top; }
    quint64 objectCount() const { return m_objectCount; }

    std::optional<Object> object(quint64 index) const
    {
        if (index >= m_objectCount)
            return std::nullopt;
        const auto offset = integer(m_tableOffset + qsizetype(index) * m_offsetSize, m_offsetSize);
        if (!offset || *offset < quint64(headerSize) || *offset >= quint64(m_tableOffset))
            return std::nullopt;
        const qsizetype at = qsizetype(*offset);
        const quint8 marker = quint8(m_bytes[at]);
        Object object;
        object.kind = marker >> 4;
        const quint8 info = marker & 0x0F;
        object.start = at + 1;
        switch (object.kind) {
        case simpleKind:
            if (info != 0x0 && info != 0x8 && info != 0x9 && info != 0xF)
                return std::nullopt;
            break;
        case integerKind:
            if (info > 4)
                return std::nullopt;
            object.length = qsizetype(1) << info;
            break;
        case realKind:
            if (info != 2 && info != 3)
                return std::nullopt;
            object.length = qsizetype(1) << info;
            break;
        case dateKind:
            if (info != 3)
                return std::nullopt;
            object.length = 8;
            break;
        case uidKind:
            object.length = info + 1;
            break;
        case dataKind:
        case asciiKind:
        case utf16Kind:
        case arrayKind:
        case setKind:
        case dictionaryKind: {
            if (!readCount(info, object))
                return std::nullopt;
            const quint64 unit = object.kind == utf16Kind                              ? 2
                                 : object.kind == dataKind || object.kind == asciiKind ? 1
                                 : object.kind == dictionaryKind ? 2 * m_referenceSize
                                                                 : m_referenceSize;
            const quint64 room = quint64(m_tableOffset - object.start);
            if (object.count > room / unit)
                return std::nullopt;
            object.length = qsizetype(object.count * unit);
            break;
        }
        default:
            return std::nullopt;
        }
        if (object.length > m_tableOffset - object.start)
            return std::nullopt;
        return object;
    }

    // The index-th reference inside a container.
    std::optional<quint64> reference(const Object &container, quint64 index) const
    {
        return integer(container.start + qsizetype(index) * m_referenceSize, m_referenceSize);
    }

private:
    static bool isIntegerSize(int size) { return size == 1 || size == 2 || size == 4 || size == 8; }

    std::optional<quint64> integer(qsizetype at, int size) const
    {
        if (at < 0 || at > m_bytes.size() - size)
            return std::nullopt;
        quint64 value = 0;
        for (int i = 0; i < size; ++i)
            value = (value << 8) | quint8(m_bytes[at + i]);
        return value;
    }

    // A count that does not fit in the marker follows it as an integer object.
    bool readCount(quint8 info, Object &object) const
    {
        if (info != 0x0F) {
            object.count = info;
            return true;
        }
        if (object.start >= m_tableOffset)
            return false;
        const quint8 marker = quint8(m_bytes[object.start]);
        if ((marker >> 4) != integerKind || (marker & 0x0F) > 3)
            return false;
        const int size = 1 << (marker & 0x0F);
        if (object.start + 1 + size > m_tableOffset)
            return false;
        const auto count = integer(object.start + 1, size);
        if (!count)
            return false;
        object.count = *count;
        object.start += 1 + size;
        return true;
    }

    QByteArrayView m_bytes;
    int m_offsetSize = 0;
    int m_referenceSize = 0;
    quint64 m_objectCount = 0;
    quint64 m_top = 0;
    qsizetype m_tableOffset = 0;
};

bool isContainer(quint8 kind)
{
    return kind == arrayKind || kind == setKind || kind == dictionaryKind;
}

bool isString(quint8 kind)
{
    return kind == asciiKind || kind == utf16Kind;
}

} // namespace

namespace BinaryPlistShape {

bool isArrayOfFlatDictionaries(QByteArrayView bytes)
{
    Layout layout(bytes);
    if (!layout.readTrailer())
        return false;
    const std::optional<Object> root = layout.object(layout.top());
    if (!root || root->kind != arrayKind)
        return false;

    // The parser copies a shared value once per reference; this bounds what
    // that copying may cost.
    const qsizetype budget = 16 * bytes.size() + 65536;
    qsizetype expanded = 0;
    QList<bool> listed(qsizetype(layout.objectCount()), false);
    for (quint64 i = 0; i < root->count; ++i) {
        const std::optional<quint64> index = layout.reference(*root, i);
        if (!index || *index >= layout.objectCount() || listed[qsizetype(*index)])
            return false;
        listed[qsizetype(*index)] = true;
        const std::optional<Object> dictionary = layout.object(*index);
        if (!dictionary || dictionary->kind != dictionaryKind)
            return false;
        for (quint64 j = 0; j < 2 * dictionary->count; ++j) {
            const std::optional<quint64> member = layout.reference(*dictionary, j);
            if (!member)
                return false;
            const std::optional<Object> value = layout.object(*member);
            const bool isKey = j < dictionary->count;
            if (!value || isContainer(value->kind) || (isKey && !isString(value->kind)))
                return false;
            expanded += value->length + 16;
            if (expanded > budget)
                return false;
        }
    }
    return true;
}

} // namespace BinaryPlistShape
