#pragma once

#include "generation/runfacts.h"

#include <QList>
#include <QString>

#include <memory>
#include <vector>

class AbstractGenerator;

/// The lines that an output is made for.
enum class OutputLines : quint8 {
    Once,    ///< one run for the project, on line 0
    CANopen, ///< each line with CANopen
    J1939,
    RawCAN,
    Active ///< each line, whatever its type
};

/// One generator that is to run. Messages: %1 is the output folder, %2 the name of the file.
struct OutputJob
{
    std::unique_ptr<AbstractGenerator> generator;
    const char *started = nullptr; ///< null: that of the row
};

/// The jobs of one row on one line, and a message behind them if it is not null.
struct OutputJobs
{
    std::vector<OutputJob> jobs;
    const char *closing = nullptr;
};

/// One output of a run: generators, an action, or the name of what is missing.
struct OutputRow
{
    /// Place in the run. Rows of one step are walked together line by line, in the order of the
    /// list.
    int step = 0;
    bool (*applies)(const RunFacts &facts);
    OutputLines lines = OutputLines::Once;

    /// The generators with what only they know; `makeOutput` gives them the rest.
    OutputJobs (*make)(const RunFacts &facts, quint8 line) = nullptr;
    const char *suffix = "";        ///< of file names, on lines of several protocols
    bool inheritsMultiLine = false; ///< the generator is told of the project's lines
    const char *started = "";
    const char *notWritable = "";
    bool namesBase = false; ///< %2 is the file's name without its extension
    bool failureEndsRun = false;
    /// Extension under which a user can have the first job's file alone; null if it is no document.
    const char *document = nullptr;

    /// Name of an output that the project needs and this version has no generator for.
    const char *missing = nullptr;
    /// False if it could not be done, which `notWritable` then tells. `started` is told after one
    /// that could.
    bool (*action)(const RunFacts &facts) = nullptr;
};

/// All outputs of a run in their order: the lists of the protocols, merged by step.
[[nodiscard]] const QList<OutputRow> &outputList();

/// The row of a CANopen document by its extension, as "eds"; null if there is none.
[[nodiscard]] const OutputRow *documentOutput(const QString &extension);

/// The row is made for the line, and the project asks for it.
[[nodiscard]] bool isOutputWanted(const OutputRow &row, const RunFacts &facts, quint8 line);

/// The generators of a row, ready to run.
[[nodiscard]] OutputJobs makeOutput(const OutputRow &row, const RunFacts &facts, quint8 line);

/// Fills %1 and %2 of a message.
[[nodiscard]] QString outputMessageText(const char *format, const QString &folder,
                                        const QString &name);
