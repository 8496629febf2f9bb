#pragma once

#include "generators/canopen/objdictcontext.h"

#include <QHash>

class CodeWriter;

/// The rows of the description and assignment tables, of the dictionary and of the virtual one.
class ObjDictRows
{
public:
    ObjDictRows(const ObjDictContext &context, CodeWriter &out) : m_context(context), m_out(out) {}

    void writeDescription();
    void writeAssignment();
    void writeVirtualDescription();
    void writeVirtualAssignment();

    struct TableKind
    {
        const char *title;
        const char *type; ///< of a row
    };

private:
    void writeHead(const TableKind &kind, const char *name, const char *size);
    void writeRow(const DictionaryFacts::Entry &entry, bool isVirtual);
    void appendValueColumns(const DictionaryFacts::Entry &entry);
    void appendVirtualValueColumns(const DictionaryFacts::Entry &entry);
    void appendNumber(quint32 number);
    void appendPlace(const DictionaryFacts::Place &place);
    void writeAssignRow(const DictionaryFacts::Object &object, quint32 rows, quint32 firstRow);
    /// The attribute column; like ones repeat by the thousand.
    [[nodiscard]] const QByteArray &attributeText(quint16 attributes, bool isVirtual);

    const ObjDictContext &m_context;
    CodeWriter &m_out;
    QByteArray m_row; ///< being put together
    QHash<quint32, QByteArray> m_attributeTexts;
};
