#include "SettingsTexts.h"

#include "MenuBarFormatter.h"

#include <QRegularExpression>

namespace {

QString textOr(const QVariant &value, const QString &fallback)
{
    if (value.typeId() != QMetaType::QString)
        return fallback;
    const QString text = value.toString().trimmed();
    return text.isEmpty() ? fallback : text;
}

// The locale's long date without its weekday, with abbreviated month names:
// "dddd, MMMM d, yyyy" becomes "MMM d, yyyy", "dddd, d. MMMM yyyy" "d. MMM yyyy".
QString abbreviatedDateFormat(const QLocale &locale)
{
    QString format = locale.dateFormat(QLocale::LongFormat);
    static const QRegularExpression weekday(QStringLiteral("d{4}[,\\s]*"));
    format.remove(weekday);
    format.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return format.trimmed();
}

} // namespace

namespace SettingsTexts {

QString previewText(const QList<SavedZone> &zones, MenuBarFormat format, const QDateTime &now,
                    const QTimeZone &localZone)
{
    const QString line = MenuBarFormatter::string(zones, format, now, localZone);
    return line.isEmpty() ? QStringLiteral("\u25ce") : line;
}

QString version(const QVariant &shortVersion, const QVariant &build)
{
    return QStringLiteral("%1 (%2)").arg(textOr(shortVersion, QStringLiteral("1.1")),
                                         textOr(build, QStringLiteral("2")));
}

QString thisVersion()
{
#ifdef ZONARA_BUILD_NUMBER
    const QVariant build = QStringLiteral(ZONARA_BUILD_NUMBER);
#else
    const QVariant build;
#endif
    return version(QStringLiteral(ZONARA_VERSION), build);
}

QString lastChecked(const QDateTime &date, const QLocale &locale)
{
    const QDateTime local = date.toLocalTime();
    return locale.toString(local.date(), abbreviatedDateFormat(locale)) + QStringLiteral(", ") +
           locale.toString(local.time(), QLocale::ShortFormat);
}

} // namespace SettingsTexts
