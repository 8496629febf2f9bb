#include "generators/canopen/objdictinit.h"

#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"

namespace {

using Facts = DictionaryFacts;

QByteArray numberText(int number)
{
    return QByteArray::number(number) + 'u';
}

} // namespace

QByteArray ObjDictInit::call(const char *function, const QByteArray &arguments) const
{
    QByteArray all = m_context.facts.lineForm ? "canLine" : "";
    if (!all.isEmpty() && !arguments.isEmpty())
        all += ", ";
    return QByteArray(function) + '(' + all + arguments + ')';
}

bool ObjDictInit::has(quint8 line, quint16 index) const
{
    return m_context.facts.findObject(line, index) != nullptr;
}

void ObjDictInit::writeCall(const QByteArray &call, const QByteArray &indent)
{
    m_out << indent.constData() << "retVal = " << call.constData() << ";\n"
          << indent.constData() << "if (retVal != RET_OK) {\n"
          << indent.constData() << "    return(retVal);\n"
          << indent.constData() << "}\n"
          << indent.constData() << m_context.dialect.watchdog << '\n';
}

// --- Steps ---------------------------------------------------------------------------------------

void ObjDictInit::writeModes()
{
    if (!m_context.fdMode || !m_context.newInitStructure)
        return;
    const char *line = m_context.dialect.line;
    if (!m_context.facts.lineForm) {
        m_out << "    /* set fdMode values */\n"
                 "    if (pModes != NULL) {\n"
                 "        commonInitVars.fdMode[0] = pModes[0];\n"
                 "    }\n\n";
        return;
    }
    m_out << "    /* set fdMode values */\n"
             "    if (pModes != NULL) {\n"
             "    for ("
          << line << " = 0; " << line << " < " << m_context.dialect.multiLineCount << "; " << line
          << " ++)\n    {\n        commonInitVars.fdMode[" << line << "] = pModes[" << line
          << "];\n    }\n    }\n\n";
}

void ObjDictInit::writeCommonCalls()
{
    const bool hasValues = m_context.newInitStructure;
    m_out << "    /* hardware independent part of the stack */\n";
    writeCall(QByteArray(m_context.dialect.commonInitCall) +
              (hasValues ? "(&commonInitVars)" : "(NULL)"));
    m_out << "\n    coCanOpenStackVarInit(" << (hasValues ? "&serviceInitVars" : "NULL")
          << ");\n    " << m_context.dialect.watchdog << "\n\n";
}

void ObjDictInit::writeOdInit(quint8 line)
{
    m_out << "    /* initialize object dictionary variables and pointers */\n";
    if (!m_context.facts.lineForm) {
        m_out << "    coOdInitOdPtr(&od_assign[0], CO_OD_ASSIGN_CNT, &od_description[0], "
                 "CO_OBJ_DESC_CNT, NULL, &od_data_variables);\n";
    } else {
        const Facts::LineCounts *counts = m_context.facts.countsOf(line);
        m_out << "    coOdInitOdPtr(canLine, &od_assign[" << (counts ? counts->firstAssignRow : 0)
              << "], " << (counts ? counts->assignRows : 0) << "u, od_description, "
              << m_context.facts.description.size() << "u, NULL, &od_data_variables);\n";
    }
}

QList<QByteArray> ObjDictInit::numberedCalls(const char *function, quint8 line,
                                             const ObjectRange &range) const
{
    QList<QByteArray> calls;
    for (int index = range.low; index <= range.high; ++index) {
        if (has(line, quint16(index)))
            calls.append(call(function, numberText(index - range.low + 1)));
    }
    return calls;
}

/// A CAN FD line talks USDO when its mode says so, and SDO otherwise.
void ObjDictInit::writeUsdoBranch(const char *usdoCall, bool hasUsdo,
                                  const QList<QByteArray> &sdoCalls)
{
    if (!hasUsdo) {
        for (const QByteArray &sdoCall : sdoCalls)
            writeCall(sdoCall);
        return;
    }
    m_out << "    if (commonInitVars.fdMode[" << (m_context.facts.lineForm ? "canLine" : "0")
          << "] == CO_TRUE) {\n";
    writeCall(usdoCall, "        ");
    if (!sdoCalls.isEmpty()) {
        m_out << "    } else {\n";
        for (const QByteArray &sdoCall : sdoCalls)
            writeCall(sdoCall, "        ");
    }
    m_out << "    }\n";
}

