#include "generators/canopen/objdictcobids.h"

#include "canopen/objectranges.h"
#include "generators/base/codewriter.h"

#include <algorithm>

namespace {

using Facts = DictionaryFacts;

} // namespace

/// SDOs have a COB-ID for either direction in subindices 1 and 2, PDOs one in subindex 1.
std::vector<ObjDictCobIds::CobId> ObjDictCobIds::cobIds(quint8 line) const
{
    std::vector<CobId> ids;
    if (m_context.lineNumber("overwrite_predef", line) <= 0)
        return ids;
    for (const Facts::Object &object : m_context.facts.objects) {
        const bool isSdo = ObjectRanges::isSdo(object.index);
        if (object.line != line || (!isSdo && !ObjectRanges::isPdoCommunication(object.index)))
            continue;
        for (quint8 sub = 1; sub <= (isSdo ? 2 : 1); ++sub) {
            const Facts::Entry *entry = m_context.facts.find(line, object.index, sub);
            if (entry && entry->group == TableGroup::U32)
                ids.push_back({entry, object.index, sub, !isSdo});
        }
    }
    return ids;
}

void ObjDictCobIds::write()
{
    if (!m_context.isOverwriting())
        return;
    const bool hasLines = m_context.facts.lineForm;
    const bool isV4 = m_context.dialect.isV4;
    const QByteArray userFunction =
        hasLines ? "userOverwriteCobIdSettingsLine" : "userOverwriteCobIdSettings";
    const char *userParameter = hasLines ? "UNSIGNED8 canLine" : "void";
    m_out << '\n';
    if (isV4) {
        m_out << "#ifdef GEN_OVERWRITE_PREDEF_CONN_SET\n";
        writeWarning();
        writeHead("genLoadIndication",
                  hasLines ? "UNSIGNED8 canLine, UNSIGNED8 subIndex" : "UNSIGNED8 subIndex");
    } else {
        writeWarning();
        writeHead(userFunction, userParameter);
    }
    writeLines();
    if (isV4) {
        m_out << '\n';
        writeHead(userFunction, userParameter);
        m_out << (hasLines ? "    return(genLoadIndication(canLine, 1u));\n"
                           : "    return(genLoadIndication(1u));\n")
              << "}\n#endif /* GEN_OVERWRITE_PREDEF_CONN_SET */\n";
    }
}

void ObjDictCobIds::writeWarning()
{
    m_out << "/* Please be careful - this function overwrite the COB-Ids of the\n"
             "* predefined connection set with the values of the project. It has to run\n"
             "* after each communication reset, before the node becomes operational.\n"
             "*/\n";
}

void ObjDictCobIds::writeHead(const QByteArray &name, const char *parameter)
{
    m_out << "RET_T " << name.constData() << '(' << parameter << ")\n{\n";
}

void ObjDictCobIds::writeVariables(const std::vector<CobId> &ids)
{
    m_out << "RET_T retVal = RET_OK;\n";
    if (ids.empty())
        return;
    m_out << "UNSIGNED32 cobId;\n";
    if (std::any_of(ids.begin(), ids.end(), [](const CobId &id) { return id.entry->addsNodeId; }))
        m_out << "UNSIGNED32 nodeId = coNmtGetNodeId("
              << (m_context.facts.lineForm ? "canLine" : "") << ");\n";
}

void ObjDictCobIds::writeLines()
{
    std::vector<std::vector<CobId>> idsOfLines;
    std::vector<CobId> all;
    for (const quint8 line : m_context.facts.activeLines) {
        idsOfLines.push_back(cobIds(line));
        all.insert(all.end(), idsOfLines.back().begin(), idsOfLines.back().end());
    }
    writeVariables(all);
    m_out << '\n';
    if (m_context.dialect.isV4)
        m_out << "    /* only a reset of the communication parameters or of all parameters */\n"
                 "    if ((subIndex != 1u) && (subIndex != 2u)) {\n"
                 "        return(RET_OK);\n"
                 "    }\n";
    if (!m_context.facts.lineForm) {
        writeLine(idsOfLines.front(), m_context.facts.activeLines.front(), "    ");
    } else {
        m_out << "    switch (canLine) {\n";
        for (std::size_t i = 0; i < idsOfLines.size(); ++i) {
            const quint8 line = m_context.facts.activeLines[qsizetype(i)];
            m_out << "        case " << line << "u:\n";
            writeLine(idsOfLines[i], line, "            ");
            m_out << "            break;\n";
        }
        m_out << "        default:\n            retVal = " << m_context.dialect.parameterError
              << ";\n            break;\n    }\n";
    }
    m_out << "    return(retVal);\n}\n";
}

void ObjDictCobIds::writeLine(const std::vector<CobId> &ids, quint8 line, const QByteArray &indent)
{
    if (ids.empty() && m_context.facts.lineForm)
        m_out << indent.constData() << "/* line " << line
              << " keeps its predefined connection set */\n";
    for (const CobId &id : ids)
        writeCobId(id, indent);
}

void ObjDictCobIds::writeCobId(const CobId &cobId, const QByteArray &indent)
{
    const QByteArray line = m_context.facts.lineForm ? "canLine, " : "";
    const QByteArray object = line + "0x" + QByteArray::number(cobId.index, 16) + ", " +
                              QByteArray::number(cobId.sub) + ", ";
    const QByteArray check =
        indent + "if (retVal != RET_OK) {\n" + indent + "    return(retVal);\n" + indent + "}\n";
    if (cobId.isPdo && cobId.entry->addsNodeId) {
        m_out << indent.constData() << "cobId = nodeId + 0x";
        m_out.hex(cobId.entry->value) << "ul;\n";
    } else {
        m_out << indent.constData() << "retVal = coOdGetDefaultVal_u32(" << object.constData()
              << "&cobId);\n"
              << check.constData();
        // The default in the table is the number without the node-id.
        if (cobId.entry->addsNodeId)
            m_out << indent.constData() << "cobId += nodeId;\n";
    }
    m_out << indent.constData() << "retVal = coOdSetCobid(" << object.constData() << "cobId);\n"
          << check.constData();
}
