#pragma once

#include "generators/canopen/objdictcontext.h"

class CodeWriter;

/// The functions that give COB-IDs their project values again after the stack has set those of
/// the predefined connection set (CiA 301).
class ObjDictCobIds
{
public:
    ObjDictCobIds(const ObjDictContext &context, CodeWriter &out) : m_context(context), m_out(out)
    {
    }

    /// Nothing unless a line overwrites its predefined connection set.
    void write();

private:
    struct CobId
    {
        const DictionaryFacts::Entry *entry;
        quint16 index;
        quint8 sub;
        bool isPdo;
    };

    [[nodiscard]] std::vector<CobId> cobIds(quint8 line) const;
    void writeWarning();
    void writeHead(const QByteArray &name, const char *parameter);
    void writeVariables(const std::vector<CobId> &ids);
    void writeLines();
    void writeLine(const std::vector<CobId> &ids, quint8 line, const QByteArray &indent);
    void writeCobId(const CobId &cobId, const QByteArray &indent);

    const ObjDictContext &m_context;
    CodeWriter &m_out;
};
