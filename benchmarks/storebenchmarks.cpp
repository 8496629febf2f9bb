#include "benchmarks/benchmarksupport.h"
#include "benchmarks/syntheticproject.h"
#include "store/objectdatabase.h"
#include "store/storeguards.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::State;

int objectCount(const State &state)
{
    return static_cast<int>(state.range(0));
}

/// A store with an empty project.
std::unique_ptr<ObjectDataBase> emptyStore()
{
    auto store = std::make_unique<ObjectDataBase>();
    store->createNewDataBase();
    return store;
}

/// A store with a synthetic project that was read from a file, as a user's store is.
std::unique_ptr<ObjectDataBase> openedStore(int count)
{
    auto store = std::make_unique<ObjectDataBase>();
    store->openDataBase(BenchmarkSupport::projectFile(count, "vxmp"));
    return store;
}

void openFile(State &state, const QString &path)
{
    for (auto _ : state) {
        auto store = std::make_unique<ObjectDataBase>();
        const bool opened = store->openDataBase(path);
        state.PauseTiming();
        if (!opened)
            state.SkipWithError("the project does not open");
        store.reset();
        state.ResumeTiming();
    }
}

void open(State &state)
{
    openFile(state, BenchmarkSupport::projectFile(objectCount(state), "vxmp"));
}

void openOldSchema(State &state)
{
    openFile(state, BenchmarkSupport::oldSchemaFile(objectCount(state)));
}

void openText(State &state)
{
    openFile(state, BenchmarkSupport::projectFile(objectCount(state), "vxmt"));
}

void cacheAllSubs(State &state)
{
    const auto store = openedStore(objectCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        store->clearSubCaches();
        state.ResumeTiming();
        if (!store->cacheAllSubs(0))
            state.SkipWithError("the line can't be cached");
    }
}

/// A walk as generators do it, over filled caches.
void walkCachedLine(State &state)
{
    const auto store = openedStore(objectCount(state));
    store->cacheAllSubs(0);
    store->cacheSubIndexNames(0);
    const StoreGeneration generation(*store);
    for (auto _ : state) {
        qsizetype length = 0;
        ObjectDataBase::SUBINDEX_DATA_T data;
        const auto indices = store->getIndices(0);
        for (const quint16 index : indices) {
            const auto subIndices = store->getSubIndices(0, index);
            for (const quint8 subIndex : subIndices) {
                store->getSubIndexData(0, index, subIndex, data);
                length += data.name.size() + data.defaultvalue.size();
            }
        }
        benchmark::DoNotOptimize(length);
    }
}

void addSubIndexBurst(State &state)
{
    const auto entries = SyntheticProject::subIndices(objectCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = emptyStore();
        SyntheticProject::addObjects(*store, objectCount(state));
        state.ResumeTiming();
        bool done = true;
        for (const auto &entry : entries)
            done = store->addSubIndex(entry.line, entry.index, entry.subindex, entry.data) && done;
        state.PauseTiming();
        if (!done)
            state.SkipWithError("a subindex was refused");
        store.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * entries.size());
}

void addSubIndices(State &state)
{
    const auto entries = SyntheticProject::subIndices(objectCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = emptyStore();
        SyntheticProject::addObjects(*store, objectCount(state));
        state.ResumeTiming();
        const bool done = store->addSubIndices(entries);
        state.PauseTiming();
        if (!done)
            state.SkipWithError("the batch was refused");
        store.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * entries.size());
}

void contentHash(State &state)
{
    const auto store = openedStore(objectCount(state));
    for (auto _ : state)
        benchmark::DoNotOptimize(store->contentHash());
}

void saveAs(State &state, const char *suffix)
{
    const auto store = openedStore(objectCount(state));
    const QString target = BenchmarkSupport::scratchFile(suffix);
    for (auto _ : state) {
        if (!store->saveDatabase(target))
            state.SkipWithError("the project can't be saved");
    }
}

void save(State &state)
{
    saveAs(state, "vxmp");
}

void saveText(State &state)
{
    saveAs(state, "vxmt");
}

void copyLine(State &state)
{
    const auto source = openedStore(objectCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto target = emptyStore();
        state.ResumeTiming();
        if (!ObjectDataBase::copyLine(*target, *source, 0, 0))
            state.SkipWithError("the line can't be copied");
        state.PauseTiming();
        target.reset();
        state.ResumeTiming();
    }
}

void snapshot(State &state)
{
    const auto store = openedStore(objectCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        const QString target = BenchmarkSupport::scratchFile("snapshot");
        state.ResumeTiming();
        if (!store->takeSnapshot(target))
            state.SkipWithError("no snapshot");
    }
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    for (const int count : {100, 1000, 10000})
        benchmark->Arg(count);
    benchmark->ArgName("objects")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
}

BENCHMARK(open)->Apply(sizes);
BENCHMARK(openOldSchema)->Apply(sizes);
BENCHMARK(openText)->Apply(sizes);
BENCHMARK(cacheAllSubs)->Apply(sizes);
BENCHMARK(walkCachedLine)->Apply(sizes);
BENCHMARK(addSubIndexBurst)->Apply(sizes);
BENCHMARK(addSubIndices)->Apply(sizes);
BENCHMARK(contentHash)->Apply(sizes);
BENCHMARK(save)->Apply(sizes);
BENCHMARK(saveText)->Apply(sizes);
BENCHMARK(copyLine)->Apply(sizes);
BENCHMARK(snapshot)->Apply(sizes);

} // namespace
