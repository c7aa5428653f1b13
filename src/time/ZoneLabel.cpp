#include "ZoneLabel.h"

#include "SavedZone.h"

#include <QTextBoundaryFinder>

#include <array>
#include <utility>

namespace {

constexpr std::array<std::pair<const char *, const char *>, 74> codeTable{{
    {"America/New_York", "NYC"},
    {"America/Los_Angeles", "LA"},
    {"America/Chicago", "CHI"},
    {"America/Denver", "DEN"},
    {"America/Phoenix", "PHX"},
    {"America/Anchorage", "ANC"},
    {"Pacific/Honolulu", "HNL"},
    {"America/Toronto", "TOR"},
    {"America/Vancouver", "VAN"},
    {"America/Edmonton", "YEG"},
    {"America/Mexico_City", "MEX"},
    {"America/Sao_Paulo", "SAO"},
    {"America/Argentina/Buenos_Aires", "BUE"},
    {"America/Santiago", "SCL"},
    {"America/Lima", "LIM"},
    {"America/Bogota", "BOG"},
    {"Europe/London", "LON"},
    {"Europe/Dublin", "DUB"},
    {"Europe/Paris", "PAR"},
    {"Europe/Berlin", "BER"},
    {"Europe/Amsterdam", "AMS"},
    {"Europe/Brussels", "BRU"},
    {"Europe/Zurich", "ZRH"},
    {"Europe/Vienna", "VIE"},
    {"Europe/Rome", "ROM"},
    {"Europe/Madrid", "MAD"},
    {"Europe/Lisbon", "LIS"},
    {"Europe/Stockholm", "STO"},
    {"Europe/Oslo", "OSL"},
    {"Europe/Copenhagen", "CPH"},
    {"Europe/Helsinki", "HEL"},
    {"Europe/Warsaw", "WAW"},
    {"Europe/Prague", "PRG"},
    {"Europe/Budapest", "BUD"},
    {"Europe/Athens", "ATH"},
    {"Europe/Istanbul", "IST"},
    {"Europe/Moscow", "MOW"},
    {"Europe/Kyiv", "IEV"},
    {"Atlantic/Reykjavik", "REK"},
    {"Africa/Cairo", "CAI"},
    {"Africa/Johannesburg", "JNB"},
    {"Africa/Lagos", "LOS"},
    {"Africa/Nairobi", "NBO"},
    {"Africa/Casablanca", "CAS"},
    {"Asia/Dubai", "DXB"},
    {"Asia/Riyadh", "RUH"},
    {"Asia/Jerusalem", "TLV"},
    {"Asia/Tehran", "THR"},
    {"Asia/Kolkata", "DEL"},
    {"Asia/Karachi", "KHI"},
    {"Asia/Dhaka", "DAC"},
    {"Asia/Colombo", "CMB"},
    {"Asia/Kathmandu", "KTM"},
    {"Asia/Bangkok", "BKK"},
    {"Asia/Singapore", "SIN"},
    {"Asia/Kuala_Lumpur", "KUL"},
    {"Asia/Jakarta", "JKT"},
    {"Asia/Manila", "MNL"},
    {"Asia/Ho_Chi_Minh", "SGN"},
    {"Asia/Hong_Kong", "HKG"},
    {"Asia/Taipei", "TPE"},
    {"Asia/Shanghai", "SHA"},
    {"Asia/Tokyo", "TYO"},
    {"Asia/Seoul", "SEL"},
    {"Australia/Sydney", "SYD"},
    {"Australia/Melbourne", "MEL"},
    {"Australia/Brisbane", "BNE"},
    {"Australia/Perth", "PER"},
    {"Australia/Adelaide", "ADL"},
    {"Pacific/Auckland", "AKL"},
    {"Pacific/Fiji", "SUV"},
    {"Pacific/Guam", "GUM"},
    {"UTC", "UTC"},
    {"GMT", "GMT"},
}};

} // namespace

namespace ZoneLabel {

const QHash<QString, QString> &shortCodes()
{
    static const QHash<QString, QString> codes = [] {
        QHash<QString, QString> map;
        map.reserve(qsizetype(codeTable.size()));
        for (const auto &[identifier, code] : codeTable) {
            const QString key = QString::fromLatin1(identifier);
            if (map.contains(key))
                qFatal("Duplicate short-code entry for %s", identifier);
            map.insert(key, QString::fromLatin1(code));
        }
        return map;
    }();
    return codes;
}

QString fallbackCode(const QString &identifier)
{
    QString text = cityPart(identifier);
    text.remove(u' ');
    text = text.toUpper();
    if (text.isEmpty())
        return QStringLiteral("???");

    // Count what a reader sees as one character: a letter with combining
    // marks, or an emoji sequence, is one.
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    int count = 0;
    while (graphemes.toNextBoundary() != -1) {
        if (++count == 3)
            return text.left(graphemes.position());
    }
    return text;
}

QString shortCode(const QString &identifier)
{
    const auto it = shortCodes().constFind(identifier);
    return it != shortCodes().cend() ? *it : fallbackCode(identifier);
}

} // namespace ZoneLabel
