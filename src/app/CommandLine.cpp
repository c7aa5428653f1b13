#include "CommandLine.h"

#include "AtQuery.h"
#include "BusZoneEditor.h"
#include "CityTimes.h"
#include "Clock.h"
#include "LineCommand.h"
#include "MemoryPreferencesStore.h"
#include "MenuBarFormatter.h"
#include "PosixTimeFormat.h"
#include "StoreZoneEditor.h"
#include "SystemTimeWatcher.h"
#include "TimeShift.h"
#include "TimeZoneDatabase.h"
#include "ZoneChoices.h"
#include "ZoneLimits.h"
#include "ZoneOffset.h"
#include "ZoneReference.h"
#include "ZoneStore.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QTextStream>

namespace {

const QString helpText = QStringLiteral(
    "Usage: zonara [--settings | --panel]\n"
    "  Starts Zonara in the tray; --settings also opens its settings, --panel\n"
    "  its panel at the pointer (for a status bar's click).\n"
    "\n"
    "Usage: zonara COMMAND [OPTIONS]\n"
    "  line [--format NAME] [--at INSTANT] [--genmon]\n"
    "                                        print the tray line of the pinned cities\n"
    "                                        (--genmon: for Xfce's Generic Monitor)\n"
    "  watch [--format NAME] [--json]        print it again at every tick, until stopped\n"
    "  list [--json]                         list the saved cities\n"
    "  at TIME [CITY] [--date DATE] [--json], list --at \"TIME [CITY]\"\n"
    "                                        every saved city when CITY's clock shows\n"
    "                                        TIME (default: your own clock), e.g.\n"
    "                                        zonara at \"15:00 Tokyo\" --date 2026-03-10\n"
    "  add IDENTIFIER [--nickname TEXT] [--pin]\n"
    "                                        add a city by its time zone\n"
    "  rename ZONE [TEXT]                    set a nickname (none: back to the city name)\n"
    "  pin ZONE, unpin ZONE                  show a city in the tray line, or not\n"
    "  remove ZONE                           remove a city\n"
    "  move ZONE (--before ZONE | --to-end)  reorder\n"
    "  search QUERY [--json]                 find cities and time zones to add\n"
    "  format [NAME]                         print the line format, or set it\n"
    "  hours [RANGE | off]                   print the working hours, or set them\n"
    "\n"
    "ZONE is a position in the list (from 1), an id, or a city's name.\n"
    "NAME is one of: %1.\n"
    "TIME is a time of day such as 15:00, 9:30 or 3pm; CITY a saved city, a city\n"
    "to search for or a time zone; DATE the date in that city, e.g. 2026-03-10\n"
    "(default: its today).\n"
    "RANGE is a start and an end such as 09:00-18:00 (22:00-06:00 across midnight).\n"
    "INSTANT is an ISO-8601 date and time with an offset, e.g. 2026-01-05T20:00:07-05:00.\n"
    "Your time zone is the system's, or TZ when it is set.\n");

// Columns padded to their widest cell, two spaces apart.
QString table(const QList<QStringList> &rows)
{
    QList<qsizetype> widths;
    for (const QStringList &row : rows) {
        for (qsizetype column = 0; column < row.size(); ++column) {
            if (widths.size() <= column)
                widths.append(0);
            widths[column] = std::max(widths[column], row[column].size());
        }
    }
    QString text;
    for (const QStringList &row : rows) {
        QString line;
        for (qsizetype column = 0; column < row.size(); ++column) {
            line += column + 1 < row.size() ? row[column].leftJustified(widths[column] + 2)
                                            : row[column];
        }
        text += line.trimmed() + u'\n';
    }
    return text;
}

QString compactJson(const QJsonValue &value)
{
    if (value.isArray())
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact));
    return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact));
}

// The city whose clock an `at` query sets.
struct Anchor
{
    QString name;
    QString identifier;
    QTimeZone zone;
};

