#pragma once

#include "generators/canopen/objdictcontext.h"

class CodeWriter;

/// The static PDO mapping tables.
class ObjDictPdoTables
{
public:
    ObjDictPdoTables(const ObjDictContext &context, CodeWriter &out)
        : m_context(context), m_out(out)
    {
    }

    void write();
    /// "&mapTableTPDO1" of a PDO's table, or "NULL" for a PDO without one.
    [[nodiscard]] static QByteArray tableAddress(const ObjDictContext &context,
                                                 const DictionaryFacts::Pdo &pdo);

private:
    void writeTable(const DictionaryFacts::MapTable &table);
    void writeSlot(const DictionaryFacts::MapSlot &slot, bool isTransmit, bool isLast);
    [[nodiscard]] QByteArray address(const DictionaryFacts::MapSlot &slot) const;

    const ObjDictContext &m_context;
    CodeWriter &m_out;
};
