#include "benchmarks/benchmarksupport.h"
#include "check/modelchecker.h"
#include "documents/edsgenerator.h"
#include "generators/canopen/objdictgeneratorv4.h"
#include "generators/define/gendefinegenerator.h"
#include "generators/headers/indicesgenerator.h"
#include "store/objectdatabase.h"

#include <benchmark/benchmark.h>

namespace {

/// With caches filled, as the driver does it once for all generators of a run.
template <typename Generator, typename... Arguments>
void generate(benchmark::State &state, Arguments... arguments)
{
    ObjectDataBase store;
    store.openDataBase(BenchmarkSupport::projectFile(static_cast<int>(state.range(0)), "vxmp"));
    store.cacheAllSubs(0);
    store.cacheSubIndexNames(0);
    for (auto _ : state) {
        Generator generator(arguments...);
        generator.setStore(&store);
        generator.setLine(0);
        generator.setOutputFolder(BenchmarkSupport::folder());
        generator.setProjectName(QStringLiteral("project"));
        generator.doJob();
        if (generator.errorCode() != 0)
            state.SkipWithError("the file can't be generated");
    }
}

void generateEds(benchmark::State &state)
{
    generate<EDSGenerator>(state, QString(), false, false);
}

void generateObjDict(benchmark::State &state)
{
    generate<ObjDictGeneratorV4>(state, false);
}

void generateCompactObjDict(benchmark::State &state)
{
    generate<ObjDictGeneratorV4>(state, true);
}

void generateDefine(benchmark::State &state)
{
    generate<GenDefineGenerator>(state);
}

void generateIndices(benchmark::State &state)
{
    generate<IndicesGenerator>(state);
}

void checkLine(benchmark::State &state)
{
    ObjectDataBase store;
    store.openDataBase(BenchmarkSupport::projectFile(static_cast<int>(state.range(0)), "vxmp"));
    store.cacheAllSubs(0);
    for (auto _ : state) {
        ModelChecker checker;
        checker.checkProject(&store, BenchmarkSupport::folder());
        bool changed = false;
        benchmark::DoNotOptimize(checker.checkCANopenLine(0, &store, &changed));
    }
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("objects")->Arg(100)->Arg(1000)->Arg(10000);
    benchmark->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
}

BENCHMARK(generateEds)->Apply(sizes);
BENCHMARK(generateObjDict)->Apply(sizes);
BENCHMARK(generateCompactObjDict)->Apply(sizes);
BENCHMARK(generateDefine)->Apply(sizes);
BENCHMARK(generateIndices)->Apply(sizes);
BENCHMARK(checkLine)->Apply(sizes);

} // namespace