// A saved city (by name, then by zone) first, then the catalogue's best
// match, then a zone identifier.
std::optional<Anchor> anchorNamed(const QString &text, const QList<SavedZone> &zones)
{
    const QString identifier = TimeZoneDatabase::canonicalIdentifier(text);
    const auto saved = [&](const auto &matches) -> std::optional<Anchor> {
        for (const SavedZone &zone : zones) {
            const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
            if (timeZone && matches(zone))
                return Anchor{zone.displayName(), zone.identifier, *timeZone};
        }
        return std::nullopt;
    };
    if (auto found = saved([&](const SavedZone &zone) {
            return zone.displayName().compare(text, Qt::CaseInsensitive) == 0;
        }))
        return found;
    if (auto found = saved([&](const SavedZone &zone) {
            return zone.identifier.compare(identifier, Qt::CaseInsensitive) == 0;
        }))
        return found;
    for (const ZoneSearchResult &result : ZoneChoices::results(text)) {
        if (const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(result.identifier))
            return Anchor{result.title, result.identifier, *zone};
    }
    if (const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(identifier))
        return Anchor{cityPart(identifier), identifier, *zone};
    return std::nullopt;
}

QString describe(const SavedZone &zone)
{
    return QStringLiteral("%1 (%2)").arg(zone.displayName(), zone.identifier);
}

} // namespace

CommandLine::CommandLine(PreferencesStore &preferences, BusSource bus, QTextStream &out,
                         QTextStream &err)
    : m_preferences(preferences)
    , m_busSource(std::move(bus))
    , m_out(out)
    , m_err(err)
{}

CommandLine::~CommandLine() = default;

int CommandLine::run(const QStringList &arguments)
{
    const int status = dispatch(arguments);
    // Said once, after whatever the command printed.
    if (!m_preferences.keptCopy().isEmpty()) {
        m_err << "zonara: your saved cities could not be read; the file was kept as "
              << m_preferences.keptCopy() << '\n';
        m_err.flush();
    }
    return status;
}

int CommandLine::dispatch(const QStringList &arguments)
{
    const QString command = arguments.value(1);
    if (command == u"--help" || command == u"-h" || command == u"help")
        return help();
    if (command == u"--version" || command == u"-v")
        return print(QStringLiteral("zonara " ZONARA_VERSION));

    if (command == u"line")
        return LineCommand(m_preferences, m_out, m_err).run(arguments);

    using Command = int (CommandLine::*)(QCommandLineParser &);
    struct Entry
    {
        const char16_t *name;
        Command run;
        QList<QCommandLineOption> options;
    };
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(),
                                          QStringLiteral("NAME"));
    const QCommandLineOption atOption(QStringLiteral("at"), QString(), QStringLiteral("INSTANT"));
    const QCommandLineOption dateOption(QStringLiteral("date"), QString(), QStringLiteral("DATE"));
    const QCommandLineOption jsonOption(QStringLiteral("json"));
    const QCommandLineOption nicknameOption(QStringLiteral("nickname"), QString(),
                                            QStringLiteral("TEXT"));
    const QCommandLineOption pinOption(QStringLiteral("pin"));
    const QCommandLineOption beforeOption(QStringLiteral("before"), QString(),
                                          QStringLiteral("ZONE"));
    const QCommandLineOption toEndOption(QStringLiteral("to-end"));
    const QList<Entry> commands{
        {u"watch", &CommandLine::watch, {formatOption, jsonOption}},
        {u"list", &CommandLine::list, {jsonOption, atOption, dateOption}},
        {u"at", &CommandLine::at, {jsonOption, dateOption}},
        {u"add", &CommandLine::add, {nicknameOption, pinOption}},
        {u"rename", &CommandLine::rename, {}},
        {u"pin", nullptr, {}},
        {u"unpin", nullptr, {}},
        {u"remove", &CommandLine::remove, {}},
        {u"move", &CommandLine::move, {beforeOption, toEndOption}},
        {u"search", &CommandLine::search, {jsonOption}},
        {u"format", &CommandLine::format, {}},
        {u"hours", &CommandLine::hours, {}},
    };
    for (const Entry &entry : commands) {
        if (command != QStringView(entry.name))
            continue;
        QCommandLineParser parser;
        parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
        parser.addOptions(entry.options);
        if (!parser.parse(QStringList{arguments.constFirst()} + arguments.mid(2)))
            return usageError(parser.errorText());
        if (command == u"pin" || command == u"unpin")
            return setPinned(parser, command == u"pin");
        return (this->*entry.run)(parser);
    }
    return usageError(QStringLiteral("unknown command \"%1\"; see \"zonara --help\"").arg(command));
}

