#include "generation/outputlist.h"

#include "generation/protocoloutputs.h"
#include "generators/base/abstractgenerator.h"

#include <algorithm>

namespace {

QList<OutputRow> mergedRows()
{
    QList<OutputRow> rows;
    for (const auto &list : {ProtocolOutputs::ofProject(), ProtocolOutputs::ofCANopen(),
                             ProtocolOutputs::ofJ1939(), ProtocolOutputs::ofRawCAN()})
        rows.append(list);
    std::stable_sort(rows.begin(), rows.end(), [](const OutputRow &one, const OutputRow &other) {
        return one.step < other.step;
    });
    return rows;
}

bool isMadeFor(OutputLines lines, const RunFacts &facts, quint8 line)
{
    if (lines == OutputLines::Once)
        return line == 0;
    if (!facts.activeLines.contains(line))
        return false;
    const Protocols protocols = facts.lineProtocols(line);
    switch (lines) {
    case OutputLines::CANopen:
        return protocols.testFlag(Protocol::CANopen);
    case OutputLines::J1939:
        return protocols.testFlag(Protocol::J1939);
    case OutputLines::RawCAN:
        return protocols.testFlag(Protocol::RawCAN);
    default:
        return true;
    }
}

} // namespace

const QList<OutputRow> &outputList()
{
    static const QList<OutputRow> rows = mergedRows();
    return rows;
}

const OutputRow *documentOutput(const QString &extension)
{
    const QList<OutputRow> &rows = outputList();
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const OutputRow &row) {
        return row.document && extension == QLatin1String(row.document);
    });
    return found == rows.end() ? nullptr : &*found;
}

bool isOutputWanted(const OutputRow &row, const RunFacts &facts, quint8 line)
{
    return isMadeFor(row.lines, facts, line) && row.applies(facts);
}

OutputJobs makeOutput(const OutputRow &row, const RunFacts &facts, quint8 line)
{
    OutputJobs made = row.make(facts, line);
    const Protocols protocols = facts.lineProtocols(line);
    const bool isMixedLine = protocols && (protocols.toInt() & (protocols.toInt() - 1)) != 0;
    for (const OutputJob &job : made.jobs) {
        AbstractGenerator &generator = *job.generator;
        if (row.inheritsMultiLine)
            generator.setMultiLine(facts.multiLine);
        generator.setOutputFolder(facts.outputFolder);
        generator.setStore(facts.store.get());
        generator.setProjectName(facts.projectName);
        if (isMixedLine)
            generator.setFileSuffix(QLatin1String(row.suffix));
        generator.setLine(line);
    }
    return made;
}

QString outputMessageText(const char *format, const QString &folder, const QString &name)
{
    const QString text = QLatin1String(format);
    if (text.contains(QLatin1String("%2")))
        return text.arg(folder, name);
    return text.contains(QLatin1String("%1")) ? text.arg(folder) : text;
}
