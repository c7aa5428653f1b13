#pragma once

#include "CityEntry.h"
#include "CityOtherNames.h"

#include <QByteArrayView>
#include <QList>

#include <optional>

// Reads the catalogue's JSON in one pass, straight into entries: a strict JSON
// reader (any malformed text fails) that keeps only the three members of each
// object, and, when asked, the strings of its optional "otherNames" array.
// Much lighter than building a QJsonDocument of the whole file first.
class CatalogJsonReader final
{
public:
    // Larger text is refused unread: the shipped catalogue is a few MB.
    static constexpr qsizetype maximumSize = 64 * 1024 * 1024;

    // The entries in file order, or nothing when the text is not valid JSON,
    // its top level is not an array of objects, or an object lacks one of the
    // three string members, or the text is larger than maximumSize. An
    // "otherNames" member that is not an array of strings is valid JSON all
    // the same: what is not a string in it is left out.
    static std::optional<QList<CityEntry>> read(QByteArrayView json,
                                                CityOtherNames *otherNames = nullptr);

private:
    explicit CatalogJsonReader(QByteArrayView json);

    bool readCatalogue(QList<CityEntry> &cities, CityOtherNames *otherNames);
    bool readEntry(CityEntry &entry, QList<QString> *names);
    bool readNames(QList<QString> &names);
    bool skipValue(int depth);
    bool readString(QString *text);
    bool skipNumber();
    bool skipLiteral(QByteArrayView literal);
    void skipWhiteSpace();
    bool consume(char c);
    bool atEnd() const { return m_position >= m_json.size(); }
    char peek() const { return atEnd() ? '\0' : m_json[m_position]; }

    QByteArrayView m_json;
    qsizetype m_position = 0;
};