int CommandLine::help()
{
    return print(helpText.arg(LineCommand::formatNames()).chopped(1));
}

ZoneEditor &CommandLine::editor(bool forEditing)
{
    // A read-only snapshot must never take an edit: it would be lost.
    if (m_editor && (!forEditing || !m_snapshot))
        return *m_editor;
    m_editor.reset();
    m_store.reset();
    m_snapshot.reset();
    if (BusZoneEditor::isServing(bus())) {
        m_editor = std::make_unique<BusZoneEditor>(bus());
    } else if (forEditing) {
        m_store = std::make_unique<ZoneStore>(m_preferences, TimeZoneDatabase::lookup());
        m_editor = std::make_unique<StoreZoneEditor>(*m_store);
    } else {
        m_snapshot = LineCommand::snapshotOf(m_preferences);
        m_store = std::make_unique<ZoneStore>(*m_snapshot, TimeZoneDatabase::lookup());
        m_editor = std::make_unique<StoreZoneEditor>(*m_store);
    }
    return *m_editor;
}

std::optional<MenuBarFormat> CommandLine::chosenFormat(const QCommandLineParser &parser,
                                                       int &status)
{
    status = Success;
    if (parser.isSet(QStringLiteral("format"))) {
        const QString name = parser.value(QStringLiteral("format"));
        if (const std::optional<MenuBarFormat> format = MenuBarFormats::fromRawValue(name))
            return format;
        status = usageError(QStringLiteral("unknown format \"%1\"; the formats are %2")
                                .arg(name, LineCommand::formatNames()));
        return std::nullopt;
    }
    const std::optional<MenuBarFormat> stored = editor(false).format();
    if (!stored)
        status = editResult(int(ZoneEditor::Result::Unreachable));
    return stored;
}

std::optional<SavedZone> CommandLine::zoneNamed(const QString &text)
{
    // Resolved in what is saved first, so that a name that fails writes
    // nothing; then again where the edit is made, where a first run's
    // seeded city has an id of its own.
    for (const bool forEditing : {false, true}) {
        const std::optional<QList<SavedZone>> zones = editor(forEditing).zones();
        if (!zones) {
            editResult(int(ZoneEditor::Result::Unreachable));
            return std::nullopt;
        }
        const auto resolved = ZoneReference::resolve(text, *zones);
        if (const QString *error = std::get_if<QString>(&resolved)) {
            usageError(*error);
            return std::nullopt;
        }
        if (forEditing)
            return zones->at(std::get<qsizetype>(resolved));
    }
    return std::nullopt;
}

int CommandLine::editResult(int result, const QString &ignoredMessage)
{
    switch (ZoneEditor::Result(result)) {
    case ZoneEditor::Result::Done:
        return Success;
    case ZoneEditor::Result::Ignored:
        m_err << "zonara: " << ignoredMessage << '\n';
        m_err.flush();
        return Refused;
    case ZoneEditor::Result::Unsaved:
        if (m_store) {
            return usageError(QStringLiteral("your change could not be saved: %1")
                                  .arg(m_preferences.saveError()));
        }
        return usageError(QStringLiteral("the running Zonara made the change but cannot save "
                                         "it; it keeps it until it can"));
    case ZoneEditor::Result::Unreachable:
        break;
    }
    return usageError(QStringLiteral("the running Zonara did not answer"));
}

int CommandLine::usageError(const QString &message)
{
    m_err << "zonara: " << message << '\n';
    m_err.flush();
    return UsageError;
}

QDBusConnection &CommandLine::bus()
{
    if (!m_bus)
        m_bus = m_busSource();
    return *m_bus;
}

int CommandLine::print(const QString &text)
{
    m_out << text << '\n';
    m_out.flush();
    return Success;
}

