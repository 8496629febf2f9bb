#include "generation/protocoloutputs.h"

#include "canopen/safefile.h"
#include "documents/csvgenerator.h"
#include "documents/edsgenerator.h"
#include "documents/htmlgenerator.h"
#include "documents/icsvgenerator.h"
#include "documents/textdocgenerator.h"
#include "documents/xddgenerator.h"
#include "generators/base/outputfile.h"
#include "generators/canopen/objdictgeneratorv4.h"
#include "generators/canopen/vobjdictgeneratorv4.h"
#include "generators/headers/indicationgeneratorv4.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

// --- Conditions ----------------------------------------------------------------------------------

bool whenCANopen(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::CANopen);
}

/// With other protocols the dictionary is part of the initialisation of them all.
bool whenCANopenOnly(const RunFacts &facts)
{
    return facts.protocols == Protocol::CANopen;
}

/// UDS callbacks that are bound at compile time need the outputs of CANopen lines as well.
bool whenCANopenOrUds(const RunFacts &facts)
{
    return whenCANopen(facts) || facts.general("uds_static_indication") == 1;
}

bool whenSrdo(const RunFacts &facts)
{
    constexpr int firstSrdo = 0x1301;
    constexpr int lastSrdo = 0x137F;
    return facts.generateSrdo &&
           std::any_of(facts.activeLines.begin(), facts.activeLines.end(), [&](quint8 line) {
               return !facts.store->getIndices(line, firstSrdo, lastSrdo).isEmpty();
           });
}

bool whenXdd(const RunFacts &facts)
{
    return whenCANopenOrUds(facts) && facts.general("canfd_supported") >= 1;
}

bool whenCppOutput(const RunFacts &facts)
{
    return whenCANopenOrUds(facts) && facts.general("generate_cpp_output") == 1;
}

// --- Generators ----------------------------------------------------------------------------------

OutputJobs objDictJob(const RunFacts &facts, quint8)
{
    return ProtocolOutputs::single(ProtocolOutputs::objDict(facts));
}

OutputJobs vobjDictJob(const RunFacts &facts, quint8)
{
    std::unique_ptr<VobjDictGenerator> generator;
    if (facts.isV4())
        generator = std::make_unique<VobjDictGeneratorV4>();
    else
        generator = std::make_unique<VobjDictGenerator>();
    generator->setVirtualObjects(facts.virtualObjects);
    return ProtocolOutputs::single(std::move(generator));
}

/// Only the newer generation knows UDS callbacks.
OutputJobs indicationJob(const RunFacts &facts, quint8)
{
    if (facts.isV4() || facts.general("uds_static_indication") == 1)
        return ProtocolOutputs::single(std::make_unique<indicationgeneratorv4>());
    return ProtocolOutputs::single(std::make_unique<indicationgenerator>());
}

OutputJobs icsvJob(const RunFacts &facts, quint8)
{
    auto generator = std::make_unique<ICSVGenerator>();
    const SettingKey withoutDescription = SettingKey::misc(QStringLiteral("disableDocu"));
    generator->setWithDescription(!ProjectSettings(*facts.store).isTrue(withoutDescription));
    return ProtocolOutputs::single(std::move(generator));
}

OutputJobs edsJobs(const RunFacts &facts, quint8 line)
{
    const bool withFd = facts.general("canfd_supported") >= 1;
    const QStringList variants = EDSGenerator::variants(*facts.store, line);
    OutputJobs result;
    for (const QString &variant : variants) {
        result.jobs.push_back({std::make_unique<EDSGenerator>(variant, withFd, false)});
        if (withFd)
            result.jobs.push_back({std::make_unique<EDSGenerator>(variant, false, true),
                                   "Generation of %2 classical EDS file in %1 started"});
    }
    if (variants.size() > 1)
        result.closing = "Warning: multiple different EDS files to be generated.\n";
    return result;
}

