#include "generators/canopen/objdicttables.h"

#include "canopen/canopentypes.h"
#include "generators/base/codewriter.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <algorithm>
#include <array>

namespace {

using Facts = DictionaryFacts;

// The order of the tables of constants; all others stand in the order of the groups.
constexpr std::array<TableGroup, numericGroupCount> constantOrder = {
    TableGroup::U8,  TableGroup::U16, TableGroup::U32, TableGroup::U24,
    TableGroup::U40, TableGroup::U48, TableGroup::U64, TableGroup::I8,
    TableGroup::I16, TableGroup::I24, TableGroup::I32, TableGroup::R32};

constexpr std::array<TableGroup, 4> stringPointerGroups = {
    TableGroup::VisString, TableGroup::Utf8String, TableGroup::OctetString, TableGroup::Domain};

/// A member of the structure of all tables.
struct Member
{
    enum Kind : quint8 {
        Constant,
        Managed,
        Pointer,
        StringConstants, ///< table and lengths
        StringPointers   ///< table, maximal and actual lengths
    };
    Kind kind;
    TableGroup group;
};

constexpr const char *extendedTypes = "CO_EXTENDED_DATA_TYPES";
constexpr const char *utf8Type = "CO_UTF8_DATA_TYPE";

/// Members that a preprocessor test encloses together; none for a null test.
struct MemberBlock
{
    const char *test;
    std::vector<Member> members;
};

const std::array<MemberBlock, 9> &memberBlocks()
{
    using enum TableGroup;
    static const std::array<MemberBlock, 9> blocks = {
        {{nullptr,
          {{Member::Constant, U8},
           {Member::Constant, U16},
           {Member::Constant, U32},
           {Member::Constant, R32}}},
         {extendedTypes,
          {{Member::Constant, U24},
           {Member::Constant, U40},
           {Member::Constant, U48},
           {Member::Constant, U64}}},
         {nullptr,
          {{Member::Managed, U8},
           {Member::Managed, U16},
           {Member::Managed, U32},
           {Member::Managed, R32}}},
         {extendedTypes,
          {{Member::Managed, U24},
           {Member::Managed, U40},
           {Member::Managed, U48},
           {Member::Managed, U64}}},
         {nullptr,
          {{Member::Constant, I8},
           {Member::Constant, I16},
           {Member::Constant, I32},
           {Member::Managed, I8},
           {Member::Managed, I16},
           {Member::Managed, I32},
           {Member::Pointer, U8},
           {Member::Pointer, U16},
           {Member::Pointer, U32}}},
         {extendedTypes,
          {{Member::Pointer, U24},
           {Member::Pointer, U40},
           {Member::Pointer, U48},
           {Member::Pointer, U64}}},
         {nullptr,
          {{Member::Pointer, I8},
           {Member::Pointer, I16},
           {Member::Pointer, I32},
           {Member::Pointer, R32},
           {Member::StringConstants, VisString},
           {Member::StringPointers, VisString}}},
         {utf8Type, {{Member::StringConstants, Utf8String}, {Member::StringPointers, Utf8String}}},
         {nullptr, {{Member::StringPointers, OctetString}, {Member::StringPointers, Domain}}}}};
    return blocks;
}

bool isFilled(const Facts &facts, Member member)
{
    const auto slot = std::size_t(member.group);
    switch (member.kind) {
    case Member::Constant:
        return !facts.constants[slot].empty();
    case Member::Managed:
        return !facts.managed[slot].empty();
    case Member::StringConstants:
        return !(member.group == TableGroup::VisString ? facts.visStrings : facts.utf8Strings)
                    .empty();
    case Member::Pointer:
    case Member::StringPointers:
        break;
    }
    return !facts.pointers[slot].empty();
}

/// The tables of one member: their names without the type's tag.
struct MemberTables
{
    const char *prefix;
    std::array<const char *, 3> suffixes; ///< up to the first null
};

MemberTables tablesOf(Member::Kind kind)
{
    switch (kind) {
    case Member::Constant:
        return {"od_const_", {""}};
    case Member::Managed:
        return {"od_", {""}};
    case Member::Pointer:
        return {"od_ptr_", {""}};
    case Member::StringConstants:
        return {"od_const_", {"", "_len"}};
    case Member::StringPointers:
        break;
    }
    return {"od_", {"", "_len", "_actLen"}};
}

} // namespace

void ObjDictTables::writeManagedVariables()
{
    m_out << "\n/* definition of managed variables */\n";
    const QString specifier =
        ProjectSettings(m_context.store).text("static_memory_specifier").simplified();
    const bool isInitialised = m_context.number("init_static_variables") == 1;
    for (std::size_t slot = 0; slot < numericGroupCount; ++slot) {
        if (!m_context.facts.managed[slot].empty())
            writeManagedTable(TableGroup(slot), specifier, isInitialised);
    }
}

