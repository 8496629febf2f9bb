#include "generators/define/definesections.h"

#include "canopen/helper.h"

#include <QRegularExpression>
#include <QStringList>

void DefineSections::writeCAN()
{
    const quint32 transmit = number("user_tx_cob");
    const quint32 receive = number("user_rx_cob");
    m_out.count(QStringLiteral("USER_TRANSMIT_MSG_CNT"), transmit);
    m_out.count(QStringLiteral("USER_RECEIVE_MSG_CNT"), receive);
    m_out.flagIf(transmit > 0 || receive > 0, QStringLiteral("CORE_USER_EXTENSION_SUPPORTED"));
    if (isOn("sorted_coblist")) {
        m_out.out() << "/* Use of sorted COB list*/\n";
        m_out.flag(QStringLiteral("CORE_COB_SORTED_LIST"));
    }
    m_out.flagIf(isOn("only_one_hb_buffer"), QStringLiteral("CO_ONE_HB_CONSUMER_COB"));
    m_out.out() << "/* Definition of CAN queue sizes */\n";
    m_out.number(QStringLiteral("CORE_CONFIG_REC_BUFFER_CNT"), m_facts.sum(&Line::receiveBuffers));
    m_out.number(QStringLiteral("CORE_CONFIG_TRANS_BUFFER_CNT"),
                 m_facts.sum(&Line::transmitBuffers));
    m_out.flagIf(m_facts.fdMode, QStringLiteral("CORE_CANFD_SUPPORTED"));
    m_out.out() << '\n';
}

void DefineSections::writeBootLoaderBuffers()
{
    // Numbers and macros pass; anything else becomes a name, so that the line stays valid C.
    static const QRegularExpression word(QStringLiteral("^[A-Za-z0-9_]+$"));
    const auto counts = [this](const char *key, const char *offered) {
        QString text = m_settings.text(QLatin1String(key)).trimmed();
        if (text.isEmpty())
            text = QLatin1String(offered);
        QStringList items = text.split(QLatin1Char(','));
        for (QString &item : items) {
            item = item.trimmed();
            if (!word.match(item).hasMatch())
                item = CodeWriter::identifier(item);
        }
        return Helper::addLowerCaseUtoNumberLists(items.join(QLatin1String(", ")));
    };
    m_out.text(QStringLiteral("CORE_REC_BUFFER_COUNTS"), counts("receivebuffersize", "10"));
    m_out.text(QStringLiteral("CORE_TR_BUFFER_COUNTS"), counts("transmitbuffersize", "5"));
}

void DefineSections::writeLines(bool withBuffers, bool withCANopen)
{
    m_out.out() << "/* Line Settings */\n";
    if (m_facts.lineForm) {
        m_out.flag(QStringLiteral("CAN_MULTI_LINE"));
        m_out.number(QStringLiteral("CAN_MULTI_LINE_CNT"), quint64(m_facts.lines.size()));
    }
    m_out.flagIf(m_facts.hasCANopen, QStringLiteral("CANOPEN_SUPPORTED"));
    if (withBuffers) {
        m_out.out() << "/* Number of receive/transmit buffer entries per line */\n";
        m_out.number(QStringLiteral("CORE_REC_BUFFER_CNT"), m_facts.sum(&Line::receiveBuffers));
        m_out.number(QStringLiteral("CORE_TR_BUFFER_CNT"), m_facts.sum(&Line::transmitBuffers));
        m_out.list(QStringLiteral("CORE_REC_BUFFER_COUNTS"), m_facts.list(&Line::receiveBuffers));
        m_out.list(QStringLiteral("CORE_TR_BUFFER_COUNTS"), m_facts.list(&Line::transmitBuffers));
    }
    if (withCANopen) {
        m_out.out() << "/* Number of objects per line */\n";
        for (const Line &line : m_facts.lines)
            m_out.number(QStringLiteral("CO_OBJECTS_LINE_%1_CNT").arg(line.line),
                         quint64(line.counts.objects));
        m_out.list(QStringLiteral("CO_OBJECT_COUNTS"), m_facts.list(&Counts::objects));
    }
    m_out.out() << "/* COB definitions */\n";
    m_out.number(QStringLiteral("CORE_COB_CNT"), m_facts.sum(&Line::cobs), ' ');
    if (m_facts.lines.size() > 1)
        m_out.list(QStringLiteral("CORE_COB_COUNTS"), m_facts.list(&Line::cobs));
    else
        m_out.text(QStringLiteral("CORE_COB_COUNTS"), m_out.word(QStringLiteral("CORE_COB_CNT")));
    m_out.count(QStringLiteral("CORE_EVENT_DYNAMIC_CAN"), number("event_can"));
    if (withCANopen)
        writeServiceCounts();
    m_out.out() << '\n';
}

