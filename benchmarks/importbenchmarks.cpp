#include "benchmarks/benchmarksupport.h"
#include "benchmarks/syntheticeds.h"
#include "import/edsimporter.h"
#include "store/canopen/edsparser.h"
#include "store/objectdatabase.h"

#include <QMap>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using benchmark::State;

/// An Electronic Data Sheet of this many objects; made once.
QString edsFile(int objects)
{
    static QMap<int, QString> files;
    if (!files.contains(objects)) {
        files.insert(objects, BenchmarkSupport::scratchFile("eds"));
        SyntheticEds::write(files.value(objects), objects);
    }
    return files.value(objects);
}

void parseEds(State &state)
{
    const QString path = edsFile(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        EdsParser parser;
        qsizetype length = 0;
        QObject::connect(&parser, &EdsParser::newSubIndex,
                         [&](const CANopenSubindex &record) { length += record.name.size(); });
        if (!parser.LoadEds(path))
            state.SkipWithError("the file is refused");
        benchmark::DoNotOptimize(length);
    }
}

/// The whole import as the command line does it, on the importer's own thread.
void importEds(State &state)
{
    const QString path = edsFile(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<ObjectDataBase>();
        store->createNewDataBase();
        state.ResumeTiming();
        EDSImporter importer;
        importer.setLine(0);
        importer.setDatabase(store.get());
        importer.setRange(0x1000, 0xBFFF);
        importer.setFile(path);
        importer.start();
        importer.wait();
        state.PauseTiming();
        if (!importer.errorString().isEmpty())
            state.SkipWithError("the file is refused");
        store.reset();
        state.ResumeTiming();
    }
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    for (const int objects : {1000, 10000})
        benchmark->Arg(objects);
    benchmark->ArgName("objects")->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
    benchmark->UseRealTime();
}

BENCHMARK(parseEds)->Apply(sizes);
BENCHMARK(importEds)->Apply(sizes);

} // namespace
