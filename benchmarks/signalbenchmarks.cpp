#include "benchmarks/benchmarksupport.h"
#include "benchmarks/syntheticsignals.h"
#include "store/objectdatabase.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::State;
using Store = ObjectDataBase;

int messageCount(const State &state)
{
    return static_cast<int>(state.range(0));
}

std::unique_ptr<Store> emptyStore()
{
    auto store = std::make_unique<Store>();
    store->createNewDataBase();
    return store;
}

std::unique_ptr<Store> filledStore(int count)
{
    auto store = emptyStore();
    SyntheticSignals::fill(*store, count);
    return store;
}

QString projectFile(int count)
{
    const QString path = BenchmarkSupport::scratchFile("vxmp");
    filledStore(count)->saveDatabaseAsSql(path);
    return path;
}

/// Each signal by itself, as who asks for one after the other.
void walkPgns(State &state)
{
    const QString path = projectFile(messageCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<Store>();
        store->openDataBase(path);
        state.ResumeTiming();
        qsizetype length = 0;
        Store::SPN spn;
        for (const quint8 direction : {Store::receive, Store::transmit}) {
            for (const quint32 pgn : store->getPGNList(0, direction)) {
                for (const quint32 number : store->getSPNList(0, pgn, direction)) {
                    store->getSPN(0, pgn, direction, number, spn);
                    length += spn.name.size();
                }
            }
        }
        benchmark::DoNotOptimize(length);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

void walkCanIds(State &state)
{
    const QString path = projectFile(messageCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<Store>();
        store->openDataBase(path);
        state.ResumeTiming();
        qsizetype length = 0;
        Store::DataElement element;
        for (const quint8 direction : {Store::receive, Store::transmit}) {
            for (const quint32 id : store->getCANIDList(0, direction)) {
                for (const quint32 number : store->getDataElementList(0, id, direction)) {
                    store->getDataElement(0, id, direction, number, element);
                    length += element.name.size();
                }
            }
        }
        benchmark::DoNotOptimize(length);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

void openSignals(State &state)
{
    const QString path = projectFile(messageCount(state));
    for (auto _ : state) {
        auto store = std::make_unique<Store>();
        const bool opened = store->openDataBase(path);
        state.PauseTiming();
        if (!opened)
            state.SkipWithError("the project does not open");
        store.reset();
        state.ResumeTiming();
    }
}

void copySignals(State &state)
{
    const auto source = filledStore(messageCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto target = emptyStore();
        state.ResumeTiming();
        if (!Store::copyLine(*target, *source, 0, 0))
            state.SkipWithError("the line can't be copied");
        state.PauseTiming();
        target.reset();
        state.ResumeTiming();
    }
}

/// One signal after the other, as forms and importers write.
void addSpns(State &state)
{
    const auto spns = SyntheticSignals::spns(messageCount(state));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = emptyStore();
        state.ResumeTiming();
        for (const Store::SPN &spn : spns)
            store->addSPN(0, spn.pgn, spn.direction, spn.spn, spn);
        state.PauseTiming();
        store.reset();
        state.ResumeTiming();
    }
}

constexpr int catalogue = 1850; ///< parameter groups that J1939 defines, about

BENCHMARK(walkPgns)->Arg(catalogue)->Unit(benchmark::kMillisecond);
BENCHMARK(walkCanIds)->Arg(catalogue)->Unit(benchmark::kMillisecond);
BENCHMARK(openSignals)->Arg(catalogue)->Unit(benchmark::kMillisecond);
BENCHMARK(copySignals)->Arg(catalogue)->Unit(benchmark::kMillisecond);
BENCHMARK(addSpns)->Arg(catalogue)->Unit(benchmark::kMillisecond);

} // namespace