int CommandLine::watch(QCommandLineParser &parser)
{
    if (!parser.positionalArguments().isEmpty())
        return usageError(QStringLiteral("\"watch\" takes no argument \"%1\"")
                              .arg(parser.positionalArguments().constFirst()));
    int status = Success;
    const std::optional<MenuBarFormat> initialFormat = chosenFormat(parser, status);
    if (!initialFormat)
        return status;
    const bool fixedFormat = parser.isSet(QStringLiteral("format"));
    const bool json = parser.isSet(QStringLiteral("json"));

    Clock clock;
    SystemTimeWatcher timeWatcher;
    QObject::connect(&timeWatcher, &SystemTimeWatcher::timeChanged, &clock, &Clock::realign);

    QString lastOutput;
    const auto emitLine = [&](bool onlyIfChanged) {
        // Read afresh: the running Zonara or another command may have changed the list.
        m_editor.reset();
        m_store.reset();
        ZoneEditor &source = editor(false);
        const std::optional<QList<SavedZone>> zones = source.zones();
        const MenuBarFormat format =
            fixedFormat ? *initialFormat : source.format().value_or(*initialFormat);
        {
            // Switching takes the time afresh; this pass prints it, not a nested one.
            const QSignalBlocker blocker(&clock);
            clock.setShowsSeconds(format == MenuBarFormat::labelTime24Seconds);
        }
        const QList<SavedZone> list = zones.value_or(QList<SavedZone>());
        const QString text =
            MenuBarFormatter::string(list, format, clock.now(), TimeZoneDatabase::localZone());
        QString output = text;
        if (json) {
            output = compactJson(QJsonObject{
                {QStringLiteral("text"), text},
                {QStringLiteral("tooltip"),
                 CityTimes::summary(list, format, clock.now(), TimeZoneDatabase::localZone())},
                {QStringLiteral("class"),
                 text.isEmpty() ? QStringLiteral("empty") : QStringLiteral("pinned")},
            });
        }
        if (onlyIfChanged && output == lastOutput)
            return;
        lastOutput = output;
        print(output);
        // The bar reading us is gone; where SIGPIPE is ignored, nothing else ends us.
        if (m_out.status() != QTextStream::Ok)
            QCoreApplication::exit(Success);
    };

    // Edits show at once, not only at the next tick. The preferences file is
    // replaced on every write, so its directory is what can be watched.
    QFileSystemWatcher files;
    const QString configDirectory =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QStringLiteral("/zonara");
    if (QFileInfo(configDirectory).isDir())
        files.addPath(configDirectory);
    QObject::connect(&files, &QFileSystemWatcher::directoryChanged, &clock,
                     [&] { emitLine(true); });
    QObject::connect(&clock, &Clock::nowChanged, &clock, [&] { emitLine(false); });
    emitLine(false);
    return QCoreApplication::exec();
}

