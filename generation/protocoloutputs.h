#pragma once

#include "generation/outputlist.h"
#include "generators/base/abstractgenerator.h"

#include <memory>

class ObjDictGenerator;

/// The outputs of each protocol, in the order of their steps. Internal to this folder; a run takes
/// `outputList`.
namespace ProtocolOutputs {

/// What no protocol has for itself.
[[nodiscard]] QList<OutputRow> ofProject();
[[nodiscard]] QList<OutputRow> ofCANopen();
[[nodiscard]] QList<OutputRow> ofJ1939();
[[nodiscard]] QList<OutputRow> ofRawCAN();

// --- What the lists share ------------------------------------------------------------------------

/// Signals have variables of their own, which no other header declares.
[[nodiscard]] bool whenSignals(const RunFacts &facts);
[[nodiscard]] bool whenJ1939(const RunFacts &facts);
[[nodiscard]] bool whenRawCAN(const RunFacts &facts);

/// gen_objdict.c of the stack generation that the project asks for.
[[nodiscard]] std::unique_ptr<ObjDictGenerator> objDict(const RunFacts &facts);

[[nodiscard]] inline OutputJobs single(std::unique_ptr<AbstractGenerator> generator)
{
    OutputJobs result;
    result.jobs.push_back({std::move(generator)});
    return result;
}

/// A generator without a choice.
template <class Generator>
OutputJobs plain(const RunFacts &, quint8)
{
    return single(std::make_unique<Generator>());
}

/// One generator of the stack generation that the project asks for.
template <class Newer, class Older>
OutputJobs either(const RunFacts &facts, quint8)
{
    if (facts.isV4())
        return single(std::make_unique<Newer>());
    return single(std::make_unique<Older>());
}

} // namespace ProtocolOutputs
