#include "generators/define/definesections.h"

#include "store/objectdatabase.h"

#include <QStringList>

#include <array>

namespace {

/// A switch or number that stands in one J1939 setting; a row with a parent only behind it.
struct SettingRow
{
    const char *key;
    const char *define;
    bool isNumber = false;
    const char *parent = nullptr;
    bool onlyV3 = false;
    quint32 offered = 0; ///< what the form shows in place of 0 and of no number
};

constexpr quint32 offeredCycleTime = 50;   // milliseconds
constexpr quint32 offeredBufferSize = 200; // bytes

constexpr std::array<SettingRow, 25> serviceRows = {
    {{"rxindication_cnt", "J1939_REC_PGN_INDICATION_CNT", true},
     {"rxcheckindication_cnt", "J1939_REC_PGN_CHECK_INDICATION_CNT", true, nullptr, true},
     {"txindication_cnt", "J1939_TR_PGN_INDICATION_CNT", true},
     {"requestindication_cnt", "J1939_REQ_PGN_INDICATION_CNT", true},
     {"acknowledgeindication_cnt", "J1939_ACK_PGN_INDICATION_CNT", true},
     {"canindication_cnt", "J1939_CAN_INDICATION_CNT", true},
     {"nmea2000groupindication_cnt", "J1939_NMEA_GROUP_INDICATION_CNT", true},
     {"recalladdrclaims", "J1939_REC_ALL_CLAIM_SUPPORT"},
     {"spnchanged", "J1939_EVENT_SPN_CHANGED"},
     {"bamsupport", "J1939_BAM_SUPPORTED"},
     {"bamcycletime", "J1939_BAM_CYLE_TIME", true, "bamsupport", false, offeredCycleTime},
     {"nmea2000support", "J1939_NMEA2000_SUPPORTED"},
     {"cmdtsupport", "J1939_CMDT_SUPPORTED"},
     {"cmdtpackets", "J1939_CMDT_MAX_PACKETS", true, "cmdtsupport"},
     {"diagsupport", "J1939_DIAGNOSTIC_SUPPORTED"},
     {"dm_receivesize", "J1939_DIAG_REC_BUF_SIZE", true, "diagsupport", false, offeredBufferSize},
     {"dm_transmitsize", "J1939_DIAG_TR_BUF_SIZE", true, "diagsupport", false, offeredBufferSize},
     {"diagtoolsupport", "J1939_DIAGNOSTIC_TOOL_SUPPORTED"},
     {"dmtool_receivesize", "J1939_DIAGTOOL_REC_BUF_SIZE", true, "diagtoolsupport", false,
      offeredBufferSize},
     {"dmtool_transmitsize", "J1939_DIAGTOOL_TR_BUF_SIZE", true, "diagtoolsupport", false,
      offeredBufferSize},
     {"requestsupport", "J1939_REQUEST_SUPPORTED"},
     {"propsupport", "J1939_PROPRIETARY_SUPPORTED"},
     {"dynsupport", "J1939_DYNAMIC_PGN"},
     {"bitwisemapping", "BITWISE_MAPPING"},
     {"j1939fd_11bitmultipg", "J1939_MULTI_PG_11BIT"}}};

struct DiagnosticFamily
{
    const char *parent;
    const char *key;
    const char *define;
};

constexpr std::array<DiagnosticFamily, 2> diagnosticFamilies = {
    {{"diagsupport", "diagsupport_dm%1", "J1939_DIAGNOSTIC_DM%1_SUPPORTED"},
     {"diagtoolsupport", "diagsupport_dmtool%1", "J1939_DIAGNOSTIC_TOOL_DM%1_SUPPORTED"}}};

constexpr int diagnosticMessages = 57; // SAE J1939-73

} // namespace

void DefineSections::writeJ1939(bool isJ1939Only)
{
    m_out.out() << "/* J1939 Defines */\n";
    m_out.flag(QStringLiteral("J1939_SUPPORTED"));
    if (!isV4())
        m_out.text(QStringLiteral("J1939_TIMER_INTERVAL"), QStringLiteral("CO_TIMER_INTERVAL"));
    writePgnCounts();
    writeSafety();
    writeFd();
    writeJ1939Services();
    writeDiagnostics();
    if (isJ1939Only &&
        m_settings.count(SettingKey::j1939(QStringLiteral("cia510serversupport"))) == 1)
        writeServerCase();
    m_out.out() << '\n';
}

