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

/// One output of a run. Rows are walked in their order; neighbours of one step are walked together
/// line by line. A row holds generators, an action or the name of what is missing.
struct OutputRow
{
    const char *step;
    bool (*applies)(const RunFacts &facts);
    OutputLines lines = OutputLines::Once;

    OutputJobs (*make)(const RunFacts &facts, quint8 line) = nullptr;
    const char *suffix = "";        ///< of file names, on lines of several protocols
    bool inheritsMultiLine = false; ///< the generator is told of the project's lines
    void (*attributes)(const RunFacts &facts, AbstractGenerator &generator) = nullptr;
    const char *started = "";
    const char *notWritable = "";
    bool namesBase = false; ///< %2 is the file's name without its extension
    /// What is told after the run, if not null; an empty text is not put out.
    QString (*remark)(AbstractGenerator &generator) = nullptr;
    /// File that must not survive if the generator says that it has nothing to write.
    const char *staleFile = nullptr;
    bool (*hasContent)(AbstractGenerator &generator) = nullptr;
    bool failureEndsRun = false;

    /// Name of an output that the project needs and this version has no generator for; the row
    /// then has neither generators nor an action.
    const char *missing = nullptr;
    /// False if it could not be done, which `notWritable` then tells. `started` is told after one
    /// that could.
    bool (*action)(const RunFacts &facts) = nullptr;
};

/// All outputs of a run in their order. A new generator is one row here.
[[nodiscard]] const QList<OutputRow> &outputList();

/// Fills %1 and %2 of a message.
[[nodiscard]] QString outputMessageText(const char *format, const QString &folder,
                                        const QString &name);
