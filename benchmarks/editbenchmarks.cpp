// Edits of many objects in a dictionary of 10000.

#include "benchmarks/benchmarksupport.h"
#include "dictionary/dictionaryclipboard.h"
#include "dictionary/lineedits.h"
#include "dictionary/objectedits.h"
#include "dictionary/recordedits.h"

#include <benchmark/benchmark.h>

#include <functional>

namespace {

using benchmark::State;

constexpr int dictionarySize = 10000;
constexpr qsizetype editedObjects = 1000;

/// Times an edit of a project that was just opened; each run begins with a new one.
void edit(State &state, const std::function<EditResult(const EditContext &)> &run)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto store = std::make_unique<ObjectDataBase>();
        store->openDataBase(BenchmarkSupport::projectFile(dictionarySize, "vxmp"));
        const EditContext context{*store, 0, EditRights({.expert = true}), nullptr};
        state.ResumeTiming();
        const EditResult result = run(context);
        state.PauseTiming();
        if (!result)
            state.SkipWithError(qPrintable(result.reason()));
        store.reset();
        state.ResumeTiming();
    }
}

QList<quint16> someObjects(const EditContext &context)
{
    return ObjectEdits::objectsIn(context, ObjectRanges::manufacturer).first(editedObjects);
}

void removeObjects(State &state)
{
    edit(state,
         [](const auto &context) { return ObjectEdits::remove(context, someObjects(context)); });
}

void copyAndPasteObjects(State &state)
{
    edit(state, [](const auto &context) {
        DictionaryClipboard clipboard;
        const QList<quint16> objects = someObjects(context);
        if (!clipboard.copy(context.store, context.line, objects))
            return EditResult::refused(QStringLiteral("nothing is copied"));
        return ObjectEdits::paste(context, clipboard, objects.last());
    });
}

void setDefaultOfLine(State &state)
{
    edit(state, [](const auto &context) {
        return LineEdits::run(context, LineEdits::Command::ClearHasDefault);
    });
}

/// The smallest edit: another data type, which looks for the subindex in the mapping objects.
void retypeSubIndex(State &state)
{
    edit(state, [](const auto &context) {
        const quint16 index = someObjects(context).first();
        ObjectDataBase::SUBINDEX_DATA_T data;
        context.store.getSubIndexData(context.line, index, 0, data);
        data.datatype = CAN::UNSIGNED64;
        return RecordEdits::saveEntries(context, index, {{0, data}});
    });
}

BENCHMARK(removeObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(copyAndPasteObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(setDefaultOfLine)->Unit(benchmark::kMillisecond);
BENCHMARK(retypeSubIndex)->Unit(benchmark::kMillisecond);

} // namespace