void ObjDictTables::writeManagedTable(TableGroup group, const QString &specifier,
                                      bool isInitialised)
{
    const auto &values = m_context.facts.managed[std::size_t(group)];
    const TableGroupInfo &info = DictionaryTypes::info(group);
    m_out << "static " << info.cType << ' ' << m_context.dialect.storage << "\tod_" << info.tag
          << '[' << values.size() << ']';
    if (!specifier.isEmpty())
        m_out << ' ' << specifier;
    if (!isInitialised) {
        m_out << ";\n";
        return;
    }
    m_out << "= {\n";
    for (std::size_t i = 0; i < values.size(); ++i) {
        m_out << '\t' << DictionaryTypes::literal(group, values[i].value).constData()
              << (i + 1 < values.size() ? ", /* " : " /* ")
              << m_context.place(values[i].place).constData() << " */\n";
    }
    m_out << "};\n";
}

void ObjDictTables::writeConstants()
{
    m_out << "\n/* definition of constants */\n";
    for (const TableGroup group : constantOrder) {
        if (!m_context.facts.constants[std::size_t(group)].empty())
            writeConstantTable(group);
    }
    writeStringTable(TableGroup::VisString, m_context.facts.visStrings);
    writeStringTable(TableGroup::Utf8String, m_context.facts.utf8Strings);
}

void ObjDictTables::writeConstantTable(TableGroup group)
{
    const auto &values = m_context.facts.constants[std::size_t(group)];
    const TableGroupInfo &info = DictionaryTypes::info(group);
    m_out << "static " << m_context.dialect.constant << ' ' << info.cType << ' '
          << m_context.dialect.constStorage << "\tod_const_" << info.tag << '[' << values.size()
          << "] = {\n";
    for (std::size_t i = 0; i < values.size(); ++i)
        m_out << '\t' << DictionaryTypes::literal(group, values[i]).constData()
              << (i + 1 < values.size() ? ",\n" : "\n");
    m_out << "};\n";
}

void ObjDictTables::writeStringTable(TableGroup group, const std::vector<QByteArray> &strings)
{
    if (strings.empty())
        return;
    const TableGroupInfo &info = DictionaryTypes::info(group);
    const auto head = [&](const char *type, const char *suffix) {
        m_out << "static " << m_context.dialect.constant << ' ' << type << ' '
              << m_context.dialect.constStorage << "\tod_const_" << info.tag << suffix << '['
              << strings.size() << "] = {\n";
    };
    head(info.cType, "");
    for (std::size_t i = 0; i < strings.size(); ++i)
        m_out << '\t' << CodeWriter::stringLiteral(strings[i])
              << (i + 1 < strings.size() ? ",\n" : "\n");
    m_out << "};\n";
    head("UNSIGNED32", "_len");
    for (std::size_t i = 0; i < strings.size(); ++i)
        m_out << '\t' << strings[i].size() << (i + 1 < strings.size() ? "ul,\n" : "ul\n");
    m_out << "};\n";
}

void ObjDictTables::writeApplicationVariables()
{
    m_out << "\n/* definition of application variables */\n";
    for (std::size_t slot = 0; slot < numericGroupCount; ++slot) {
        if (!m_context.facts.pointers[slot].empty())
            writeNumberPointers(TableGroup(slot));
    }
    for (const TableGroup group : stringPointerGroups) {
        if (!m_context.facts.pointers[std::size_t(group)].empty())
            writeStringPointers(group);
    }
}

void ObjDictTables::writeNumberPointers(TableGroup group)
{
    const auto &rows = m_context.facts.pointers[std::size_t(group)];
    const TableGroupInfo &info = DictionaryTypes::info(group);
    m_out << "static " << info.cType << ' ' << m_context.dialect.constStorage << " * "
          << m_context.dialect.constant << " \tod_ptr_" << info.tag << '[' << rows.size()
          << "] = {\n";
    for (std::size_t i = 0; i < rows.size(); ++i)
        m_out << '\t' << ObjDictContext::variable(rows[i].varName).constData()
              << (i + 1 < rows.size() ? ",\n" : "\n");
    m_out << "};\n";
}