int CommandLine::list(QCommandLineParser &parser)
{
    if (!parser.positionalArguments().isEmpty())
        return usageError(QStringLiteral("\"list\" takes no argument \"%1\"")
                              .arg(parser.positionalArguments().constFirst()));
    if (parser.isSet(QStringLiteral("at")))
        return moment({parser.value(QStringLiteral("at"))}, parser);
    if (parser.isSet(QStringLiteral("date")))
        return usageError(QStringLiteral("--date goes with --at, such as --at \"15:00 Tokyo\""));
    ZoneEditor &source = editor(false);
    const std::optional<QList<SavedZone>> zones = source.zones();
    const std::optional<MenuBarFormat> format = source.format();
    if (!zones || !format)
        return editResult(int(ZoneEditor::Result::Unreachable));
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const QTimeZone local = TimeZoneDatabase::localZone();

    if (parser.isSet(QStringLiteral("json"))) {
        QJsonArray array;
        for (qsizetype i = 0; i < zones->size(); ++i) {
            const SavedZone &zone = zones->at(i);
            const CityTimes::Entry time = CityTimes::entryFor(zone, *format, now, local);
            array.append(QJsonObject{
                {QStringLiteral("position"), int(i + 1)},
                {QStringLiteral("id"), zone.id.toString(QUuid::WithoutBraces)},
                {QStringLiteral("displayName"), zone.displayName()},
                {QStringLiteral("identifier"), zone.identifier},
                {QStringLiteral("nickname"),
                 zone.customLabel ? QJsonValue(*zone.customLabel) : QJsonValue()},
                {QStringLiteral("pinned"), zone.isPinned},
                {QStringLiteral("time"), time.time},
                {QStringLiteral("subtitle"), time.subtitle},
            });
        }
        return print(compactJson(array));
    }

    if (zones->isEmpty())
        return print(QStringLiteral("No cities yet. Add one with \"zonara add IDENTIFIER\"."));
    QList<QStringList> rows{{QStringLiteral("#"), QStringLiteral("Name"),
                             QStringLiteral("Time zone"), QStringLiteral("Nickname"),
                             QStringLiteral("Pinned"), QStringLiteral("Time"),
                             QStringLiteral("Offset")}};
    for (qsizetype i = 0; i < zones->size(); ++i) {
        const SavedZone &zone = zones->at(i);
        const CityTimes::Entry time = CityTimes::entryFor(zone, *format, now, local);
        rows.append({QString::number(i + 1), zone.displayName(), zone.identifier,
                     zone.customLabel.value_or(QStringLiteral("-")),
                     zone.isPinned ? QStringLiteral("yes") : QStringLiteral("no"), time.time,
                     time.subtitle});
    }
    return print(table(rows).chopped(1));
}

int CommandLine::at(QCommandLineParser &parser)
{
    return moment(parser.positionalArguments(), parser);
}

