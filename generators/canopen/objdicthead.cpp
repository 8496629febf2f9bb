#include "generators/canopen/objdicthead.h"

#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"
#include "generators/canopen/objdictindications.h"
#include "store/objectdatabase.h"
#include "store/projectsettings.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <array>

namespace {

struct ServiceRow
{
    const char *counts;
    const char *test; ///< the row stands only where this macro is defined; null: always
    bool onlyV4;
};

constexpr std::array<ServiceRow, 17> serviceRows = {{
    {"CO_OBJECT_COUNTS", nullptr, false},
    {"CO_TXPDO_COUNTS", nullptr, false},
    {"CO_RXPDO_COUNTS", nullptr, false},
    {"CO_SRDO_COUNTS", "CO_SRDO_SUPPORTED", false},
    {"CO_SSDO_COUNTS", nullptr, false},
    {"CO_CSDO_COUNTS", nullptr, false},
    {"CO_USDO_SERVER_MAX_CONN_COUNTS", "CO_USDO_SERVER_MAX_CONN_CNT", true},
    {"CO_USDO_CLIENT_MAX_CONN_COUNTS", "CO_USDO_CLIENT_MAX_CONN_CNT", true},
    {"CO_ERR_CTRL_COUNTS", nullptr, false},
    {"CO_ERR_HIST_COUNTS", nullptr, false},
    {"CO_ACT_ERR_HIST_COUNTS", nullptr, false},
    {"CO_EMCY_CONS_COUNTS", nullptr, false},
    {"CO_NETWORK_ROUTING_COUNTS", "CO_NETWORK_ROUTING_CNT", false},
    {"CO_ASSIGN_COUNTS", nullptr, false},
    {"CO_GUARDING_COUNTS", nullptr, false},
    {"CO_NODE_IDS", nullptr, false},
    {"CO_NODE_ID_FUNCTIONS", nullptr, false},
}};

bool isEnergyBusEdition()
{
    return QCoreApplication::applicationName().contains(QLatin1String("EnergyBus"));
}

} // namespace

bool ObjDictHead::hasUserHeader() const
{
    return m_context.isOverwriting() || m_context.hasStringDefaults();
}

void ObjDictHead::writeIncludes(const QString &outputFolder, bool serverOnly)
{
    if (!QFileInfo::exists(QStringLiteral("%1/%2").arg(outputFolder, QLatin1String(noStdlibFile))))
        m_out << "#include <stdlib.h>\n\n";
    m_out << "#include <gen_define.h>\n";
    if (serverOnly) {
        m_out << "#include <" << m_context.dialect.dataTypeHeader << ">\n"
              << "#include <co_odaccess.h>\n#include <j1939_cam11_cam21.h>\n";
    } else {
        m_out << "#include <co_canopen.h>\n";
        if (m_context.isOnAnyLine("udsserver_supported") ||
            m_context.isOnAnyLine("udsclient_supported"))
            m_out << "#include <" << m_context.dialect.isoTpHeader << ">\n#include <uds_uds.h>\n";
        if (m_context.number("uds_static_indication") == 1)
            m_out << "#include <uds_indication.h>\n";
        m_out << "#include <gen_indication.h>\n";
        if (hasUserHeader())
            m_out << "#include <gen_user.h>\n";
    }
    if (isEnergyBusEdition())
        m_out << "/* EnergyBus header files */\n#include <eb_energybus.h>\n";
    writeApplicationHeaders();
}

/// Names stand one a line; blanks and commas part them too, as other generators read the setting.
void ObjDictHead::writeApplicationHeaders()
{
    static const QRegularExpression separators(QStringLiteral("[\\s,;\"]+"));
    const QStringList headers = ProjectSettings(m_context.store)
                                    .text("applicationheader")
                                    .split(separators, Qt::SkipEmptyParts);
    if (headers.isEmpty())
        return;
    m_out << "/* application header file(s) */\n";
    for (const QString &header : headers) {
        if (header.startsWith(QLatin1Char('<')) && header.endsWith(QLatin1Char('>')))
            m_out << "#include " << header << '\n';
        else
            m_out.includeOwn(header);
    }
}

void ObjDictHead::writeMacros()
{
    const auto macro = [this](const char *name, const char *value) {
        m_out.defineUnlessDefined(QLatin1String(name), QLatin1String(value));
    };
    m_out << '\n';
    macro(m_context.dialect.constant, "const");
    macro(m_context.dialect.storage, "");
    macro(m_context.dialect.constStorage, "");
    macro(m_context.dialect.watchdog, "");
}

void ObjDictHead::writeInitStructures()
{
    if (!m_context.newInitStructure)
        return;
    const bool isV4 = m_context.dialect.isV4;
    m_out << '\n'
          << (isV4 ? CommonGeneratorHelperV4(&m_context.store).commonInit()
                   : CommonGeneratorHelper(&m_context.store).commonInit());
    if (isV4)
        m_out << "/* CANopen service initialization variables */\n";
    m_out << "CO_SERVICE_INIT_VAL_T\tserviceInitVars = {\n";
    for (const ServiceRow &row : serviceRows) {
        if (row.onlyV4 && !isV4)
            continue;
        if (row.test)
            m_out << "#ifdef " << row.test << '\n';
        const bool isLast = &row == &serviceRows.back() && !m_context.fdMode;
        m_out << m_context.dialect.serviceIndent << "{ " << row.counts
              << (isLast ? " }\n" : " },\n");
        if (row.test)
            m_out << "#endif /* " << row.test << " */\n";
    }
    if (m_context.fdMode)
        m_out << m_context.dialect.serviceIndent << "{ CO_TRUE }\n";
    m_out << "};\n\n";
    m_out << ObjDictIndications::pointerDefinitions(m_context.store, m_context.dialect);
}

void ObjDictHead::writeCounts()
{
    m_out << "\n/* number of objects */\n#define CO_OD_ASSIGN_CNT "
          << m_context.facts.assignment.size() << "u\n#define CO_OBJ_DESC_CNT "
          << m_context.facts.description.size() << "u\n";
}

QString ObjDictHead::userHeader(const ObjDictContext &context)
{
    CodeWriter out;
    out.beginGuard(QStringLiteral("GEN_USER_H"));
    out << "#include <gen_define.h>\n#include <co_canopen.h>\n\n";
    const bool hasLines = context.facts.lineForm;
    out << (hasLines ? "RET_T userOverwriteCobIdSettingsLine(UNSIGNED8 canLine);\n"
                     : "RET_T userOverwriteCobIdSettings(void);\n");
    if (context.dialect.isV4 && context.isOverwriting())
        out << (hasLines ? "RET_T genLoadIndication(UNSIGNED8 canLine, UNSIGNED8 subIndex);\n"
                         : "RET_T genLoadIndication(UNSIGNED8 subIndex);\n");
    out << "RET_T userOverwriteStringDefaultvalues(void);\n";
    if (hasLines) {
        out << "\n/* these functions may be used by the application to initialize only a sub set "
               "of all lines.*/\n"
            << (context.fdMode
                    ? "RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction, BOOL_T "
                      "*pModes);\n"
                    : "RET_T coCanOpenStackInit_common(CO_EVENT_STORE_T pLoadFunction);\n");
        for (const quint8 line : context.facts.activeLines)
            out << "RET_T coCanOpenStackInit_line" << line
                << "(UNSIGNED8 canLine, CO_INIT_OPTION_T *pCoOptions);\n";
        out << "RET_T coCanOpenStackInit_finish(void);\n";
    }
    out << "\n#endif /* GEN_USER */\n";
    return out.text();
}