void ObjDictInit::writeSdoServers(quint8 line)
{
    const bool hasUsdo = m_context.fdMode && m_context.newInitStructure &&
                         m_context.lineNumber("usdo_server_enabled", line) > 0;
    const QList<QByteArray> calls =
        numberedCalls("coSdoServerInit", line, ObjectRanges::sdoServers);
    if (!hasUsdo && calls.isEmpty())
        return;
    m_out << "\n    /* initialize SDO servers */\n";
    writeUsdoBranch(call("coUsdoServerInit").constData(), hasUsdo, calls);
}

void ObjDictInit::writeSdoClients(quint8 line)
{
    const int usdoClients = m_context.lineNumber("usdo_client_cnt", line);
    const bool hasUsdo = m_context.fdMode && m_context.newInitStructure && usdoClients > 0 &&
                         m_context.lineNumber("usdo_client_enabled", line) > 0;
    const QList<QByteArray> calls =
        numberedCalls("coSdoClientInit", line, ObjectRanges::sdoClients);
    if (!hasUsdo && calls.isEmpty())
        return;
    m_out << "\n    /* initialize SDO clients */\n";
    writeUsdoBranch(call("coUsdoClientInit", numberText(usdoClients)).constData(), hasUsdo, calls);
}

void ObjDictInit::writeServices(quint8 line)
{
    const Facts::LineCounts *counts = m_context.facts.countsOf(line);
    const auto value = [&](quint16 index) { return m_context.constantOf(line, index, 0); };
    const auto service = [this](bool isUsed, const char *title, const QByteArray &text) {
        if (!isUsed)
            return;
        m_out << "\n    /* initialize " << title << " */\n";
        writeCall(text);
    };
    service(has(line, 0x1016) || has(line, 0x1017), "error control",
            call("coErrorCtrlInit",
                 value(0x1017) + ", " + numberText(counts ? counts->heartbeatConsumers : 0)));
    service(has(line, 0x1014), "EMCY producer", call("coEmcyProducerInit"));
    service(has(line, 0x1005), "SYNC",
            call("coSyncInit", value(0x1005) + ", " + value(0x1006) + ", " + value(0x1007)));
    service(has(line, 0x1028), "EMCY consumer",
            call("coEmcyConsumerInit", numberText(counts ? counts->emcyConsumers : 0)));
    service(has(line, 0x1012), "TIME", call("coTimeInit", value(0x1012)));
    service(has(line, 0x1F10), "SRD", call("coSrdInit"));
    service(has(line, 0x1300), "GFC", call("coGfcInit", "CO_TRUE, CO_TRUE"));
    const QList<QByteArray> srdos =
        numberedCalls("coSrdoInit", line, {ObjectRanges::srdos.low, 0x137F});
    for (const QByteArray &srdo : srdos)
        service(true, "SRDO", srdo);
    // Connections that are left over from a project that had ISO-TP need no start.
    const bool hasIsoTp = m_context.lineNumber("isotp_connection_cnt", line) > 0 &&
                          CommonGeneratorHelper(&m_context.store).hasIsoTp();
    service(hasIsoTp, "ISO-TP", call("isoTpInit"));
    service(m_context.number("idnego_supported") > 0, "ID negotiation", call("coIdNegoInit"));
    service(has(line, 0x100C) || m_context.number("bootup_manager") > 0, "node guarding",
            call("coGuardingInit"));
}

void ObjDictInit::writeLoadParameters()
{
    m_out << "\n    /* function that loads stored parameters */\n"
             "#if defined(CO_EVENT_DYNAMIC_STORE) || defined(CO_EVENT_PROFILE_STORE)\n"
             "    if (pLoadFunction != NULL) {\n";
    writeCall("coEventRegister_LOAD_PARA(pLoadFunction)", "        ");
    m_out << "    }\n#else\n    (void)pLoadFunction;\n#endif\n";
}

void ObjDictInit::writeRole(bool isMaster, quint8 line, const QByteArray &indent)
{
    if (m_context.lineNumber("lss_supported", line) > 0) {
        if (isMaster)
            m_out << "#ifdef CO_LSS_MASTER_SUPPORTED\n";
        writeCall(call(isMaster ? "coLssMasterInit" : "coLssInit"), indent);
        if (isMaster)
            m_out << "#endif /* CO_LSS_MASTER_SUPPORTED */\n";
    }
    writeCall(call("coNmtInit", isMaster ? "1u" : "0u"), indent);
}

void ObjDictInit::writeNmt(quint8 line)
{
    m_out << "\n    /* initialize LSS and NMT */\n";
    if (!m_context.dynamicOptions) {
        writeRole(m_context.isMaster(line), line, "    ");
        return;
    }
    m_out << "    if (pCoOptions->master == 1) {\n";
    writeRole(true, line, "        ");
    m_out << "    } else {\n";
    writeRole(false, line, "        ");
    m_out << "    }\n";
}