void DefineSections::writePgnCounts()
{
    const bool hasServer =
        m_settings.isOn(SettingKey::j1939(QStringLiteral("cia510serversupport")));
    const bool hasClient =
        m_settings.isOn(SettingKey::j1939(QStringLiteral("cia510clientsupport")));
    m_out.flagIf(hasServer || hasClient, QStringLiteral("J1939_CAM11_CAM21_SUPPORTED"));
    if (isV4()) {
        m_out.count(QStringLiteral("J1939_RECEIVE_PGN_CFG_CNT"),
                    m_facts.sum(&Line::receivePgnConfigs));
        m_out.list(QStringLiteral("J1939_RECEIVE_PGN_CFG_COUNTS"),
                   m_facts.list(&Line::receivePgnConfigs));
    }
    quint32 Line::*received = isV4() ? &Line::receivePgns : &Line::receivePgnConfigs;
    m_out.count(QStringLiteral("J1939_RECEIVE_PGN_CNT"), m_facts.sum(received));
    m_out.count(QStringLiteral("J1939_TRANSMIT_PGN_CNT"), m_facts.sum(&Line::transmitPgns));
    m_out.list(QStringLiteral("J1939_RECEIVE_PGN_COUNTS"), m_facts.list(received));
    m_out.list(QStringLiteral("J1939_TRANSMIT_PGN_COUNTS"), m_facts.list(&Line::transmitPgns));
    QList<quint32> servers;
    QList<quint32> clients;
    for (const Line &line : m_facts.lines) {
        servers.append(line.hasJ1939 && hasServer ? 1 : 0);
        clients.append(line.hasJ1939 && hasClient ? 1 : 0);
    }
    m_out.list(QStringLiteral("J1939_SSDO_COUNTS"), servers);
    m_out.list(QStringLiteral("J1939_CSDO_COUNTS"), clients);
    m_out.flagIf(isV4() && m_facts.any(&Line::hasLongPgns),
                 QStringLiteral("J1939_PGN_BUFFER_USAGE"));
    m_out.flagIf(isV4() && m_facts.any(&Line::hasMultiSourcePgns),
                 QStringLiteral("J1939_MULTI_SRC_ADDR"));
}

void DefineSections::writeSafety()
{
    if (!m_settings.isOn(SettingKey::j1939(QStringLiteral("safetysupport"))))
        return;
    m_out.flag(QStringLiteral("J1939_SDG_SUPPORTED"));
    m_out.flagIf(isV4() && m_facts.hasSafetyType(1), QStringLiteral("J1939_SDG_TYPE_1_SUPPORTED"));
    m_out.flagIf(isV4() && m_facts.hasSafetyType(2), QStringLiteral("J1939_SDG_TYPE_2_SUPPORTED"));
    m_out.count(QStringLiteral("J1939_SDG_TIMER_INTERVAL"),
                m_settings.count(SettingKey::j1939(QStringLiteral("sdm_timer_interval"))));
    if (isV4())
        m_out.count(QStringLiteral("J1939_SDG_REC_ADDR_CNT"),
                    m_settings.count(SettingKey::j1939(QStringLiteral("sdm_rec_addr_cnt"))));
    m_out.count(QStringLiteral("J1939_SDG_TRANS_CNT"), m_facts.sum(&Line::safeTransmitPgns));
    m_out.list(QStringLiteral("J1939_SDG_TRANS_COUNTS"), m_facts.list(&Line::safeTransmitPgns));
    m_out.count(QStringLiteral("J1939_SDG_REC_CNT"), m_facts.sum(&Line::safeReceivePgns));
    m_out.list(QStringLiteral("J1939_SDG_REC_COUNTS"), m_facts.list(&Line::safeReceivePgns));
}

