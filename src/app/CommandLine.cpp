#include "CommandLine.h"

#include "MemoryPreferencesStore.h"
#include "MenuBarFormatter.h"
#include "TimeZoneDatabase.h"
#include "ZoneStore.h"

#include <QCommandLineParser>
#include <QDateTime>
#include <QRegularExpression>
#include <QTextStream>

namespace {

// A snapshot of the saved state, so that reading never writes: on a first run
// the seed stays in memory instead of landing in the user's file.
std::unique_ptr<MemoryPreferencesStore> snapshotOf(const PreferencesStore &preferences)
{
    auto snapshot = std::make_unique<MemoryPreferencesStore>();
    if (const auto bytes = preferences.readBytes(ZoneStore::zonesKey))
        snapshot->writeBytes(ZoneStore::zonesKey, *bytes);
    if (const auto text = preferences.readText(ZoneStore::formatKey))
        snapshot->writeText(ZoneStore::formatKey, *text);
    snapshot->writeBool(ZoneStore::seededKey, preferences.readBool(ZoneStore::seededKey));
    return snapshot;
}

QString formatNames()
{
    QStringList names;
    for (MenuBarFormat format : MenuBarFormats::allCases())
        names.append(MenuBarFormats::rawValue(format));
    return names.join(QStringLiteral(", "));
}

// An ISO-8601 date and time with an explicit offset ("Z" or ±hh:mm).
std::optional<QDateTime> parseInstant(const QString &text)
{
    static const QRegularExpression shape(QStringLiteral(
        R"(^\d{4}-\d{2}-\d{2}T\d{2}:\d{2}(:\d{2}(\.\d{1,3})?)?(Z|[+-]\d{2}:?\d{2})$)"));
    if (!shape.match(text).hasMatch())
        return std::nullopt;
    const QDateTime instant = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (!instant.isValid())
        return std::nullopt;
    return instant;
}

} // namespace

CommandLine::CommandLine(PreferencesStore &preferences, QTextStream &out, QTextStream &err)
    : m_preferences(preferences)
    , m_out(out)
    , m_err(err)
{}

int CommandLine::run(const QStringList &arguments)
{
    const QString command = arguments.value(1);
    if (command == u"line")
        return line(arguments.mid(1));
    if (command == u"--help" || command == u"-h" || command.isEmpty()) {
        m_out << "Usage: zonara line [--format NAME] [--at INSTANT]\n"
                 "  Prints the tray line of your pinned cities.\n"
                 "  --format NAME   one of: "
              << formatNames()
              << "\n"
                 "  --at INSTANT    an ISO-8601 date and time with offset, "
                 "e.g. 2026-01-05T20:00:07-05:00\n";
        m_out.flush();
        return Success;
    }
    if (command == u"--version" || command == u"-v") {
        m_out << "zonara " << ZONARA_VERSION << '\n';
        m_out.flush();
        return Success;
    }
    return usageError(QStringLiteral("unknown command \"%1\"; try \"zonara --help\"").arg(command));
}

int CommandLine::line(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(),
                                          QStringLiteral("NAME"));
    const QCommandLineOption atOption(QStringLiteral("at"), QString(), QStringLiteral("INSTANT"));
    parser.addOption(formatOption);
    parser.addOption(atOption);
    if (!parser.parse(QStringList{QStringLiteral("zonara")} + arguments.mid(1)))
        return usageError(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return usageError(QStringLiteral("\"line\" takes no argument \"%1\"")
                              .arg(parser.positionalArguments().first()));

    const auto snapshot = snapshotOf(m_preferences);
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
        const std::optional<QDateTime> instant = parseInstant(text);
        if (!instant) {
            return usageError(QStringLiteral("\"%1\" is not an ISO-8601 date and time with an "
                                             "offset, such as 2026-01-05T20:00:07-05:00")
                                  .arg(text));
        }
        at = *instant;
    }

    m_out << MenuBarFormatter::string(store.zones(), format, at, TimeZoneDatabase::localZone())
          << '\n';
    m_out.flush();
    return Success;
}

int CommandLine::usageError(const QString &message)
{
    m_err << "zonara: " << message << '\n';
    m_err.flush();
    return UsageError;
}
