#include "generators/canopen/objdictpdotables.h"

#include "canopen/canopentypes.h"
#include "generators/base/codewriter.h"

#include <algorithm>

namespace {

using Facts = DictionaryFacts;

QByteArray tableName(const ObjDictContext &context, const Facts::MapTable &table)
{
    QByteArray name = table.isTransmit ? "mapTableTPDO" : "mapTableRPDO";
    name += QByteArray::number(table.number);
    if (context.facts.lineForm)
        name += "_line" + QByteArray::number(table.line);
    return name;
}

} // namespace

QByteArray ObjDictPdoTables::tableAddress(const ObjDictContext &context, const Facts::Pdo &pdo)
{
    if (pdo.table == Facts::noPosition)
        return "NULL";
    return '&' + tableName(context, context.facts.mapTables[pdo.table]);
}

void ObjDictPdoTables::write()
{
    m_out << "\n/* static PDO mapping tables */\n";
    // Transmit tables first, each direction in the order of lines and numbers.
    for (const bool isTransmit : {true, false}) {
        for (const Facts::MapTable &table : m_context.facts.mapTables) {
            if (table.isTransmit == isTransmit)
                writeTable(table);
        }
    }
}

void ObjDictPdoTables::writeTable(const Facts::MapTable &table)
{
    if (table.users > 1)
        m_out << "/* unique rpdo defintion */\n";
    m_out << "static " << m_context.dialect.constant
          << (table.isTransmit ? " PDO_TR_MAP_TABLE_T " : " PDO_REC_MAP_TABLE_T ")
          << m_context.dialect.constStorage << '\t' << tableName(m_context, table).constData()
          << " = {\n\t(UNSIGNED8)" << table.count << "u,\n\t{\n";
    for (std::size_t i = 0; i < table.mapSlots.size(); ++i)
        writeSlot(table.mapSlots[i], table.isTransmit, i + 1 == table.mapSlots.size());
    m_out << "\t}\n};\n";
}

QByteArray ObjDictPdoTables::address(const Facts::MapSlot &slot) const
{
    if (slot.entry == Facts::noPosition)
        return "NULL";
    const Facts::Entry &entry = m_context.facts.entries[slot.entry];
    // Strings and domains are reached through pointers, which are no constant expressions.
    if (DictionaryTypes::isNumeric(entry.group))
        return m_context.address(entry);
    return entry.implementation == CANopen::Variable ? ObjDictContext::variable(entry.varName)
                                                     : QByteArray("NULL");
}

void ObjDictPdoTables::writeSlot(const Facts::MapSlot &slot, bool isTransmit, bool isLast)
{
    const bool isUsed = slot.mapping != 0;
    if (isUsed) {
        m_out << "\t\t{" << address(slot).constData() << ", " << slot.length << "u, "
              << (slot.isNumeric ? "CO_TRUE" : "CO_FALSE") << ", 0x";
        m_out.hex(slot.mapping, 8) << "UL";
    } else {
        m_out << "\t\t{NULL, (UNSIGNED8)0u, "
              << (m_context.dialect.isV4 ? "CORE_DTYPE_NON_NUMERIC" : "CO_FALSE") << ", 0ul";
    }
    // A received value is checked against the limits and rights of its row.
    if (!isTransmit)
        m_out << ", (UNSIGNED16)" << std::min(slot.row, Facts::highestPosition) << 'u';
    if (isUsed)
        m_out << " },\n";
    else
        m_out << (isLast ? "}\n" : "},\n");
}