int CommandLine::moment(const QStringList &query, const QCommandLineParser &parser)
{
    if (query.join(QString()).trimmed().isEmpty())
        return usageError(QStringLiteral("\"at\" takes a time and, optionally, a city, such as "
                                         "\"15:00 Tokyo\""));
    const std::optional<AtQuery> asked = AtQuery::parse(query);
    if (!asked) {
        return usageError(QStringLiteral("\"%1\" has no time of day such as 15:00 or 3pm at its "
                                         "start or end")
                              .arg(query.join(u' ')));
    }
    ZoneEditor &source = editor(false);
    const std::optional<QList<SavedZone>> zones = source.zones();
    const std::optional<MenuBarFormat> format = source.format();
    if (!zones || !format)
        return editResult(int(ZoneEditor::Result::Unreachable));
    const QTimeZone local = TimeZoneDatabase::localZone();

    Anchor anchor{QString(), QString::fromUtf8(local.id()), local};
    if (!asked->city.isEmpty()) {
        const std::optional<Anchor> found = anchorNamed(asked->city, *zones);
        if (!found) {
            return usageError(
                QStringLiteral("no city or time zone matches \"%1\"").arg(asked->city));
        }
        anchor = *found;
    }
    QDate date = QDateTime::currentDateTimeUtc().toTimeZone(anchor.zone).date();
    if (parser.isSet(QStringLiteral("date"))) {
        const QString text = parser.value(QStringLiteral("date"));
        date = QDate::fromString(text, u"yyyy-MM-dd");
        if (!date.isValid())
            return usageError(QStringLiteral("\"%1\" is not a date such as 2026-03-10").arg(text));
    }

    const QDateTime instant = TimeShift::instantAt(date, asked->time, anchor.zone);
    const TimeShift::WallTime wall = TimeShift::wallTime(date, asked->time, anchor.zone);
    const QString typed = asked->time.toString(u"HH:mm");
    const QString place = anchor.name.isEmpty()
                              ? QStringLiteral("your time zone (%1)").arg(anchor.identifier)
                              : anchor.name;
    QString note;
    if (wall == TimeShift::WallTime::skipped) {
        note = QStringLiteral("%1 does not exist there that day (the clocks go forward); "
                              "this is the next valid time")
                   .arg(typed);
    } else if (wall == TimeShift::WallTime::repeated) {
        note = QStringLiteral("%1 comes twice there that day (the clocks go back); this is "
                              "the first, %2")
                   .arg(typed, anchor.zone.abbreviation(instant));
    }
    const std::optional<QString> hoursText = m_preferences.readText(ZoneStore::workingHoursKey);
    const std::optional<WorkingHours> hours =
        hoursText ? WorkingHours::fromString(*hoursText) : std::nullopt;

    if (parser.isSet(QStringLiteral("json"))) {
        QJsonArray cities;
        for (qsizetype i = 0; i < zones->size(); ++i) {
            const SavedZone &zone = zones->at(i);
            QJsonObject city{
                {QStringLiteral("position"), int(i + 1)},
                {QStringLiteral("displayName"), zone.displayName()},
                {QStringLiteral("identifier"), zone.identifier},
            };
            if (const std::optional<QTimeZone> timeZone =
                    TimeZoneDatabase::resolve(zone.identifier)) {
                const ZoneOffsetInfo offset = ZoneOffset::info(*timeZone, instant, local);
                const QDateTime there = instant.toTimeZone(*timeZone);
                city.insert(QStringLiteral("localDateTime"),
                            QDateTime(there.date(), there.time()).toString(Qt::ISODate));
                city.insert(QStringLiteral("time"),
                            MenuBarFormatter::timeString(*format, instant, *timeZone));
                city.insert(QStringLiteral("utcOffsetSeconds"), timeZone->offsetFromUtc(instant));
                city.insert(QStringLiteral("relativeDay"),
                            offset.relativeDay ? QJsonValue(*offset.relativeDay) : QJsonValue());
                if (hours) {
                    city.insert(QStringLiteral("workingTime"),
                                TimeShift::isWorkingTime(*hours, instant, *timeZone));
                }
            }
            cities.append(city);
        }
        const QDateTime shown = instant.toTimeZone(anchor.zone);
        QJsonObject object{
            {QStringLiteral("moment"), instant.toUTC().toString(Qt::ISODate)},
            {QStringLiteral("anchor"),
             QJsonObject{
                 {QStringLiteral("name"), anchor.name.isEmpty() ? QJsonValue() : anchor.name},
                 {QStringLiteral("identifier"), anchor.identifier},
                 {QStringLiteral("localDateTime"),
                  QDateTime(shown.date(), shown.time()).toString(Qt::ISODate)},
                 {QStringLiteral("note"), note.isEmpty() ? QJsonValue() : note},
             }},
            {QStringLiteral("workingHours"), hours ? QJsonValue(hours->toString()) : QJsonValue()},
            {QStringLiteral("cities"), cities},
        };
        return print(compactJson(object));
    }

    QString text = MenuBarFormatter::timeString(*format, instant, anchor.zone) + u' ' +
                   PosixTimeFormat::format(instant, anchor.zone, u"EEE") + u' ' +
                   instant.toTimeZone(anchor.zone).date().toString(u"yyyy-MM-dd") +
                   QStringLiteral(" in ") + place + u'\n';
    if (!note.isEmpty())
        text += note + u'\n';
    QList<QStringList> rows{{QStringLiteral("#"), QStringLiteral("Name"),
                             QStringLiteral("Time zone"), QStringLiteral("Time"),
                             QStringLiteral("Offset")}};
    if (hours)
        rows.first().append(QStringLiteral("Working hours"));
    for (qsizetype i = 0; i < zones->size(); ++i) {
        const SavedZone &zone = zones->at(i);
        const CityTimes::Entry time = CityTimes::entryFor(zone, *format, instant, local);
        QStringList row{QString::number(i + 1), zone.displayName(), zone.identifier, time.time,
                        time.subtitle};
        if (hours) {
            const std::optional<QTimeZone> timeZone = TimeZoneDatabase::resolve(zone.identifier);
            row.append(!timeZone ? QStringLiteral("-")
                       : TimeShift::isWorkingTime(*hours, instant, *timeZone)
                           ? QStringLiteral("yes")
                           : QStringLiteral("no"));
        }
        rows.append(row);
    }
    return print(text + table(rows).chopped(1));
}

