#include "generators/canopen/objdictrows.h"

#include "canopen/canopentypes.h"
#include "generators/base/codewriter.h"

#include <array>
#include <charconv>

namespace {

using Facts = DictionaryFacts;

struct AttributeWord
{
    quint16 attribute;
    const char *word;
};

constexpr std::array<AttributeWord, 9> attributeWords = {{{Facts::Numeric, "CO_ATTR_NUM"},
                                                          {Facts::Readable, "CO_ATTR_READ"},
                                                          {Facts::Writable, "CO_ATTR_WRITE"},
                                                          {Facts::MapTransmit, "CO_ATTR_MAP_TR"},
                                                          {Facts::MapReceive, "CO_ATTR_MAP_REC"},
                                                          {Facts::HasDefault, "CO_ATTR_DEFVAL"},
                                                          {Facts::HasLimits, "CO_ATTR_LIMIT"},
                                                          {Facts::Stored, "CO_ATTR_STORE"},
                                                          {Facts::Compact, "CO_ATTR_COMPACT"}}};

constexpr ObjDictRows::TableKind descriptions{"description of the objects", "CO_OBJECT_DESC_T"};
constexpr ObjDictRows::TableKind assignments{"object dictionary assignment", "CO_OD_ASSIGN_T"};

// What the owner of a virtual object answers for itself.
constexpr quint16 valueAttributes = Facts::HasDefault | Facts::HasLimits | Facts::Stored;

const char *objectKind(quint32 objectType)
{
    switch (objectType) {
    case CANopen::DOMAIN_OBJECT:
        return "CO_ODTYPE_DOM";
    case CANopen::VAR:
        return "CO_ODTYPE_VAR";
    case CANopen::ARRAY:
        return "CO_ODTYPE_ARRAY";
    case CANopen::RECORD:
        return "CO_ODTYPE_STRUCT";
    default:
        return "invalid";
    }
}

// The stack refers to the virtual tables also where the project has no such object, and C has no
// table without a row.
constexpr const char *emptyRow = "\t{ 0u } /* no objects */\n";

quint32 column(quint32 position)
{
    return position == Facts::noPosition ? 0 : position;
}

} // namespace

const QByteArray &ObjDictRows::attributeText(quint16 attributes, bool isVirtual)
{
    QByteArray &text = m_attributeTexts[quint32(attributes) << 1 | quint32(isVirtual)];
    if (!text.isEmpty())
        return text;
    const auto append = [&text](const char *word) {
        if (!text.isEmpty())
            text += " | ";
        text += word;
    };
    for (const AttributeWord &entry : attributeWords) {
        const bool isReplaced = isVirtual && (entry.attribute & valueAttributes);
        if (isVirtual && entry.attribute == Facts::HasDefault)
            append("CO_ATTR_DYNOD");
        if ((attributes & entry.attribute) && !isReplaced)
            append(entry.word);
    }
    return text;
}

void ObjDictRows::appendValueColumns(const Facts::Entry &entry)
{
    if (m_context.dialect.isV4) {
        m_row += "CO_DSPEC";
        m_row += entry.specifier;
        m_row += ", (UNSIGNED16)";
        appendNumber(entry.valueIndex);
        m_row += "u, ";
    } else {
        m_row += m_context.address(entry) + ", ";
    }
}

/// The older generation writes the specifier as part of its type word.
void ObjDictRows::appendVirtualValueColumns(const Facts::Entry &entry)
{
    m_row += m_context.dialect.isV4 ? ", CO_DSPEC_PTR, (UNSIGNED16)" : "_PTR, (UNSIGNED16)";
    // Only numbers are kept in tables; strings and domains are told by their index.
    if (DictionaryTypes::isNumeric(entry.group))
        appendNumber(entry.position);
    else
        m_row += "0x" + QByteArray::number(entry.place.index, 16);
    m_row += "u, ";
}

