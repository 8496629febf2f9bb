#include "generators/canopen/objdictinit.h"

#include "generators/base/codewriter.h"
#include "generators/canopen/objdictpdotables.h"
#include "store/objectdatabase.h"

// The functions of the initialisation, put together from its steps.

namespace {

using Facts = DictionaryFacts;

constexpr quint16 networkObject = 0x1F2C;

} // namespace

void ObjDictInit::writePdos(quint8 line)
{
    const auto value = [&](const Facts::Pdo &pdo, quint8 sub) {
        return m_context.constantOf(line, pdo.index, sub);
    };
    for (const Facts::Pdo &pdo : m_context.facts.receivePdos) {
        if (pdo.line != line)
            continue;
        m_out << "\n    /* initialize RPDO " << pdo.number << " */\n";
        writeCall(call("coPdoReceiveInit", QByteArray::number(pdo.number) + "u, " + value(pdo, 2) +
                                               ", " + value(pdo, 3) + ", " + value(pdo, 5) + ", " +
                                               ObjDictPdoTables::tableAddress(m_context, pdo)));
    }
    for (const Facts::Pdo &pdo : m_context.facts.transmitPdos) {
        if (pdo.line != line)
            continue;
        m_out << "\n    /* initialize TPDO " << pdo.number << " */\n";
        writeCall(call("coPdoTransmitInit", QByteArray::number(pdo.number) + "u, " + value(pdo, 2) +
                                                ", " + value(pdo, 3) + ", " + value(pdo, 5) + ", " +
                                                value(pdo, 6) + ", " +
                                                ObjDictPdoTables::tableAddress(m_context, pdo)));
    }
}

void ObjDictInit::writeLineCalls(quint8 line)
{
    writeOdInit(line);
    if (m_context.number("event_led") > 0) {
        m_out << "\n    /* initialize LEDs */\n";
        writeCall(call("coLedInit"));
    }
    writeSdoServers(line);
    writeSdoClients(line);
    writeServices(line);
    if (!m_context.facts.lineForm)
        writeLoadParameters();
    writeNmt(line);
    writePdos(line);
}

// --- Single line ---------------------------------------------------------------------------------

void ObjDictInit::writeSingleHead(const char *name, bool hasOptions)
{
    m_out << "RET_T " << name << "(\n        CO_EVENT_STORE_T pLoadFunction";
    if (m_context.fdMode)
        m_out << ",\n        BOOL_T *pModes";
    if (hasOptions)
        m_out << ",\n        CO_INIT_OPTION_T *pCoOptions";
    m_out << "\n    )\n{\n";
}

/// With options, the function without them takes those of the project.
void ObjDictInit::writeSingleWrapper()
{
    m_out << "\n/* stack initialization with the options of the project */\n";
    writeSingleHead("coCanOpenStackInit", false);
    m_out << "CO_INIT_OPTION_T coOptions;\n\n"
          << "    coOptions.master = "
          << int(m_context.isMaster(m_context.facts.activeLines.front())) << "u;\n"
          << "    return(coCanOpenStackInitPara(pLoadFunction, "
          << (m_context.fdMode ? "pModes, " : "") << "&coOptions));\n}\n";
}

void ObjDictInit::writeSingleLine()
{
    const bool hasOptions = m_context.dynamicOptions;
    m_out << "\n/* stack initialization */\n";
    writeSingleHead(hasOptions ? "coCanOpenStackInitPara" : "coCanOpenStackInit", hasOptions);
    m_out << "RET_T retVal;\n\n";
    writeModes();
    if (m_context.fdMode && !m_context.newInitStructure)
        m_out << "    (void)pModes;\n";
    writeCommonCalls();
    writeLineCalls(m_context.facts.activeLines.front());
    m_out << "\n    return(retVal);\n}\n";
    if (hasOptions)
        writeSingleWrapper();
}

// --- Several lines -------------------------------------------------------------------------------

void ObjDictInit::writeCommonFunction()
{
    m_out << "\n/* Initialize what the lines have in common */\n"
             "RET_T coCanOpenStackInit_common(\n        CO_EVENT_STORE_T pLoadFunction";
    if (m_context.fdMode)
        m_out << ",\n        BOOL_T *pModes";
    m_out << "\n    )\n{\nRET_T retVal;\n";
    const bool hasLoop = m_context.fdMode && m_context.newInitStructure;
    if (hasLoop)
        m_out << m_context.dialect.lineType << ' ' << m_context.dialect.line << ";\n";
    m_out << '\n';
    writeModes();
    if (m_context.fdMode && !hasLoop)
        m_out << "    (void)pModes;\n";
    writeCommonCalls();
    writeLoadParameters();
    m_out << "\n    return(retVal);\n}\n";
}

