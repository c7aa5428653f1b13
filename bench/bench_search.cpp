// Search speed over the shipped catalogue and the system's zone list, per
// keystroke-sized query, with texts folded once (what the view uses) and
// folded afresh on every call; and the cost of the first catalogue load.
// Run with --benchmark_repetitions=N for medians.

#include "CityCatalog.h"
#include "FoldedCities.h"
#include "FoldedIdentifiers.h"
#include "TimeZoneDatabase.h"
#include "ZoneSearch.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <benchmark/benchmark.h>

#include <cstdio>

namespace {

QString catalogueFile()
{
    // The build's own copy when present, else the source file.
    const QString beside = CityCatalog::fileName();
    return QFileInfo::exists(beside)
               ? beside
               : QStringLiteral(ZONARA_SOURCE_DIR "/resources/data/cities.json");
}

const QList<CityEntry> &cities()
{
    static const QList<CityEntry> list = CityCatalog::load(catalogueFile());
    return list;
}

const QStringList queries{"s",
                          "st",
                          "sto",
                          "stockholm",
                          "new y",
                          "america",
                          QString::fromUtf16(u"\u00e4"),
                          QString::fromUtf16(u"s\u00e3o"),
                          "zzzz"};

void searchFolded(benchmark::State &state, const QString &query)
{
    static const FoldedCities folded(cities());
    static const FoldedIdentifiers identifiers(TimeZoneDatabase::knownIdentifiers());
    qsizetype found = 0;
    for (auto _ : state) {
        const auto results = ZoneSearch::search(query, folded, identifiers);
        found = results.size();
        benchmark::DoNotOptimize(results.constData());
    }
    state.counters["results"] = double(found);
}

void searchPlain(benchmark::State &state, const QString &query)
{
    const QStringList &identifiers = TimeZoneDatabase::knownIdentifiers();
    qsizetype found = 0;
    for (auto _ : state) {
        const auto results = ZoneSearch::search(query, cities(), identifiers);
        found = results.size();
        benchmark::DoNotOptimize(results.constData());
    }
    state.counters["results"] = double(found);
}

void firstLoad(benchmark::State &state)
{
    const QString file = catalogueFile();
    for (auto _ : state) {
        const FoldedCities folded(CityCatalog::load(file));
        benchmark::DoNotOptimize(folded.size());
    }
}

void decodeOnly(benchmark::State &state)
{
    const QString file = catalogueFile();
    for (auto _ : state)
        benchmark::DoNotOptimize(CityCatalog::load(file).size());
}

void foldOnly(benchmark::State &state)
{
    for (auto _ : state) {
        const FoldedCities folded(cities());
        benchmark::DoNotOptimize(folded.size());
    }
}

} // namespace

int main(int argc, char **argv)
{
    // The real first load happens once per process, into memory the process
    // has never touched; the repeated load/ benchmarks below reuse memory and
    // so measure less. Run the program a few times for a spread.
    QElapsedTimer timer;
    timer.start();
    const qsizetype firstSize = FoldedCities(CityCatalog::load(catalogueFile())).size();
    std::printf("first load in this process: %.1f ms (%lld cities)\n", timer.nsecsElapsed() / 1e6,
                static_cast<long long>(firstSize));

    if (cities().isEmpty()) {
        std::fprintf(stderr, "no city catalogue at %s\n", qPrintable(catalogueFile()));
        return 1;
    }
    for (const QString &query : queries) {
        const std::string name = query.toStdString();
        benchmark::RegisterBenchmark(("search/folded/" + name).c_str(), searchFolded, query)
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark(("search/plain/" + name).c_str(), searchPlain, query)
            ->Unit(benchmark::kMicrosecond);
    }
    benchmark::RegisterBenchmark("load/read+decode+fold", firstLoad)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("load/read+decode", decodeOnly)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("load/fold", foldOnly)->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