void DefineSections::writeServiceCounts()
{
    const QList<quint32> storeEntries = m_facts.list(&Line::storeEntries);
    m_out.count(QStringLiteral("CO_STORE_CNT_MAX"),
                *std::max_element(storeEntries.begin(), storeEntries.end()));
    m_out.out() << "/* Definition of numbers of CANopen services */\n";
    m_out.list(QStringLiteral("CO_TXPDO_COUNTS"), m_facts.list(&Counts::transmitPdos));
    m_out.list(QStringLiteral("CO_RXPDO_COUNTS"), m_facts.list(&Counts::receivePdos));
    if (m_facts.sum(&Counts::srdos) > 0)
        m_out.list(QStringLiteral("CO_SRDO_COUNTS"), m_facts.list(&Counts::srdos));
    m_out.list(QStringLiteral("CO_SSDO_COUNTS"), m_facts.list(&Counts::sdoServers));
    m_out.list(QStringLiteral("CO_CSDO_COUNTS"), m_facts.list(&Counts::sdoClients));
    if (isV4() && m_facts.hasUsdoServer)
        m_out.list(QStringLiteral("CO_USDO_SERVER_MAX_CONN_COUNTS"),
                   m_facts.list(&Line::usdoServers));
    if (isV4() && m_facts.hasUsdoClient)
        m_out.list(QStringLiteral("CO_USDO_CLIENT_MAX_CONN_COUNTS"),
                   m_facts.list(&Line::usdoClients));
    m_out.list(QStringLiteral("CO_ERR_CTRL_COUNTS"), m_facts.list(&Counts::heartbeatConsumers));
    m_out.list(QStringLiteral("CO_ERR_HIST_COUNTS"), m_facts.list(&Counts::errorHistory));
    m_out.list(QStringLiteral("CO_ACT_ERR_HIST_COUNTS"), m_facts.list(&Line::activeErrorHistory));
    m_out.list(QStringLiteral("CO_EMCY_CONS_COUNTS"), m_facts.list(&Counts::emcyConsumers));
    if (m_facts.sum(&Line::routings) > 0)
        m_out.list(QStringLiteral("CO_NETWORK_ROUTING_COUNTS"), m_facts.list(&Line::routings));
    m_out.list(QStringLiteral("CO_ASSIGN_COUNTS"), m_facts.list(&Counts::slaveAssignments));
    m_out.list(QStringLiteral("CO_MAX_ASSIGN_COUNTS"), m_facts.list(&Line::maximumAssignments));
    m_out.text(QStringLiteral("CO_GUARDING_COUNTS"), QStringLiteral("CO_MAX_ASSIGN_COUNTS"));
    if (m_facts.sum(&Line::maximumAssignments) > 0)
        m_out.text(QStringLiteral("CO_GUARDING_CNT"), QStringLiteral("CO_MAX_SLAVE_ASSIGNMENT_CNT"),
                   ' ');
    writeNodes();
}

void DefineSections::writeNodes()
{
    m_out.list(QStringLiteral("CO_NODE_IDS"), m_facts.list(&Line::nodeId));
    QStringList functions;
    for (const Line &line : m_facts.lines)
        functions.append(line.nodeIdFunction);
    m_out.text(QStringLiteral("CO_NODE_ID_FUNCTIONS"), functions.join(QLatin1String(", ")));
}