void ObjDictTables::writeStringPointers(TableGroup group)
{
    const auto &rows = m_context.facts.pointers[std::size_t(group)];
    const TableGroupInfo &info = DictionaryTypes::info(group);
    const bool isOctet = group == TableGroup::OctetString;
    // Variables of the application are arrays of any element type.
    const QByteArray cast = QByteArray("(") + info.cType + (isOctet ? " *)" : ")");
    m_out << "static " << info.cType << '\t' << (isOctet ? "*od_" : "od_") << info.tag << '['
          << rows.size() << "] = {\n";
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Facts::PointerRow &row = rows[i];
        const QByteArray variable = ObjDictContext::variable(row.varName);
        m_out << '\t';
        if (row.isConstant && isOctet)
            m_out << cast.constData() << CodeWriter::stringLiteral(row.content);
        else if (variable.startsWith('&'))
            m_out << cast.constData() << variable.constData();
        else
            m_out << variable.constData();
        m_out << (i + 1 < rows.size() ? ",\n" : "\n");
    }
    m_out << "};\n";
    const auto writeLengths = [&](const char *suffix, quint32 Facts::PointerRow::*length) {
        m_out << "static UNSIGNED32\tod_" << info.tag << suffix << '[' << rows.size() << "] = {\n";
        for (std::size_t i = 0; i < rows.size(); ++i)
            m_out << '\t' << rows[i].*length << (i + 1 < rows.size() ? "ul,\n" : "ul\n");
        m_out << "};\n";
    };
    writeLengths("_len", &Facts::PointerRow::maximalSize);
    writeLengths("_actLen", &Facts::PointerRow::actualSize);
}

void ObjDictTables::writeDataVariables()
{
    m_out << "\n/* Structure for all OD variables */\n"
          << m_context.dialect.constant << " CO_OD_DATA_VARIABLES_T od_data_variables = {\n";
    bool isFirst = true;
    for (const MemberBlock &block : memberBlocks()) {
        if (block.test)
            m_out << "#ifdef " << block.test << '\n';
        for (const Member &member : block.members) {
            const auto [prefix, suffixes] = tablesOf(member.kind);
            for (const char *suffix : suffixes) {
                if (!suffix)
                    break;
                m_out << (isFirst ? "   " : "    , ");
                isFirst = false;
                if (isFilled(m_context.facts, member))
                    m_out << prefix << DictionaryTypes::info(member.group).tag << suffix << '\n';
                else
                    m_out << "NULL\n";
            }
        }
        if (block.test)
            m_out << "#endif /* " << block.test << " */\n";
    }
    m_out << "};\n\n";
}

/// The strings of the application that have a start value. The terminating zero goes along where
/// the variable has room for it.
std::vector<ObjDictTables::StringDefault> ObjDictTables::stringDefaults() const
{
    std::vector<StringDefault> defaults;
    for (const TableGroup group :
         {TableGroup::VisString, TableGroup::Utf8String, TableGroup::OctetString}) {
        for (const Facts::PointerRow &row : m_context.facts.pointers[std::size_t(group)]) {
            if (row.isConstant || row.varName.isEmpty() || row.content.isEmpty())
                continue;
            QByteArray bytes = row.content;
            if (DictionaryTypes::isString(group) && row.maximalSize > quint32(bytes.size()))
                bytes += '\0';
            defaults.push_back({row.varName.toUtf8(), bytes});
        }
    }
    return defaults;
}

void ObjDictTables::writeStringDefaults()
{
    m_out << "\n/* definition of string default values for variables */\n";
    const std::vector<StringDefault> defaults = stringDefaults();
    if (defaults.empty())
        return;
    m_out << "static " << m_context.dialect.constant << " char stringDefaultValues[] = {\n";
    for (const StringDefault &string : defaults) {
        m_out << "/* " << CodeWriter::commentText(QString::fromUtf8(string.variable)) << " */ \n";
        for (const char byte : string.bytes) {
            // Where char is signed a plain number above 127 is no char.
            m_out << (quint8(byte) > 0x7F ? "(char)0x" : "0x");
            m_out.hex(quint8(byte), 2) << ", ";
        }
        m_out << '\n';
    }
    m_out << "0x00}; \n\n";
}

void ObjDictTables::writeStringOverwrite()
{
    m_out << "\n/* copies the default values of the string variables to these variables */\n"
             "RET_T userOverwriteStringDefaultvalues(void)\n{\n";
    qsizetype offset = 0;
    for (const StringDefault &string : stringDefaults()) {
        const QString name = QString::fromUtf8(string.variable);
        m_out << "    /* " << CodeWriter::commentText(name) << ": " << offset << " - "
              << string.bytes.size() << " */\n"
              << "    memcpy(" << name << ", &stringDefaultValues[" << offset << "], "
              << string.bytes.size() << ");\n";
        offset += string.bytes.size();
    }
    m_out << "    return(RET_OK);\n}\n";
}