int CommandLine::add(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1)
        return usageError(QStringLiteral("\"add\" takes one time zone, such as Europe/Stockholm"));
    // An old name (Asia/Calcutta) is saved as the zone it stands for.
    const QString identifier = TimeZoneDatabase::canonicalIdentifier(arguments.constFirst());
    if (!TimeZoneDatabase::resolves(identifier)) {
        QList<ZoneSearchResult> found = ZoneChoices::results(identifier);
        if (found.isEmpty())
            found = ZoneChoices::results(cityPart(identifier));
        QString message = QStringLiteral("unknown time zone \"%1\"").arg(identifier);
        if (!found.isEmpty()) {
            const ZoneSearchResult &first = found.constFirst();
            message += QStringLiteral("; did you mean %1 (%2)?").arg(first.identifier, first.title);
        }
        return usageError(message);
    }
    std::optional<QString> nickname;
    if (parser.isSet(QStringLiteral("nickname")))
        nickname = parser.value(QStringLiteral("nickname"));
    if (const std::optional<QString> problem = ZoneLimits::nicknameProblem(nickname))
        return usageError(*problem);
    const std::optional<QList<SavedZone>> zones = editor(false).zones();
    if (!zones)
        return editResult(int(ZoneEditor::Result::Unreachable));
    if (const std::optional<QString> problem = ZoneLimits::countProblem(zones->size()))
        return usageError(*problem);
    const ZoneEditor::Result result =
        editor(true).add(identifier, nickname, parser.isSet(QStringLiteral("pin")));
    const SavedZone wanted{QUuid(), identifier, nickname, false};
    return editResult(int(result),
                      QStringLiteral("%1 is already in your list").arg(describe(wanted)));
}

int CommandLine::rename(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty() || arguments.size() > 2)
        return usageError(QStringLiteral("\"rename\" takes a city and, optionally, its new name"));
    if (arguments.size() == 2) {
        if (const auto problem = ZoneLimits::nicknameProblem(trimmedText(arguments.at(1))))
            return usageError(*problem);
    }
    const std::optional<SavedZone> zone = zoneNamed(arguments.constFirst());
    if (!zone)
        return UsageError;
    std::optional<QString> nickname;
    if (arguments.size() == 2)
        nickname = arguments.at(1);
    return editResult(int(editor(true).rename(zone->id, nickname)),
                      QStringLiteral("%1 is no longer in your list").arg(describe(*zone)));
}

int CommandLine::setPinned(QCommandLineParser &parser, bool pinned)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1)
        return usageError(QStringLiteral("\"%1\" takes one city").arg(pinned ? u"pin" : u"unpin"));
    const std::optional<SavedZone> zone = zoneNamed(arguments.constFirst());
    if (!zone)
        return UsageError;
    return editResult(int(editor(true).setPinned(zone->id, pinned)),
                      QStringLiteral("%1 is no longer in your list").arg(describe(*zone)));
}

int CommandLine::remove(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() != 1)
        return usageError(QStringLiteral("\"remove\" takes one city"));
    const std::optional<SavedZone> zone = zoneNamed(arguments.constFirst());
    if (!zone)
        return UsageError;
    return editResult(int(editor(true).remove(zone->id)),
                      QStringLiteral("%1 is no longer in your list").arg(describe(*zone)));
}

int CommandLine::move(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    const bool before = parser.isSet(QStringLiteral("before"));
    const bool toEnd = parser.isSet(QStringLiteral("to-end"));
    if (arguments.size() != 1 || before == toEnd)
        return usageError(
            QStringLiteral("\"move\" takes one city and either --before ZONE or --to-end"));
    const std::optional<SavedZone> zone = zoneNamed(arguments.constFirst());
    if (!zone)
        return UsageError;
    std::optional<QUuid> anchor;
    if (before) {
        const std::optional<SavedZone> other = zoneNamed(parser.value(QStringLiteral("before")));
        if (!other)
            return UsageError;
        if (other->id == zone->id)
            return usageError(QStringLiteral("a city cannot move in front of itself"));
        anchor = other->id;
    }
    return editResult(int(editor(true).moveZones({zone->id}, anchor)));
}

