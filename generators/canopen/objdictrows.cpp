#include "generators/canopen/objdictrows.h"

#include "generators/base/codewriter.h"
#include "store/canopen/canopentypes.h"

#include <array>

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

void ObjDictRows::writeValueColumns(const Facts::Entry &entry)
{
    if (m_context.dialect.isV4)
        m_out << "CO_DSPEC" << entry.specifier << ", (UNSIGNED16)" << entry.valueIndex << "u, ";
    else
        m_out << m_context.address(entry).constData() << ", ";
}

/// The older generation writes the specifier as part of its type word.
void ObjDictRows::writeVirtualValueColumns(const Facts::Entry &entry)
{
    m_out << (m_context.dialect.isV4 ? ", CO_DSPEC_PTR, (UNSIGNED16)" : "_PTR, (UNSIGNED16)");
    // Only numbers are kept in tables; strings and domains are told by their index.
    if (DictionaryTypes::isNumeric(entry.group)) {
        m_out << entry.position;
    } else {
        m_out << "0x";
        m_out.hex(entry.place.index, 4);
    }
    m_out << "u, ";
}

void ObjDictRows::writeRow(const Facts::Entry &entry, bool isVirtual)
{
    m_out << "\t{ (UNSIGNED8)" << entry.place.sub << "u, " << m_context.dialect.dataTypePrefix
          << DictionaryTypes::of(entry.dataType).tag;
    if (isVirtual) {
        writeVirtualValueColumns(entry);
    } else {
        m_out << ", ";
        writeValueColumns(entry);
    }
    m_out << attributeText(entry.attributes, isVirtual).constData() << ", (UNSIGNED16)"
          << column(entry.defaultPosition);
    if (m_context.options.limitCheck)
        m_out << "u, (UNSIGNED16)" << column(entry.lowPosition) << "u, (UNSIGNED16)"
              << column(entry.highPosition);
    m_out << "u},/* " << m_context.place(entry.place).constData() << "*/ \n";
}

void ObjDictRows::writeDescription()
{
    m_out << "\n/* description of the objects */\n"
          << m_context.dialect.constant << " CO_OBJECT_DESC_T " << m_context.dialect.constStorage
          << " od_description[CO_OBJ_DESC_CNT] = {\n";
    for (const quint32 position : m_context.facts.description)
        writeRow(m_context.facts.entries[position], false);
    m_out << "};\n";
}

void ObjDictRows::writeVirtualDescription()
{
    m_out << "\n/* description of the objects */\n"
          << m_context.dialect.constant << " CO_OBJECT_DESC_T " << m_context.dialect.constStorage
          << " vod_description[CO_VOBJ_DESC_CNT] = {\n";
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
    m_out << "\n/* object dictionary assignment */\n"
          << m_context.dialect.constant << " CO_OD_ASSIGN_T " << m_context.dialect.constStorage
          << " od_assign[CO_OD_ASSIGN_CNT] = {\n";
    for (const quint32 position : m_context.facts.assignment) {
        const Facts::Object &object = m_context.facts.objects[position];
        writeAssignRow(object, object.rowCount, object.firstRow);
    }
    m_out << "};\n";
}

void ObjDictRows::writeVirtualAssignment()
{
    m_out << "\n/* object dictionary assignment */\n"
          << m_context.dialect.constant << " CO_OD_ASSIGN_T " << m_context.dialect.constStorage
          << " vod_assign[CO_VOD_ASSIGN_CNT] = {\n";
    for (const quint32 position : m_context.facts.virtualAssignment) {
        const Facts::Object &object = m_context.facts.objects[position];
        writeAssignRow(object, object.virtualRowCount, object.firstVirtualRow);
    }
    m_out << "};\n";
}
