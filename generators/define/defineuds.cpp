#include "generators/define/definesections.h"

#include "generators/base/indicationtable.h"
#include "store/objectdatabase.h"

#include <algorithm>

void DefineSections::writeIsoTpAndUds()
{
    if (!m_facts.hasIsoTp)
        return;
    writeIsoTp();
    writeUds();
    if (isV4() && number("uds_static_indication") == 1)
        writeUdsBindings();
    m_out.out() << '\n';
}

void DefineSections::writeIsoTp()
{
    m_out.out() << "\n/* ISO-TP Defines */\n";
    m_out.flag(QStringLiteral("ISOTP_SUPPORTED"));
    m_out.count(QStringLiteral("ISOTP_CLIENT_CONNECTION_CNT"), m_facts.sum(&Line::isoTpClients));
    m_out.count(QStringLiteral("ISOTP_SERVER_CONNECTION_CNT"), m_facts.sum(&Line::isoTpServers));
    m_out.list(QStringLiteral("ISOTP_CLIENT_COUNTS"), m_facts.list(&Line::isoTpClients));
    m_out.list(QStringLiteral("ISOTP_SERVER_COUNTS"), m_facts.list(&Line::isoTpServers));
    m_out.count(QStringLiteral("ISOTP_EVENT_DYNAMIC_SERVER"), number("isotp_dyn_server_ind"));
    m_out.count(QStringLiteral("ISOTP_EVENT_DYNAMIC_CLIENT"), number("isotp_dyn_client_ind"));
    m_out.count(QStringLiteral("ISOTP_EVENT_DYNAMIC_SSPLIT"), number("isotp_dyn_split_ind"));
    m_out.count(QStringLiteral("ISOTP_EVENT_DYNAMIC_CLIENT_TXACK"),
                number("isotp_dyn_client_txack_ind"));
    m_out.count(QStringLiteral("ISOTP_CONNECTION_CNT"), number("isotp_connection_cnt"));
}

void DefineSections::writeUds()
{
    if (m_facts.any(&Line::hasUdsServer)) {
        m_out.flag(QStringLiteral("UDS_SERVER_SUPPORTED"));
        m_out.count(QStringLiteral("UDS_SECURITY_SEED_KEY_LEN"), number("uds_seedkey_length"));
        m_out.count(QStringLiteral("UDS_SESSION_TIMEOUT"), number("uds_session_timeout"));
        const bool hasAuthentication =
            std::any_of(m_facts.lines.begin(), m_facts.lines.end(), [this](const Line &line) {
                return line.hasUdsServer &&
                       m_settings.store().getUDSServiceActive(line.line, UDS::SID::Authentication);
            });
        m_out.flagIf(isV4() && hasAuthentication, QStringLiteral("UDS_AUTHENTICATION_REQUIRED"));
        m_out.flagIf(isOn("uds_only_appl_session_check"),
                     QStringLiteral("UDS_ONLY_APPL_REQUIRED_SESSION_CHECK"));
        m_out.flagIf(isOn("uds_only_appl_security_check"),
                     QStringLiteral("UDS_ONLY_APPL_SECURITY_LEVEL_CHECK"));
    }
    if (m_facts.any(&Line::hasUdsClient)) {
        m_out.flag(QStringLiteral("UDS_CLIENT_SUPPORTED"));
        m_out.count(QStringLiteral("UDS_CLIENT_CNT"), m_facts.sum(&Line::udsClients));
        if (isV4())
            m_out.count(QStringLiteral("UDSCLIENT_EVENT_DYNAMIC_DATA_DOWNLOAD"),
                        number("uds_client_partial_download"));
    }
}

void DefineSections::writeUdsBindings()
{
    m_out.out() << "\n/* static UDS indication binding */\n";
    for (const IndicationTable::UdsBinding &binding : IndicationTable::udsBindings())
        m_out.flagIf(!IndicationTable::functionName(m_settings.store(), binding.key).isEmpty(),
                     QLatin1String(binding.define));
}
