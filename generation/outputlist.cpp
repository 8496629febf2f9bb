#include "generation/outputlist.h"

#include "canopen/safefile.h"
#include "documents/csvgenerator.h"
#include "documents/edsgenerator.h"
#include "documents/htmlgenerator.h"
#include "documents/icsvgenerator.h"
#include "documents/textdocgenerator.h"
#include "documents/xddgenerator.h"
#include "generators/base/outputfile.h"
#include "generators/canopen/objdictgeneratorv4.h"
#include "generators/canopen/propswriter.h"
#include "generators/canopen/vobjdictgeneratorv4.h"
#include "generators/define/gendefinegenerator.h"
#include "generators/headers/extdeclgeneratorv4.h"
#include "generators/headers/indicationgeneratorv4.h"
#include "generators/headers/indicesgenerator.h"
#include "store/objectdatabase.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

// --- Conditions -----------------------------------------------------------------------------

bool always(const RunFacts &)
{
    return true;
}

bool whenAnyProtocol(const RunFacts &facts)
{
    return facts.protocols && !facts.bootLoaderOnly;
}

/// A pure CANopen project declares its variables by its own headers.
bool whenSignals(const RunFacts &facts)
{
    return facts.protocols.testAnyFlags(Protocol::J1939 | Protocol::RawCAN) &&
           !facts.bootLoaderOnly;
}

bool whenJ1939OrRawCan(const RunFacts &facts)
{
    return facts.protocols.testAnyFlags(Protocol::J1939 | Protocol::RawCAN);
}

bool whenJ1939(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::J1939);
}

bool whenRawCan(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::RawCAN);
}

/// The older generation has no boot loader.
bool whenBootLoader(const RunFacts &facts)
{
    return facts.isMultiProtocol() && facts.bootLoaderOnly && facts.isV4();
}

bool whenRawCanOnly(const RunFacts &facts)
{
    return facts.protocols == Protocol::RawCAN && !whenBootLoader(facts);
}

bool whenCANopen(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::CANopen);
}

/// With other protocols the dictionary is part of the initialisation of them all.
bool whenCANopenOnly(const RunFacts &facts)
{
    return facts.protocols == Protocol::CANopen;
}

bool whenProps(const RunFacts &facts)
{
    return facts.general("gen_csharp_props") == 1;
}

/// A J1939 device with an SDO server has an object dictionary besides.
bool whenJ1939Server(const RunFacts &facts)
{
    return facts.isJ1939Only() && facts.j1939("cia510serversupport") == 1;
}

