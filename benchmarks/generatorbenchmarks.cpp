#include "benchmarks/benchmarksupport.h"
#include "documents/edsgenerator.h"
#include "store/objectdatabase.h"

#include <benchmark/benchmark.h>

namespace {

/// With caches filled, as the driver does it once for all generators of a run.
void generateEds(benchmark::State &state)
{
    ObjectDataBase store;
    store.openDataBase(BenchmarkSupport::projectFile(static_cast<int>(state.range(0)), "vxmp"));
    store.cacheAllSubs(0);
    store.cacheSubIndexNames(0);
    for (auto _ : state) {
        EDSGenerator generator(QString(), false, false);
        generator.setStore(&store);
        generator.setLine(0);
        generator.setOutputFolder(BenchmarkSupport::folder());
        generator.setProjectName(QStringLiteral("project"));
        generator.doJob();
        if (generator.errorCode() != 0)
            state.SkipWithError("the EDS can't be generated");
    }
}

BENCHMARK(generateEds)
    ->ArgName("objects")
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();

} // namespace