/// Without an allocation: there are as many rows as a dictionary has subindices.
void ObjDictRows::appendNumber(quint32 number)
{
    std::array<char, 12> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    m_row.append(digits.data(), end - digits.data());
}

void ObjDictRows::appendPlace(const Facts::Place &place)
{
    static constexpr char digits[] = "0123456789abcdef";
    if (m_context.facts.lineForm) {
        appendNumber(place.line);
        m_row += '-';
    }
    m_row += "0x";
    for (int shift = 12; shift >= 0; shift -= 4)
        m_row += digits[(place.index >> shift) & 0xF];
    m_row += ':';
    appendNumber(place.sub);
}

void ObjDictRows::writeRow(const Facts::Entry &entry, bool isVirtual)
{
    m_row.resize(0);
    m_row += "\t{ (UNSIGNED8)";
    appendNumber(entry.place.sub);
    m_row += "u, ";
    m_row += m_context.dialect.dataTypePrefix;
    m_row += DictionaryTypes::of(entry.dataType).tag;
    if (isVirtual) {
        appendVirtualValueColumns(entry);
    } else {
        m_row += ", ";
        appendValueColumns(entry);
    }
    m_row += attributeText(entry.attributes, isVirtual);
    m_row += ", (UNSIGNED16)";
    appendNumber(column(entry.defaultPosition));
    if (m_context.options.limitCheck) {
        m_row += "u, (UNSIGNED16)";
        appendNumber(column(entry.lowPosition));
        m_row += "u, (UNSIGNED16)";
        appendNumber(column(entry.highPosition));
    }
    m_row += "u},/* ";
    appendPlace(entry.place);
    m_row += "*/ \n";
    m_out << m_row.constData();
}

void ObjDictRows::writeHead(const TableKind &kind, const char *name, const char *size)
{
    m_out << "\n/* " << kind.title << " */\n"
          << m_context.dialect.constant << ' ' << kind.type << ' ' << m_context.dialect.constStorage
          << ' ' << name << '[' << size << "] = {\n";
}

void ObjDictRows::writeDescription()
{
    writeHead(descriptions, "od_description", "CO_OBJ_DESC_CNT");
    for (const quint32 position : m_context.facts.description)
        writeRow(m_context.facts.entries[position], false);
    m_out << "};\n";
}

void ObjDictRows::writeVirtualDescription()
{
    writeHead(descriptions, "vod_description",
              m_context.facts.virtualDescription.empty() ? "1" : "CO_VOBJ_DESC_CNT");
    if (m_context.facts.virtualDescription.empty())
        m_out << emptyRow;
    for (const quint32 position : m_context.facts.virtualDescription)
        writeRow(m_context.facts.entries[position], true);
    m_out << "};\n";
}

void ObjDictRows::writeAssignRow(const Facts::Object &object, quint32 rows, quint32 firstRow)
{
    m_out << "\t{ 0x";
    m_out.hex(object.index, 4) << "u, " << rows << "u, " << object.highestSub << "u, "
                               << objectKind(object.objectType) << ", " << firstRow << "u },\n";
}

void ObjDictRows::writeAssignment()
{
    writeHead(assignments, "od_assign", "CO_OD_ASSIGN_CNT");
    for (const quint32 position : m_context.facts.assignment) {
        const Facts::Object &object = m_context.facts.objects[position];
        writeAssignRow(object, object.rowCount, object.firstRow);
    }
    m_out << "};\n";
}

void ObjDictRows::writeVirtualAssignment()
{
    writeHead(assignments, "vod_assign",
              m_context.facts.virtualAssignment.empty() ? "1" : "CO_VOD_ASSIGN_CNT");
    if (m_context.facts.virtualAssignment.empty())
        m_out << emptyRow;
    for (const quint32 position : m_context.facts.virtualAssignment) {
        const Facts::Object &object = m_context.facts.objects[position];
        writeAssignRow(object, object.virtualRowCount, object.firstVirtualRow);
    }
    m_out << "};\n";
}