/// One file starts the stacks of several protocols; raw CAN and a boot loader have theirs.
bool whenMixed(const RunFacts &facts)
{
    return facts.isMultiProtocol() && !whenRawCanOnly(facts) && !whenBootLoader(facts);
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

bool whenSafetyData(const RunFacts &facts)
{
    return whenSignals(facts) && facts.j1939("safetysupport") > 0;
}

bool whenJ1939Only(const RunFacts &facts)
{
    return facts.isJ1939Only();
}

/// Outputs of CANopen lines; UDS callbacks that are bound at compile time need them as well.
bool whenCANopenOrUds(const RunFacts &facts)
{
    return facts.protocols.testFlag(Protocol::CANopen) ||
           facts.general("uds_static_indication") == 1;
}

bool whenXdd(const RunFacts &facts)
{
    return whenCANopenOrUds(facts) && facts.general("canfd_supported") >= 1;
}

bool whenCppOutput(const RunFacts &facts)
{
    return whenCANopenOrUds(facts) && facts.general("generate_cpp_output") == 1;
}

// --- Generators -----------------------------------------------------------------------------

OutputJobs single(std::unique_ptr<AbstractGenerator> generator)
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

OutputJobs indicesJob(const RunFacts &facts, quint8)
{
    auto generator = std::make_unique<IndicesGenerator>();
    generator->setLines(facts.activeLines);
    return single(std::move(generator));
}

std::unique_ptr<ObjDictGenerator> objDict(const RunFacts &facts)
{
    const bool isCompact = facts.general("compact_array_description") == 1;
    if (facts.isV4())
        return std::make_unique<ObjDictGeneratorV4>(isCompact);
    return std::make_unique<ObjDictGenerator>(isCompact);
}

OutputJobs objDictJob(const RunFacts &facts, quint8)
{
    return single(objDict(facts));
}

OutputJobs serverObjDictJob(const RunFacts &facts, quint8)
{
    auto generator = objDict(facts);
    generator->setServerOnly(true);
    return single(std::move(generator));
}

OutputJobs serverEdsJob(const RunFacts &, quint8)
{
    return single(std::make_unique<EDSGenerator>());
}

/// Only the newer generation knows UDS callbacks.
OutputJobs indicationJob(const RunFacts &facts, quint8)
{
    if (facts.isV4() || facts.general("uds_static_indication") == 1)
        return single(std::make_unique<indicationgeneratorv4>());
    return single(std::make_unique<indicationgenerator>());
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

// --- Attributes and questions ---------------------------------------------------------------

void setDefineAttributes(const RunFacts &facts, AbstractGenerator &generator)
{
    static_cast<CoDefineGenerator &>(generator).setFromNetworkTool(facts.fromNetworkTool);
    const bool hasJ1939 = facts.protocols.testFlag(Protocol::J1939);
    const bool hasRawCan = facts.protocols.testFlag(Protocol::RawCAN);
    const bool hasOthers = facts.protocols.testFlag(Protocol::CANopen) || hasRawCan;
    generator.setProtocols(hasJ1939, hasJ1939 ? hasOthers : hasRawCan);
}

void setVirtualObjects(const RunFacts &facts, AbstractGenerator &generator)
{
    static_cast<VobjDictGenerator &>(generator).setVirtualObjects(facts.virtualObjects);
}

void setDescriptionColumn(const RunFacts &facts, AbstractGenerator &generator)
{
    const bool isOff =
        facts.store->getMiscSetting(QStringLiteral("disableDocu")) == QLatin1String("true");
    static_cast<ICSVGenerator &>(generator).setWithDescription(!isOff);
}

bool hasVirtualObjects(AbstractGenerator &generator)
{
    return static_cast<VobjDictGenerator &>(generator).hasContent();
}

QString userSectionRemark(AbstractGenerator &generator)
{
    const QString section = static_cast<CoDefineGenerator &>(generator).userSection().trimmed();
    return section.isEmpty() ? QString()
                             : QLatin1String("gen_define.h contains user section:\n") + section;
}

// --- Actions --------------------------------------------------------------------------------

bool writeProps(const RunFacts &facts)
{
    return PropsWriter::write(facts.outputFolder + QLatin1String("/gen_define.h"),
                              facts.outputFolder);
}

/// Files that a former setting has left would be compiled along with the new ones.
bool removeStaleJ1939Files(const RunFacts &facts)
{
    if (facts.j1939("j1939adapter") != 1) {
        for (const char *name : {"/gen_j1939_adapter.c", "/gen_j1939_adapter.cs",
                                 "/j1939_adapter.cs", "/j1939_adapter.c"})
            QFile::remove(facts.outputFolder + QLatin1String(name));
    }
    QFile::remove(facts.outputFolder + QLatin1String("/gen_indication.h"));
    return true;
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

const QList<OutputRow> &outputList()
{
    static const QList<OutputRow> rows = {
        {.step = "1",
         .applies = whenAnyProtocol,
         .make = indicesJob,
         .started = "Generation of gen_indices.h in %1 started",
         .notWritable = "The file in gen_indices.h in %1 is not writable"},
        {.step = "2",
         .applies = whenCANopen,
         .lines = OutputLines::CANopen,
         .make = plain<TextDocGenerator>,
         .suffix = "_co",
         .inheritsMultiLine = true,
         .started = "Generation of textual object dictionary documentation in %1 started",
         .notWritable = "The file %2 in %1 is not writable"},
        {.step = "3",
         .applies = whenCANopen,
         .lines = OutputLines::CANopen,
         .make = plain<HTMLGenerator>,
         .suffix = "_co",
         .inheritsMultiLine = true,
         .started = "Generation of HTML object dictionary documentation in %1 started",
         .notWritable = "The file %2 in %1 is not writable"},
        {.step = "4",
         .applies = whenCANopenOnly,
         .make = objDictJob,
         .started = "Generation of gen_objdict.c in %1 started",
         .notWritable = "The file gen_objdict.c in %1 is not writable"},
        {.step = "4",
         .applies = whenCANopenOnly,
         .make = either<VobjDictGeneratorV4, VobjDictGenerator>,
         .attributes = setVirtualObjects,
         .started = "Generation of gen_vobjdict.c in %1 started",
         .notWritable = "The file gen_vobjdict.c in %1 is not writable",
         .staleFile = "gen_vobjdict.c",
         .hasContent = hasVirtualObjects},
        {.step = "5", .applies = whenMixed, .missing = "gen_mp.c"},
        {.step = "5", .applies = whenRawCanOnly, .missing = "gen_rawcan.c"},
        {.step = "5", .applies = whenBootLoader, .missing = "gen_uds.c"},
        {.step = "6", .applies = whenRawCan, .missing = "raw CAN documents (text, HTML)"},
        {.step = "6", .applies = whenJ1939, .missing = "J1939 documents (text, HTML)"},
        {.step = "6", .applies = whenJ1939OrRawCan, .missing = "DBC file"},
        {.step = "7", .applies = whenSrdo, .missing = "gen_srdo.c"},
        {.step = "8",
         .applies = always,
         .make = either<GenDefineGenerator, CoDefineGenerator>,
         .attributes = setDefineAttributes,
         .started = "Generation of gen_define.h in %1 started",
         .notWritable = "The file gen_define.h in %1 is not writable",
         .remark = userSectionRemark},
        {.step = "9",
         .applies = whenProps,
         .started = "Generation of gen_define.props and Directory.Build.props in %1 finished",
         .notWritable =
             "The files gen_define.props and Directory.Build.props in %1 are not writable",
         .action = writeProps},
        {.step = "10", .applies = whenJ1939Only, .missing = "gen_pgn.c"},
        {.step = "11",
         .applies = whenJ1939Server,
         .make = serverObjDictJob,
         .started = "Generation of gen_objdict.c for CAM11/CAM21 SDO server in %1 started",
         .notWritable = "The file gen_objdict.c in %1 is not writable"},
        {.step = "11",
         .applies = whenJ1939Server,
         .make = serverEdsJob,
         .inheritsMultiLine = true,
         .started = "Generation of %2 EDS file in %1 started (for CAM11/CAM21 SDO Server)",
         .notWritable = "The EDS file %2.eds in %1 is not writable",
         .namesBase = true},
        {.step = "13", .applies = whenJ1939Only, .action = removeStaleJ1939Files},
        {.step = "14",
         .applies = whenSignals,
         .make = either<ExtDeclGeneratorV4, ExtDeclGenerator>,
         .started = "Generation of gen_extern_decl.h in %1 started",
         .notWritable = "The file gen_extern_decl.h in %1 is not writable"},
        {.step = "15", .applies = whenSafetyData, .missing = "gen_sdg.c"},
        {.step = "16",
         .applies = whenCANopenOrUds,
         .make = indicationJob,
         .started = "Generation of gen_indication in %1 started",
         .notWritable = "The file gen_indication.h in %1 is not writable"},
        {.step = "17",
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = plain<CSVGenerator>,
         .inheritsMultiLine = true,
         .started = "Generation of CSV file (deprecated) in %1 started",
         .notWritable = "The file %2.csv in %1 is not writable",
         .namesBase = true},
        {.step = "18",
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = plain<ICSVGenerator>,
         .inheritsMultiLine = true,
         .attributes = setDescriptionColumn,
         .started = "Generation of ICSV file in %1 started",
         .notWritable = "The file %2.icsv in %1 is not writable",
         .namesBase = true},
        {.step = "19",
         .applies = whenCANopenOrUds,
         .lines = OutputLines::CANopen,
         .make = edsJobs,
         .inheritsMultiLine = true,
         .started = "Generation of %2 EDS file in %1 started",
         .notWritable = "The EDS file %2.eds in %1 is not writable",
         .namesBase = true},
        {.step = "20",
         .applies = whenXdd,
         .lines = OutputLines::CANopen,
         .make = plain<XDDGenerator>,
         .inheritsMultiLine = true,
         .started = "Generation of XDD file in %1 started",
         .notWritable = "The XDD file %2.xdd in %1 is not writable",
         .namesBase = true},
        {.step = "21", .applies = whenCppOutput, .action = copyForCpp},
    };
    return rows;
}

QString outputMessageText(const char *format, const QString &folder, const QString &name)
{
    const QString text = QLatin1String(format);
    if (text.contains(QLatin1String("%2")))
        return text.arg(folder, name);
    return text.contains(QLatin1String("%1")) ? text.arg(folder) : text;
}
