#include "CatalogJsonReader.h"

#include <QSet>

namespace {

// Deeper nesting than any catalogue needs is refused rather than recursed into.
constexpr int maximumDepth = 64;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

} // namespace

std::optional<QList<CityEntry>> CatalogJsonReader::read(QByteArrayView json,
                                                        CityOtherNames *otherNames)
{
    if (json.size() > maximumSize)
        return std::nullopt;
    CatalogJsonReader reader(json);
    QList<CityEntry> cities;
    CityOtherNames names;
    if (!reader.readCatalogue(cities, otherNames ? &names : nullptr))
        return std::nullopt;
    if (otherNames) {
        names.squeeze();
        *otherNames = std::move(names);
    }
    return cities;
}

CatalogJsonReader::CatalogJsonReader(QByteArrayView json)
    : m_json(json)
{
    // A byte order mark is not JSON, but editors add one; QJsonDocument
    // refuses it too, so neither do we skip it.
}

bool CatalogJsonReader::readCatalogue(QList<CityEntry> &cities, CityOtherNames *otherNames)
{
    // Identifiers and countries repeat across thousands of cities; sharing
    // one copy of each keeps the resident catalogue much smaller.
    QSet<QString> pool;
    const auto pooled = [&pool](const QString &text) {
        const auto known = pool.constFind(text);
        return known != pool.cend() ? *known : *pool.insert(text);
    };

    QList<QString> names;
    skipWhiteSpace();
    if (!consume('['))
        return false;
    skipWhiteSpace();
    if (!consume(']')) {
        do {
            skipWhiteSpace();
            CityEntry entry;
            names.clear();
            if (!readEntry(entry, otherNames ? &names : nullptr))
                return false;
            entry.identifier = pooled(entry.identifier);
            entry.country = pooled(entry.country);
            for (const QString &name : std::as_const(names))
                otherNames->append(cities.size(), name);
            cities.append(std::move(entry));
            skipWhiteSpace();
        } while (consume(','));
        if (!consume(']'))
            return false;
    }
    skipWhiteSpace();
    return atEnd();
}

bool CatalogJsonReader::readEntry(CityEntry &entry, QList<QString> *names)
{
    if (!consume('{'))
        return false;
    bool hasName = false;
    bool hasIdentifier = false;
    bool hasCountry = false;
    skipWhiteSpace();
    if (!consume('}')) {
        do {
            skipWhiteSpace();
            QString key;
            if (!readString(&key))
                return false;
            skipWhiteSpace();
            if (!consume(':'))
                return false;
            skipWhiteSpace();
            QString *target = nullptr;
            if (key == u"name") {
                target = &entry.name;
                hasName = true;
            } else if (key == u"identifier") {
                target = &entry.identifier;
                hasIdentifier = true;
            } else if (key == u"country") {
                target = &entry.country;
                hasCountry = true;
            } else if (names && key == u"otherNames") {
                if (!readNames(*names))
                    return false;
                skipWhiteSpace();
                continue;
            }
            // One of ours must be a string; anything else is skipped, but read.
            if (target ? !readString(target) : !skipValue(1))
                return false;
            skipWhiteSpace();
        } while (consume(','));
        if (!consume('}'))
            return false;
    }
    return hasName && hasIdentifier && hasCountry;
}

bool CatalogJsonReader::readNames(QList<QString> &names)
{
    // A repeated member counts once, as for the other members: the last wins.
    names.clear();
    if (peek() != '[')
        return skipValue(1);
    ++m_position;
    skipWhiteSpace();
    if (consume(']'))
        return true;
    do {
        skipWhiteSpace();
        if (peek() == '"') {
            QString name;
            if (!readString(&name))
                return false;
            names.append(std::move(name));
        } else if (!skipValue(2)) {
            return false;
        }
        skipWhiteSpace();
    } while (consume(','));
    return consume(']');
}