bool copyForCpp(const RunFacts &facts)
{
    const QFileInfo folder(facts.outputFolder);
    if (facts.outputFolder.isEmpty() || !folder.isDir() || !folder.isWritable())
        return true;
    const auto path = [&](const char *name) {
        return facts.outputFolder + QLatin1Char('/') + QLatin1String(name);
    };
    QFile::remove(path("gen_objdict.cpp"));
    QFile::copy(path("gen_objdict.c"), path("gen_objdict.cpp"));

    constexpr qint64 mostBytes = qint64(256) * 1024 * 1024;
    QString fault;
    const auto userHeader = SafeFile::read(path("gen_user.h"), mostBytes, fault);
    if (!userHeader)
        return true;
    QFile::remove(path("gen_user.hpp"));
    QString text = QString::fromUtf8(*userHeader);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1String("RET_T"), QLatin1String("extern \"C\" RET_T"));
    OutputFile::write(path("gen_user.hpp"), text);
    return true;
}

} // namespace

std::unique_ptr<ObjDictGenerator> ProtocolOutputs::objDict(const RunFacts &facts)
{
    const bool isCompact = facts.general("compact_array_description") == 1;
    if (facts.isV4())
        return std::make_unique<ObjDictGeneratorV4>(isCompact);
    return std::make_unique<ObjDictGenerator>(isCompact);
}

QList<OutputRow> ProtocolOutputs::ofCANopen()
{
    return {
        {.step = 20,
         .applies = whenCANopen,
         .lines = OutputLines::CANopen,
         .make = plain<TextDocGenerator>,
         .suffix = "_co",
         .inheritsMultiLine = true,
         .started = "Generation of textual object dictionary documentation in %1 started",
         .notWritable = "The file %2 in %1 is not writable",
         .document = "txt"},
        {.step = 30,
         .applies = whenCANopen,
         .lines = OutputLines::CANopen,
         .make = plain<HTMLGenerator>,
         .suffix = "_co",
         .inheritsMultiLine = true,
         .started = "Generation of HTML object dictionary documentation in %1 started",
         .notWritable = "The file %2 in %1 is not writable",
         .document = "html"},
        {.step = 40,
         .applies = whenCANopenOnly,
         .make = objDictJob,
         .started = "Generation of gen_objdict.c in %1 started",
         .notWritable = "The file gen_objdict.c in %1 is not writable"},
        {.step = 40,
         .applies = whenCANopenOnly,
         .make = vobjDictJob,
         .started = "Generation of gen_vobjdict.c in %1 started",
         .notWritable = "The file gen_vobjdict.c in %1 is not writable"},
        {.step = 70, .applies = whenSrdo, .missing = "gen_srdo.c"},
        {.step = 160,
         .applies = whenCANopenOrUds,
         .make = indicationJob,
         .started = "Generation of gen_indication in %1 started",
         .notWritable = "The file gen_indication.h in %1 is not writable"},
        {.step = 170,
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = plain<CSVGenerator>,
         .inheritsMultiLine = true,
         .started = "Generation of CSV file (deprecated) in %1 started",
         .notWritable = "The file %2.csv in %1 is not writable",
         .namesBase = true,
         .document = "csv"},
        {.step = 180,
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = icsvJob,
         .inheritsMultiLine = true,
         .started = "Generation of ICSV file in %1 started",
         .notWritable = "The file %2.icsv in %1 is not writable",
         .namesBase = true,
         .document = "icsv"},
        {.step = 190,
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = edsJobs,
         .inheritsMultiLine = true,
         .started = "Generation of %2 EDS file in %1 started",
         .notWritable = "The EDS file %2.eds in %1 is not writable",
         .namesBase = true,
         .document = "eds"},
        {.step = 200,
         .applies = whenXdd,
         .lines = OutputLines::CANopen,
         .make = plain<XDDGenerator>,
         .inheritsMultiLine = true,
         .started = "Generation of XDD file in %1 started",
         .notWritable = "The XDD file %2.xdd in %1 is not writable",
         .namesBase = true,
         .document = "xdd"},
        {.step = 210, .applies = whenCppOutput, .action = copyForCpp},
    };
}
