#include "LineCommand.h"

#include "CityTimes.h"
#include "CommandArguments.h"
#include "IsoInstant.h"
#include "MemoryPreferencesStore.h"
#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneStore.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QTextStream>

namespace {

// For Xfce's Generic Monitor: the line (or the globe when it is empty), every
// city in the tooltip, and a click that opens the panel. Its texts are Pango
// markup and its click a shell-like command line.
QString genmonOutput(const QString &line, const QString &cities, const QString &program)
{
    QString quoted = program;
    quoted.replace(u'\'', QLatin1String("'\\''"));
    const QString click = u'\'' + quoted + QStringLiteral("' --panel");
    QString output = line.isEmpty() ? QStringLiteral("<icon>io.github.zonara.Zonara-symbolic</icon>"
                                                     "<iconclick>%1</iconclick>")
                                          .arg(click)
                                    : QStringLiteral("<txt>%1</txt><txtclick>%2</txtclick>")
                                          .arg(line.toHtmlEscaped(), click);
    return output + QStringLiteral("<tool>%1</tool>")
                        .arg(cities.isEmpty() ? QStringLiteral("Zonara") : cities.toHtmlEscaped());
}

} // namespace

LineCommand::LineCommand(const PreferencesStore &preferences, QTextStream &out, QTextStream &err)
    : m_preferences(preferences)
    , m_out(out)
    , m_err(err)
{}

int LineCommand::run(const QStringList &arguments)
{
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(),
                                          QStringLiteral("NAME"));
    const QCommandLineOption atOption(QStringLiteral("at"), QString(), QStringLiteral("INSTANT"));
    const QCommandLineOption genmonOption(QStringLiteral("genmon"));
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({formatOption, atOption, genmonOption});
    if (!parser.parse(QStringList{arguments.value(0)} + arguments.mid(2)))
        return usageError(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return usageError(QStringLiteral("\"line\" takes no argument \"%1\"")
                              .arg(parser.positionalArguments().constFirst()));

    // A running Zonara saves every edit before it answers, so its file is
    // what it shows.
    const std::unique_ptr<MemoryPreferencesStore> snapshot = snapshotOf(m_preferences);
    const ZoneStore store(*snapshot, TimeZoneDatabase::lookup());
    MenuBarFormat format = store.format();
    if (parser.isSet(formatOption)) {
        const QString name = parser.value(formatOption);
        const std::optional<MenuBarFormat> chosen = MenuBarFormats::fromRawValue(name);
        if (!chosen) {
            return usageError(QStringLiteral("unknown format \"%1\"; the formats are %2")
                                  .arg(name, formatNames()));
        }
        format = *chosen;
    }
    QDateTime at = QDateTime::currentDateTimeUtc();
    if (parser.isSet(atOption)) {
        const QString text = parser.value(atOption);
        const std::optional<QDateTime> instant = IsoInstant::parse(text);
        if (!instant) {
            return usageError(QStringLiteral("\"%1\" is not an ISO-8601 date and time with an "
                                             "offset, such as 2026-01-05T20:00:07-05:00")
                                  .arg(text));
        }
        at = *instant;
    }
    const QTimeZone local = TimeZoneDatabase::localZone();
    const QString text = MenuBarFormatter::string(store.zones(), format, at, local);
    m_out << (parser.isSet(genmonOption)
                  ? genmonOutput(text, CityTimes::summary(store.zones(), format, at, local),
                                 QCoreApplication::applicationFilePath())
                  : text)
          << '\n';
    m_out.flush();
    return CommandArguments::Success;
}

QString LineCommand::formatNames()
{
    QStringList names;
    for (MenuBarFormat format : MenuBarFormats::allCases())
        names.append(MenuBarFormats::rawValue(format));
    return names.join(QStringLiteral(", "));
}

std::unique_ptr<MemoryPreferencesStore> LineCommand::snapshotOf(const PreferencesStore &preferences)
{
    auto snapshot = std::make_unique<MemoryPreferencesStore>();
    if (const auto bytes = preferences.readBytes(ZoneStore::zonesKey))
        snapshot->writeBytes(ZoneStore::zonesKey, *bytes);
    if (const auto text = preferences.readText(ZoneStore::formatKey))
        snapshot->writeText(ZoneStore::formatKey, *text);
    snapshot->writeBool(ZoneStore::seededKey, preferences.readBool(ZoneStore::seededKey));
    return snapshot;
}

int LineCommand::usageError(const QString &message)
{
    m_err << "zonara: " << message << "\n";
    m_err.flush();
    return CommandArguments::UsageError;
}
