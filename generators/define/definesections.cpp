#include "generators/define/definesections.h"

#include "canopen/indextext.h"
#include "generators/base/commongeneratorhelper.h"
#include "store/objectdatabase.h"

#include <algorithm>
#include <array>

namespace {

using Facts = DictionaryFacts;

struct Version
{
    const char *name;
    CommonGeneratorHelper::InitStructure structure;
    bool (*applies)(const DefineFacts &facts);
};

constexpr std::array<Version, 5> versions = {
    {{"GEN_COMMON_INIT_STRUCT_VERSION", CommonGeneratorHelper::InitStructure::Common,
      [](const DefineFacts &) { return true; }},
     {"GEN_UDS_INIT_STRUCT_VERSION", CommonGeneratorHelper::InitStructure::UDS,
      [](const DefineFacts &facts) { return facts.hasUds; }},
     {"GEN_CANOPEN_INIT_STRUCT_VERSION", CommonGeneratorHelper::InitStructure::CANopen,
      [](const DefineFacts &facts) { return facts.hasCANopen; }},
     {"GEN_J1939_INIT_STRUCT_VERSION", CommonGeneratorHelper::InitStructure::J1939,
      [](const DefineFacts &facts) { return facts.any(&DefineFacts::Line::hasJ1939); }},
     {"GEN_RAWCAN_INIT_STRUCT_VERSION", CommonGeneratorHelper::InitStructure::RawCAN,
      [](const DefineFacts &facts) { return facts.any(&DefineFacts::Line::hasRawCAN); }}}};

struct VirtualCount
{
    const char *name;
    TableGroup group;
    bool onlyV3;
};

constexpr std::array<VirtualCount, 11> virtualCounts = {
    {{"CO_VIRTUAL_U8_CNT", TableGroup::U8, false},
     {"CO_VIRTUAL_U16_CNT", TableGroup::U16, false},
     {"CO_VIRTUAL_U32_CNT", TableGroup::U32, false},
     {"CO_VIRTUAL_I8_CNT", TableGroup::I8, false},
     {"CO_VIRTUAL_I16_CNT", TableGroup::I16, false},
     {"CO_VIRTUAL_I32_CNT", TableGroup::I32, false},
     {"CO_VIRTUAL_R32_CNT", TableGroup::R32, false},
     {"CO_VIRTUAL_U24_CNT", TableGroup::U24, false},
     {"CO_VIRTUAL_DOMAIN_CNT", TableGroup::Domain, true},
     {"CO_VIRTUAL_OS_CNT", TableGroup::OctetString, true},
     {"CO_VIRTUAL_VS_CNT", TableGroup::VisString, true}}};

} // namespace

bool DefineSections::isOnAnyLine(const char *key) const
{
    return std::any_of(m_facts.lines.begin(), m_facts.lines.end(), [&](const Line &line) {
        return m_settings.lineCount(QLatin1String(key), line.line) > 0;
    });
}

QString DefineSections::block(const QString &text)
{
    QString result = text;
    result.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    result.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    const bool endsInSplice = result.trimmed().endsWith(QLatin1Char('\\'));
    if (!result.endsWith(QLatin1Char('\n')))
        result += QLatin1Char('\n');
    // An empty line of its own, or the splice would take the line behind the block.
    if (endsInSplice)
        result += QLatin1Char('\n');
    return result;
}

void DefineSections::writeVersions()
{
    const CommonGeneratorHelper helper(&m_settings.store());
    m_out.out() << "/* init struct versions */\n";
    for (const Version &version : versions) {
        if (version.applies(m_facts))
            m_out.out() << "#define " << version.name << " \t"
                        << helper.initStructureVersion(version.structure) << "u\n";
    }
    m_out.out() << '\n';
}

void DefineSections::writeUserDefines()
{
    const QString text = m_settings.text(QStringLiteral("user_defines"));
    if (text.size() > 1)
        m_out.out() << "/* application-specific defines as defined in Quillforge */\n"
                    << block(text) << "/* end of application-specific defines */\n";
}

/// Virtual objects without any data still have their tables, which need their sizes.
void DefineSections::writeVirtualObjects()
{
    const Facts &dictionary = m_facts.dictionary;
    const bool isForced = isOn("special_virtual_objects");
    if (!dictionary.virtualDescription.empty() || isForced) {
        m_out.out() << "/* number of virtual objects */\n";
        for (const VirtualCount &row : virtualCounts) {
            if (!row.onlyV3 || !isV4())
                m_out.count(QLatin1String(row.name),
                            quint64(dictionary.virtualCounts[std::size_t(row.group)]));
        }
        const quint64 objects = dictionary.virtualAssignment.size();
        m_out.count(QStringLiteral("CO_VIRTUAL_INDEX_CNT"), objects);
        if (!isV4())
            m_out.count(QStringLiteral("CO_VIRTUAL_OBJECT_CNT"),
                        dictionary.virtualDescription.size());
        m_out.number(QStringLiteral("CO_VOD_ASSIGN_CNT"), objects);
        m_out.number(QStringLiteral("CO_VOBJ_DESC_CNT"), dictionary.virtualDescription.size());
    }

    quint64 stored = 0;
    for (const Line &line : m_facts.lines) {
        for (const Facts::Place &place : line.counts.nvStorage)
            qDebug().noquote() << QLatin1String("Index found: index ") +
                                      IndexText::hex(place.index);
        stored += quint64(line.counts.nvStorage.size());
    }
    m_out.count(QStringLiteral("CO_STORE_NVS_CNT"), stored);
}
