#include "MenuBarFormat.h"

#include <array>

namespace {

struct FormatInfo
{
    MenuBarFormat format;
    const char *rawValue;
    const char *title;
};

constexpr std::array<FormatInfo, 5> formats{{
    {MenuBarFormat::labelTime24, "labelTime24", "Label + 24h"},
    {MenuBarFormat::labelTime12, "labelTime12", "Label + 12h"},
    {MenuBarFormat::timeOnly24, "timeOnly24", "Time only (24h)"},
    {MenuBarFormat::labelDayTime24, "labelDayTime24", "Label + day + 24h"},
    {MenuBarFormat::labelTime24Seconds, "labelTime24Seconds", "Label + 24h + seconds"},
}};

const FormatInfo &infoOf(MenuBarFormat format)
{
    for (const FormatInfo &info : formats) {
        if (info.format == format)
            return info;
    }
    return formats.front();
}

} // namespace

namespace MenuBarFormats {

QList<MenuBarFormat> allCases()
{
    QList<MenuBarFormat> cases;
    for (const FormatInfo &info : formats)
        cases.append(info.format);
    return cases;
}

QString rawValue(MenuBarFormat format)
{
    return QString::fromLatin1(infoOf(format).rawValue);
}

std::optional<MenuBarFormat> fromRawValue(const QString &text)
{
    for (const FormatInfo &info : formats) {
        if (text == QLatin1StringView(info.rawValue))
            return info.format;
    }
    return std::nullopt;
}

QString title(MenuBarFormat format)
{
    return QString::fromLatin1(infoOf(format).title);
}

} // namespace MenuBarFormats