/// Buffers of messages that carry several PGNs (SAE J1939-22); the list has one item a line.
void DefineSections::writeFd()
{
    if (!m_facts.fdMode)
        return;
    const QString text =
        m_settings.text(SettingKey::j1939(QStringLiteral("j1939fd_multipgbuffer")));
    const QStringList items =
        (text.trimmed().isEmpty() ? QStringLiteral("1,1") : text).split(QLatin1Char(','));
    QList<quint32> buffers;
    quint64 all = 0;
    for (qsizetype i = 0; i < m_facts.lines.size(); ++i) {
        buffers.append(ProjectSettings::toCount(items.at(std::min(i, items.size() - 1))));
        all += buffers.back();
    }
    m_out.count(QStringLiteral("J1939_DEST_BUFFER_CNT"), all);
    m_out.list(QStringLiteral("J1939_DEST_BUFFER_COUNTS"), buffers);
}

void DefineSections::writeJ1939Services()
{
    for (const SettingRow &row : serviceRows) {
        if ((row.onlyV3 && isV4()) ||
            (row.parent && !m_settings.isOn(SettingKey::j1939(QLatin1String(row.parent)))))
            continue;
        const quint32 stored = m_settings.count(SettingKey::j1939(QLatin1String(row.key)));
        const quint32 value = stored > 0 ? stored : row.offered;
        m_out.count(QLatin1String(row.define), row.isNumber ? value : (value > 0 ? 1 : 0));
    }
}

void DefineSections::writeDiagnostics()
{
    for (const DiagnosticFamily &family : diagnosticFamilies) {
        if (!m_settings.isOn(SettingKey::j1939(QLatin1String(family.parent))))
            continue;
        for (int message = 1; message <= diagnosticMessages; ++message)
            m_out.flagIf(
                m_settings.isOn(SettingKey::j1939(QString::fromLatin1(family.key).arg(message))),
                QString::fromLatin1(family.define).arg(message));
    }
}

/// The SDO server of a J1939 device (CiA 510) is that of the CANopen part.
void DefineSections::writeServerCase()
{
    for (const char *name :
         {"CO_SDO_SERVER_CNT", "CO_SDO_CLIENT_CNT", "CO_EVENT_DYNAMIC_SDO_SERVER_READ",
          "CO_EVENT_DYNAMIC_SDO_SERVER_WRITE", "CO_EVENT_DYNAMIC_SDO_CLIENT_READ",
          "CO_EVENT_DYNAMIC_SDO_CLIENT_WRITE"})
        m_out.flag(QLatin1String(name));
    // They decide about columns and members of the server's dictionary.
    m_out.flagIf(isOn("limit_check"), QStringLiteral("CO_CONFIG_LIMIT_CHECK"));
    m_out.flagIf(m_facts.dictionary.hasExtendedTypes, QStringLiteral("CO_EXTENDED_DATA_TYPES"));
    m_out.flagIf(m_facts.dictionary.hasUtf8Strings, QStringLiteral("CO_UTF8_DATA_TYPE"));
}

void DefineSections::writeRawCAN()
{
    m_out.out() << "\n/* CAN RAW Defines */\n";
    m_out.flag(QStringLiteral("RAWCAN_SUPPORTED"));
    m_out.count(QStringLiteral("RAWCAN_RECEIVE_CNT"), m_facts.sum(&Line::receiveCanIds));
    m_out.list(QStringLiteral("RAWCAN_RECEIVE_COUNTS"), m_facts.list(&Line::receiveCanIds));
    m_out.count(QStringLiteral("RAWCAN_TRANSMIT_CNT"), m_facts.sum(&Line::transmitCanIds));
    m_out.list(QStringLiteral("RAWCAN_TRANSMIT_COUNTS"), m_facts.list(&Line::transmitCanIds));
    m_out.count(QStringLiteral("RAWCAN_REC_INDICATION_CNT"), number("rxindication_cnt"));
    m_out.count(QStringLiteral("RAWCAN_TR_INDICATION_CNT"), number("txindication_cnt"));
    m_out.count(QStringLiteral("RAWCAN_CHANGED_INDICATION_CNT"), number("changedindication_cnt"));
    m_out.flagIf(isV4() && number("changedindication_cnt") > 0,
                 QStringLiteral("CORE_OBJECT_CHANGED"));
    m_out.out() << '\n';
}
