#include "generation/protocoloutputs.h"

#include "generators/canopen/propswriter.h"
#include "generators/define/gendefinegenerator.h"
#include "generators/headers/extdeclgeneratorv4.h"
#include "generators/headers/indicesgenerator.h"

namespace {

bool always(const RunFacts &)
{
    return true;
}

bool whenAnyProtocol(const RunFacts &facts)
{
    return facts.protocols && !facts.bootLoaderOnly;
}

bool whenProps(const RunFacts &facts)
{
    return facts.general("gen_csharp_props") == 1;
}

/// The older generation has no boot loader.
bool whenBootLoader(const RunFacts &facts)
{
    return facts.isMultiProtocol() && facts.bootLoaderOnly && facts.isV4();
}

/// One file starts the stacks of several protocols; raw CAN alone has its own.
bool whenMixed(const RunFacts &facts)
{
    return facts.isMultiProtocol() && facts.protocols != Protocol::RawCAN && !whenBootLoader(facts);
}

bool whenRawCANOnly(const RunFacts &facts)
{
    return facts.protocols == Protocol::RawCAN && !whenBootLoader(facts);
}

bool whenDbc(const RunFacts &facts)
{
    return ProtocolOutputs::whenJ1939(facts) || ProtocolOutputs::whenRawCAN(facts);
}

OutputJobs indicesJob(const RunFacts &facts, quint8)
{
    auto generator = std::make_unique<IndicesGenerator>();
    generator->setLines(facts.activeLines);
    return ProtocolOutputs::single(std::move(generator));
}

OutputJobs defineJob(const RunFacts &facts, quint8)
{
    std::unique_ptr<CoDefineGenerator> generator;
    if (facts.isV4())
        generator = std::make_unique<GenDefineGenerator>();
    else
        generator = std::make_unique<CoDefineGenerator>();
    generator->setFromNetworkTool(facts.fromNetworkTool);
    const bool hasJ1939 = facts.protocols.testFlag(Protocol::J1939);
    const bool hasRawCAN = facts.protocols.testFlag(Protocol::RawCAN);
    const bool hasOthers = facts.protocols.testFlag(Protocol::CANopen) || hasRawCAN;
    generator->setProtocols(hasJ1939, hasJ1939 ? hasOthers : hasRawCAN);
    return ProtocolOutputs::single(std::move(generator));
}

bool writeProps(const RunFacts &facts)
{
    return PropsWriter::write(facts.outputFolder + QLatin1String("/gen_define.h"),
                              facts.outputFolder);
}

} // namespace

bool ProtocolOutputs::whenSignals(const RunFacts &facts)
{
    return (whenJ1939(facts) || whenRawCAN(facts)) && !facts.bootLoaderOnly;
}

bool ProtocolOutputs::whenJ1939(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::J1939);
}

bool ProtocolOutputs::whenRawCAN(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::RawCAN);
}

QList<OutputRow> ProtocolOutputs::ofProject()
{
    return {
        {.step = 10,
         .applies = whenAnyProtocol,
         .make = indicesJob,
         .started = "Generation of gen_indices.h in %1 started",
         .notWritable = "The file in gen_indices.h in %1 is not writable"},
        {.step = 50, .applies = whenMixed, .missing = "gen_mp.c"},
        {.step = 50, .applies = whenRawCANOnly, .missing = "gen_rawcan.c"},
        {.step = 50, .applies = whenBootLoader, .missing = "gen_uds.c"},
        {.step = 62, .applies = whenDbc, .missing = "DBC file"},
        {.step = 80,
         .applies = always,
         .make = defineJob,
         .started = "Generation of gen_define.h in %1 started",
         .notWritable = "The file gen_define.h in %1 is not writable"},
        {.step = 90,
         .applies = whenProps,
         .started = "Generation of gen_define.props and Directory.Build.props in %1 finished",
         .notWritable =
             "The files gen_define.props and Directory.Build.props in %1 are not writable",
         .action = writeProps},
        {.step = 140,
         .applies = whenSignals,
         .make = either<ExtDeclGeneratorV4, ExtDeclGenerator>,
         .started = "Generation of gen_extern_decl.h in %1 started",
         .notWritable = "The file gen_extern_decl.h in %1 is not writable"},
    };
}