int CommandLine::search(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 1)
        return usageError(QStringLiteral("\"search\" takes one query; quote it if it has spaces"));
    const QString query = arguments.value(0);
    ZoneEditor &source = editor(false);
    const std::optional<QList<SavedZone>> zones = source.zones();
    const std::optional<MenuBarFormat> format = source.format();
    if (!zones || !format)
        return editResult(int(ZoneEditor::Result::Unreachable));
    const QList<ZoneSearchResult> results = ZoneChoices::results(query);
    const QDateTime now = QDateTime::currentDateTimeUtc();

    const auto timeThere = [&](const ZoneSearchResult &result) {
        const std::optional<QTimeZone> zone = TimeZoneDatabase::resolve(result.identifier);
        return zone ? MenuBarFormatter::timeString(*format, now, *zone) : QString();
    };

    if (parser.isSet(QStringLiteral("json"))) {
        QJsonArray array;
        for (const ZoneSearchResult &result : results) {
            const std::optional<QString> nickname = ZoneChoices::nicknameToSave(result);
            array.append(QJsonObject{
                {QStringLiteral("title"), result.title},
                {QStringLiteral("subtitle"), result.subtitle},
                {QStringLiteral("identifier"), result.identifier},
                {QStringLiteral("nickname"), nickname ? QJsonValue(*nickname) : QJsonValue()},
                {QStringLiteral("time"), timeThere(result)},
                {QStringLiteral("alreadyAdded"), ZoneChoices::isAlreadyAdded(result, *zones)},
            });
        }
        print(compactJson(array));
        return results.isEmpty() ? Refused : Success;
    }

    if (results.isEmpty()) {
        m_err << "zonara: no city or time zone matches \"" << query << "\"\n";
        m_err.flush();
        return Refused;
    }
    QList<QStringList> rows;
    for (const ZoneSearchResult &result : results) {
        rows.append(
            {result.title, result.subtitle, timeThere(result),
             ZoneChoices::isAlreadyAdded(result, *zones) ? QStringLiteral("(added)") : QString()});
    }
    return print(table(rows).chopped(1));
}

int CommandLine::format(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 1)
        return usageError(QStringLiteral("\"format\" takes at most one format name"));
    if (arguments.isEmpty()) {
        const std::optional<MenuBarFormat> format = editor(false).format();
        if (!format)
            return editResult(int(ZoneEditor::Result::Unreachable));
        return print(MenuBarFormats::rawValue(*format));
    }
    const std::optional<MenuBarFormat> format =
        MenuBarFormats::fromRawValue(arguments.constFirst());
    if (!format) {
        return usageError(QStringLiteral("unknown format \"%1\"; the formats are %2")
                              .arg(arguments.constFirst(), LineCommand::formatNames()));
    }
    return editResult(int(editor(true).setFormat(*format)));
}

int CommandLine::hours(QCommandLineParser &parser)
{
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() > 1)
        return usageError(QStringLiteral("\"hours\" takes at most one range, such as 09:00-18:00"));
    if (arguments.isEmpty()) {
        const std::optional<QString> text = m_preferences.readText(ZoneStore::workingHoursKey);
        const std::optional<WorkingHours> hours =
            text ? WorkingHours::fromString(*text) : std::nullopt;
        return print(hours ? hours->toString() : QStringLiteral("off"));
    }
    std::optional<WorkingHours> hours;
    if (arguments.constFirst() != u"off") {
        hours = WorkingHours::fromString(arguments.constFirst());
        if (!hours) {
            return usageError(QStringLiteral("\"%1\" is not a range such as 09:00-18:00, nor off")
                                  .arg(arguments.constFirst()));
        }
    }
    // Straight to the file: a running Zonara takes it in from there, as it
    // takes in any change made outside it.
    ZoneStore store(m_preferences, TimeZoneDatabase::lookup());
    store.setWorkingHours(hours);
    if (store.saveFailed()) {
        return usageError(
            QStringLiteral("your change could not be saved: %1").arg(m_preferences.saveError()));
    }
    return Success;
}
