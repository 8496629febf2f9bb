#include "generation/protocoloutputs.h"

#include "documents/edsgenerator.h"
#include "generators/canopen/objdictgeneratorv4.h"

#include <QFile>

namespace {

bool whenJ1939Only(const RunFacts &facts)
{
    return facts.isJ1939Only();
}

/// A J1939 device with an SDO server has an object dictionary besides.
bool whenServer(const RunFacts &facts)
{
    return facts.isJ1939Only() && facts.j1939("cia510serversupport") == 1;
}

bool whenSafetyData(const RunFacts &facts)
{
    return ProtocolOutputs::whenSignals(facts) && facts.j1939("safetysupport") > 0;
}

OutputJobs serverObjDictJob(const RunFacts &facts, quint8)
{
    auto generator = ProtocolOutputs::objDict(facts);
    generator->setServerOnly(true);
    return ProtocolOutputs::single(std::move(generator));
}

/// Files that a former setting has left would be compiled along with the new ones.
bool removeStaleFiles(const RunFacts &facts)
{
    if (facts.j1939("j1939adapter") != 1) {
        for (const char *name : {"/gen_j1939_adapter.c", "/gen_j1939_adapter.cs",
                                 "/j1939_adapter.cs", "/j1939_adapter.c"})
            QFile::remove(facts.outputFolder + QLatin1String(name));
    }
    QFile::remove(facts.outputFolder + QLatin1String("/gen_indication.h"));
    return true;
}

} // namespace

QList<OutputRow> ProtocolOutputs::ofJ1939()
{
    return {
        {.step = 60, .applies = whenJ1939, .missing = "J1939 documents (text, HTML)"},
        {.step = 100, .applies = whenJ1939Only, .missing = "gen_pgn.c"},
        {.step = 110,
         .applies = whenServer,
         .make = serverObjDictJob,
         .started = "Generation of gen_objdict.c for CAM11/CAM21 SDO server in %1 started",
         .notWritable = "The file gen_objdict.c in %1 is not writable"},
        {.step = 110,
         .applies = whenServer,
         .make = plain<EDSGenerator>,
         .inheritsMultiLine = true,
         .started = "Generation of %2 EDS file in %1 started (for CAM11/CAM21 SDO Server)",
         .notWritable = "The EDS file %2.eds in %1 is not writable",
         .namesBase = true},
        {.step = 130, .applies = whenJ1939Only, .action = removeStaleFiles},
        {.step = 150, .applies = whenSafetyData, .missing = "gen_sdg.c"},
    };
}