bool CatalogJsonReader::skipValue(int depth)
{
    if (depth > maximumDepth)
        return false;
    switch (peek()) {
    case '"':
        return readString(nullptr);
    case 't':
        return skipLiteral("true");
    case 'f':
        return skipLiteral("false");
    case 'n':
        return skipLiteral("null");
    case '[':
    case '{': {
        const bool isObject = peek() == '{';
        const char close = isObject ? '}' : ']';
        ++m_position;
        skipWhiteSpace();
        if (consume(close))
            return true;
        do {
            skipWhiteSpace();
            if (isObject) {
                if (!readString(nullptr))
                    return false;
                skipWhiteSpace();
                if (!consume(':'))
                    return false;
                skipWhiteSpace();
            }
            if (!skipValue(depth + 1))
                return false;
            skipWhiteSpace();
        } while (consume(','));
        return consume(close);
    }
    default:
        return skipNumber();
    }
}

bool CatalogJsonReader::readString(QString *text)
{
    if (!consume('"'))
        return false;
    const qsizetype start = m_position;
    // The usual case: no escapes, so the bytes are the text.
    while (!atEnd()) {
        const char c = m_json[m_position];
        if (c == '"') {
            const QByteArrayView bytes = m_json.sliced(start, m_position - start);
            ++m_position;
            if (!bytes.isValidUtf8())
                return false;
            if (text)
                *text = QString::fromUtf8(bytes);
            return true;
        }
        if (c == '\\')
            break;
        if (static_cast<unsigned char>(c) < 0x20)
            return false;
        ++m_position;
    }

    // Escapes: build the text piece by piece.
    QString result = QString::fromUtf8(m_json.sliced(start, m_position - start));
    if (!m_json.sliced(start, m_position - start).isValidUtf8())
        return false;
    qsizetype runStart = m_position;
    const auto flushRun = [&]() {
        const QByteArrayView run = m_json.sliced(runStart, m_position - runStart);
        if (!run.isValidUtf8())
            return false;
        result += QString::fromUtf8(run);
        return true;
    };
    while (!atEnd()) {
        const char c = m_json[m_position];
        if (c == '"') {
            if (!flushRun())
                return false;
            ++m_position;
            if (text)
                *text = std::move(result);
            return true;
        }
        if (static_cast<unsigned char>(c) < 0x20)
            return false;
        if (c != '\\') {
            ++m_position;
            continue;
        }
        if (!flushRun())
            return false;
        ++m_position;
        if (atEnd())
            return false;
        const char escape = m_json[m_position++];
        switch (escape) {
        case '"':
            result += u'"';
            break;
        case '\\':
            result += u'\\';
            break;
        case '/':
            result += u'/';
            break;
        case 'b':
            result += u'\b';
            break;
        case 'f':
            result += u'\f';
            break;
        case 'n':
            result += u'\n';
            break;
        case 'r':
            result += u'\r';
            break;
        case 't':
            result += u'\t';
            break;
        case 'u': {
            if (m_position + 4 > m_json.size())
                return false;
            int value = 0;
            for (int i = 0; i < 4; ++i) {
                const int digit = hexValue(m_json[m_position++]);
                if (digit < 0)
                    return false;
                value = value * 16 + digit;
            }
            // Lone surrogates are kept as they are, as QJsonDocument does.
            result += QChar(char16_t(value));
            break;
        }
        default:
            return false;
        }
        runStart = m_position;
    }
    return false;
}

bool CatalogJsonReader::skipNumber()
{
    consume('-');
    if (consume('0')) {
        // No leading zeros.
    } else if (isDigit(peek()) && peek() != '0') {
        while (isDigit(peek()))
            ++m_position;
    } else {
        return false;
    }
    if (consume('.')) {
        if (!isDigit(peek()))
            return false;
        while (isDigit(peek()))
            ++m_position;
    }
    if (peek() == 'e' || peek() == 'E') {
        ++m_position;
        if (peek() == '+' || peek() == '-')
            ++m_position;
        if (!isDigit(peek()))
            return false;
        while (isDigit(peek()))
            ++m_position;
    }
    return true;
}

bool CatalogJsonReader::skipLiteral(QByteArrayView literal)
{
    if (m_json.sliced(m_position).startsWith(literal)) {
        m_position += literal.size();
        return true;
    }
    return false;
}

void CatalogJsonReader::skipWhiteSpace()
{
    while (!atEnd()) {
        const char c = m_json[m_position];
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            return;
        ++m_position;
    }
}

bool CatalogJsonReader::consume(char c)
{
    if (peek() != c || atEnd())
        return false;
    ++m_position;
    return true;
}
