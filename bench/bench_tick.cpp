// The cost of one clock tick in the running program with its panel closed,
// over 3, 30 and 300 saved cities (three of them pinned), and of resolving
// 300 distinct zones. A tick should cost about the same whatever the length
// of the list, since only the tray line is visible.

#include "Clock.h"
#include "MemoryPreferencesStore.h"
#include "MenuBarLabel.h"
#include "TimeZoneDatabase.h"
#include "ZoneListView.h"
#include "ZoneStore.h"

#include <QApplication>

#include <benchmark/benchmark.h>

namespace {

class IdleTimer final : public ClockTimer
{
public:
    void start(std::chrono::milliseconds, std::function<void()>) override {}
    void stop() override {}
};

QStringList distinctZones(int count)
{
    const QStringList &known = TimeZoneDatabase::knownIdentifiers();
    QStringList zones;
    // Spread over the whole database rather than one region's run of names.
    for (int i = 0; i < count; ++i)
        zones.append(known.at(qsizetype(i) * known.size() / count));
    return zones;
}

void tick(benchmark::State &state)
{
    const int cities = int(state.range(0));
    MemoryPreferencesStore preferences;
    ZoneStore store(preferences, TimeZoneDatabase::lookup());
    QList<SavedZone> zones;
    const QStringList identifiers = distinctZones(cities);
    for (qsizetype i = 0; i < identifiers.size(); ++i)
        zones.append({QUuid::createUuid(), identifiers.at(i), std::nullopt, i < 3});
    store.setZones(zones);

    QDateTime now(QDate(2026, 3, 2), QTime(12, 0), QTimeZone::utc());
    Clock clock([&] { return now; }, &TimeZoneDatabase::localZone, std::make_unique<IdleTimer>());
    MenuBarLabel label(store, clock);
    ZoneListView panel(store, clock); // built, as in the program, and closed
    for (auto _ : state) {
        now = now.addSecs(60);
        clock.setNow(now);
        benchmark::DoNotOptimize(label.text());
    }
    state.SetLabel(QStringLiteral("%1 cities").arg(cities).toStdString());
}
BENCHMARK(tick)->Arg(3)->Arg(30)->Arg(300)->Unit(benchmark::kMicrosecond);

void resolveDistinctZones(benchmark::State &state)
{
    const QStringList zones = distinctZones(300);
    for (auto _ : state) {
        for (const QString &zone : zones)
            benchmark::DoNotOptimize(TimeZoneDatabase::resolve(zone));
    }
    state.SetItemsProcessed(state.iterations() * zones.size());
}
BENCHMARK(resolveDistinctZones)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
