#include "benchmarks/benchmarksupport.h"
#include "benchmarks/syntheticeds.h"
#include "canopen/edsparser.h"
#include "import/csvimporter.h"
#include "import/edsimporter.h"
#include "import/fileimport.h"
#include "import/objectcargo.h"
#include "store/objectdatabase.h"

#include <QEventLoop>
#include <QFile>
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

/// The same number of objects and subindices as CSV; made once.
QString csvFile(int objects)
{
    static QMap<int, QString> files;
    if (files.contains(objects))
        return files.value(objects);
    const QString path = BenchmarkSupport::scratchFile("csv");
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("can't write %s", qPrintable(path));
    file.write("index,sub,objectcode,datatype,access,edsname,value\n");
    for (int i = 0; i < objects; ++i) {
        const QString index = QString::number(0x2000 + i, 16);
        const bool compound = i % 2 != 0;
        if (compound)
            file.write(QStringLiteral("0x%1,,RECORD,,,Record %2,\n").arg(index).arg(i).toUtf8());
        for (int subindex = 0; subindex < (compound ? 9 : 1); ++subindex) {
            file.write(QStringLiteral("0x%1,%2,%3,UNSIGNED8,rw,Entry %2 of %4,8\n")
                           .arg(index)
                           .arg(subindex)
                           .arg(compound ? "" : "VARIABLE")
                           .arg(i)
                           .toUtf8());
        }
    }
    files.insert(objects, path);
    return path;
}

/// The whole import as the command line does it, on the importer's own thread.
template <typename Importer>
void runImporter(State &state, const QString &path)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<ObjectDataBase>();
        store->createNewDataBase();
        state.ResumeTiming();
        Importer importer;
        importer.setLine(0);
        importer.setDatabase(store.get());
        importer.setRange(0x1000, 0xBFFF);
        importer.setFile(path);
        importer.start();
        importer.wait();
        state.PauseTiming();
        if (!importer.errorString().isEmpty() ||
            store->getIndices(0, 0x2000).size() < state.range(0) / 2)
            state.SkipWithError("the file is refused");
        store.reset();
        state.ResumeTiming();
    }
}

void importEds(State &state)
{
    runImporter<EDSImporter>(state, edsFile(static_cast<int>(state.range(0))));
}

void importCsv(State &state)
{
    runImporter<CsvImporter>(state, csvFile(static_cast<int>(state.range(0))));
}

/// What is behind the import dialog: a new project, and the store that files are read into.
struct DialogImport
{
    DialogImport()
    {
        for (ObjectDataBase *store : {&project, &scratch})
            store->createNewDataBase();
    }

    /// From the start to the end of the list.
    bool read(const QString &path)
    {
        FileImportOptions options;
        options.path = path;
        return import.read(options).isEmpty() && ends(&FileImport::readFinished);
    }
    bool takeAll()
    {
        QList<ImportedItem> items;
        for (const ObjectCargo::Object &object : cargo.objects())
            items.append({object.index, object.index, {}, {}});
        cargo.choose(items, ImportedImplementation::Managed, false);
        return import.take().isEmpty() && ends(&FileImport::takeFinished);
    }

    ObjectDataBase project;
    ObjectDataBase scratch;
    ObjectCargo cargo;
    FileImport import{{project, 0, scratch}, cargo};

private:
    template <typename Signal>
    bool ends(Signal signal)
    {
        QEventLoop loop;
        FileImport::Outcome result = FileImport::Outcome::Failed;
        QObject::connect(&import, signal, &loop, [&](FileImport::Outcome outcome) {
            result = outcome;
            loop.quit();
        });
        loop.exec();
        return result == FileImport::Outcome::Done;
    }
};

template <typename PathOf>
void listObjects(State &state, const PathOf &pathOf)
{
    const QString path = pathOf(static_cast<int>(state.range(0)));
    DialogImport dialog;
    for (auto _ : state) {
        if (!dialog.read(path))
            state.SkipWithError("the file can't be listed");
    }
}

void listEds(State &state)
{
    listObjects(state, edsFile);
}

void listProject(State &state)
{
    listObjects(state, [](int objects) { return BenchmarkSupport::projectFile(objects, "vxmp"); });
}

void takeObjects(State &state)
{
    const QString path = edsFile(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto dialog = std::make_unique<DialogImport>();
        const bool read = dialog->read(path);
        state.ResumeTiming();
        if (!read || !dialog->takeAll())
            state.SkipWithError("the objects can't be taken over");
        state.PauseTiming();
        dialog.reset();
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
BENCHMARK(importCsv)->Apply(sizes);
BENCHMARK(listEds)->Apply(sizes);
BENCHMARK(listProject)->Apply(sizes);
BENCHMARK(takeObjects)->Apply(sizes);

} // namespace
