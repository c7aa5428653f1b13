#include "CityCatalog.h"
#include "FoldedCities.h"

#include <QTest>

#include <array>
#include <latch>
#include <thread>

// Runs once with a sample catalogue and once with a missing file, each in its
// own process: the shared catalogue is read only once per process.
class TestSharedCatalog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void concurrentFirstUse();
    void contentAndStability();
};

void TestSharedCatalog::concurrentFirstUse()
{
    // Must run before anything else touches the catalogue.
    constexpr int threadCount = 8;
    std::array<const QList<CityEntry> *, threadCount> lists{};
    std::array<const FoldedCities *, threadCount> folded{};
    std::array<qsizetype, threadCount> sizes{};
    std::latch start(threadCount);
    {
        std::array<std::jthread, threadCount> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads[i] = std::jthread([&, i] {
                start.arrive_and_wait();
                lists[i] = &CityCatalog::shared();
                folded[i] = &CityCatalog::sharedFolded();
                sizes[i] = lists[i]->size();
            });
        }
    }
    for (int i = 0; i < threadCount; ++i) {
        QCOMPARE(lists[i], &CityCatalog::shared());
        QCOMPARE(folded[i], &CityCatalog::sharedFolded());
        QCOMPARE(sizes[i], CityCatalog::shared().size());
    }
}

void TestSharedCatalog::contentAndStability()
{
    bool valid = false;
    const int expected = qEnvironmentVariableIntValue("ZONARA_TEST_EXPECTED_CITIES", &valid);
    QVERIFY2(valid, "ZONARA_TEST_EXPECTED_CITIES must be set by the test's registration");

    const QList<CityEntry> &cities = CityCatalog::shared();
    QCOMPARE(cities.size(), expected);
    QCOMPARE(cities, CityCatalog::load(CityCatalog::fileName()));
    QCOMPARE(CityCatalog::sharedFolded().cities(), cities);
    QCOMPARE(CityCatalog::sharedFolded().names().size(), cities.size());
}

QTEST_GUILESS_MAIN(TestSharedCatalog)
#include "tst_sharedcatalog.moc"