void ObjDictInit::writeLineFunction(quint8 line)
{
    m_out << "\n/* Initialize line << " << line << " */\n"
          << "RET_T coCanOpenStackInit_line" << line
          << "(\n        UNSIGNED8 canLine,\n        CO_INIT_OPTION_T *pCoOptions\n    )\n{\n"
          << "RET_T retVal;\n\n";
    if (!m_context.dynamicOptions)
        m_out << "    (void)pCoOptions;\n\n";
    writeLineCalls(line);
    m_out << "\n    return(retVal);\n}\n";
}

void ObjDictInit::writeLineDispatch()
{
    m_out << "\n/* Initialize one line */\n"
             "RET_T coCanOpenStackInit_line(\n        UNSIGNED8 canLine,\n        CO_INIT_OPTION_T "
             "*pCoOptions\n    )\n{\nRET_T retVal;\n\n    switch (canLine) {\n";
    for (const quint8 line : m_context.facts.activeLines)
        m_out << "        case " << line << "u:\n            retVal = coCanOpenStackInit_line"
              << line << "(canLine, pCoOptions);\n            break;\n";
    m_out << "        default:\n            retVal = " << m_context.dialect.parameterError
          << ";\n            break;\n    }\n\n    return(retVal);\n}\n";
}

void ObjDictInit::writeFinishBody()
{
    const bool hasRouting =
        m_context.facts.hasObject(networkObject) || m_context.isOnAnyLine("routing_counts");
    if (hasRouting)
        m_out << "RET_T retVal;\n\n    /* initialize PDO routing */ \n"
                 "    retVal = coPdoNetworkRouting();\n    return(retVal);\n";
    else
        m_out << "    /*\n"
                 "     * Currently the function is empty, but may be used later for additional\n"
                 "     * purposes.\n"
                 "     */\n"
                 "    return(RET_OK);\n";
}

void ObjDictInit::writeFinish()
{
    m_out << "\n/* Initialize what needs all lines */\n"
             "RET_T coCanOpenStackInit_finish(void)\n{\n";
    writeFinishBody();
    m_out << "}\n";
}

void ObjDictInit::writeStackInit()
{
    m_out << "\n/* stack initialization, all lines */\n";
    writeSingleHead("coCanOpenStackInit", true);
    m_out << "RET_T retVal;\nCO_INIT_OPTION_T coOptions;\nCO_INIT_OPTION_T *pCoInitOpt;\n\n";
    writeCall(QByteArray("coCanOpenStackInit_common(pLoadFunction") +
              (m_context.fdMode ? ", pModes)" : ")"));
    for (const quint8 line : m_context.facts.activeLines) {
        m_out << "\n    /* line " << line << " */\n"
              << "    coOptions.master = " << int(m_context.isMaster(line)) << "u;\n"
              << "    pCoInitOpt = &coOptions;\n"
              << "    if (pCoOptions != NULL) {\n"
              << "        pCoInitOpt = &pCoOptions[" << line << "];\n    }\n";
        const QByteArray number = QByteArray::number(line);
        writeCall("coCanOpenStackInit_line" + number + '(' + number + "u, pCoInitOpt)");
    }
    m_out << "\n    retVal = coCanOpenStackInit_finish();\n\n    return(retVal);\n}\n";
}

void ObjDictInit::writeMultiLine()
{
    m_out << "\nUNSIGNED8 canLineTable[" << (m_context.dialect.isV4 ? "CAN" : "CO")
          << "_LINE_ARRAY_DECL] = {";
    bool isFirst = true;
    for (const quint8 line : m_context.facts.activeLines) {
        m_out << (isFirst ? " " : ", ") << line << 'u';
        isFirst = false;
    }
    m_out << " };\n";
    writeCommonFunction();
    for (const quint8 line : m_context.facts.activeLines)
        writeLineFunction(line);
    writeLineDispatch();
    writeFinish();
    writeStackInit();
}

void ObjDictInit::writeServerOnly()
{
    m_out << "\n/* object dictionary initialization */\n";
    if (!m_context.facts.lineForm) {
        m_out << "RET_T\tj1939OdInit(void)\n{\n";
        writeOdInit(m_context.facts.activeLines.front());
        m_out << "\n    return(RET_OK);\n}\n";
        return;
    }
    m_out << "RET_T\tj1939OdInit(\n\tUNSIGNED8 canLine\n)\n{\nRET_T retVal = RET_OK;\n\n"
             "    switch (canLine) {\n";
    for (const quint8 line : m_context.facts.activeLines) {
        m_out << "    case " << line << "u:\n";
        writeOdInit(line);
        m_out << "    break;\n";
    }
    m_out << "    default:\n    retVal = " << m_context.dialect.parameterError
          << ";\n    break;\n    }\n\n    return(retVal);\n}\n";
}
