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
#include <malloc.h>

namespace {

QString catalogueFile()
{
    // The build's own copy when present, else the source file.
    const QString beside = CityCatalog::fileName();
    return QFileInfo::exists(beside)
               ? beside
               : QStringLiteral(ZONARA_SOURCE_DIR "/resources/data/cities.json");
}

CityOtherNames &otherNames()
{
    static CityOtherNames names;
    return names;
}

const QList<CityEntry> &cities()
{
    static const QList<CityEntry> list = CityCatalog::load(catalogueFile(), &otherNames());
    return list;
}

const QStringList queries{"s",
                          "cologne",
                          "calcutta",
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
    static const FoldedCities folded(cities(), otherNames());
    static const FoldedIdentifiers identifiers(TimeZoneDatabase::knownIdentifiers(),
                                               TimeZoneDatabase::linkTargets());
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
        CityOtherNames names;
        const QList<CityEntry> loaded = CityCatalog::load(file, &names);
        const FoldedCities folded(loaded, names);
        benchmark::DoNotOptimize(folded.size());
    }
}

void decodeOnly(benchmark::State &state)
{
    const QString file = catalogueFile();
    for (auto _ : state) {
        CityOtherNames names;
        benchmark::DoNotOptimize(CityCatalog::load(file, &names).size());
    }
}

void foldOnly(benchmark::State &state)
{
    for (auto _ : state) {
        const FoldedCities folded(cities(), otherNames());
        benchmark::DoNotOptimize(folded.size());
    }
}

// Heap bytes in use; the catalogue is all heap, so the growth while one is
// held is what it costs to keep it.
size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

int main(int argc, char **argv)
{
    // The real first load happens once per process, into memory the process
    // has never touched; the repeated load/ benchmarks below reuse memory and
    // so measure less. Run the program a few times for a spread.
    QElapsedTimer timer;
    timer.start();
    CityOtherNames firstNames;
    const QList<CityEntry> firstCities = CityCatalog::load(catalogueFile(), &firstNames);
    const qsizetype firstSize = FoldedCities(firstCities, firstNames).size();
    std::printf("first load in this process: %.1f ms (%lld cities)\n", timer.nsecsElapsed() / 1e6,
                static_cast<long long>(firstSize));
    {
        const size_t before = heapInUse();
        auto *names = new CityOtherNames;
        const auto *held = new FoldedCities(CityCatalog::load(catalogueFile(), names), *names);
        std::printf("catalogue held in memory: %.2f MB\n", (heapInUse() - before) / 1e6);
        delete held;
        delete names;
    }

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
