#include "generators/define/definecobs.h"

#include <algorithm>
#include <array>

namespace {

using Facts = DictionaryFacts;
using Line = DefineFacts::Line;

struct CountedService
{
    int Facts::LineCounts::*count;
    quint32 cobs; ///< of each
};

// CiA 301: an SDO has one message for each direction, CiA 304: an SRDO sends its data twice.
constexpr std::array<CountedService, 6> countedServices = {
    {{&Facts::LineCounts::transmitPdos, 1},
     {&Facts::LineCounts::receivePdos, 1},
     {&Facts::LineCounts::sdoServers, 2},
     {&Facts::LineCounts::sdoClients, 2},
     {&Facts::LineCounts::srdos, 2},
     {&Facts::LineCounts::emcyConsumers, 1}}};

struct ObjectService
{
    quint16 index;
    quint32 cobs;
};

// SYNC, TIME, EMCY (CiA 301), GFC (CiA 304), request of a dynamic SDO connection (CiA 302-5).
constexpr std::array<ObjectService, 5> objectServices = {
    {{0x1005, 1}, {0x1012, 1}, {0x1014, 1}, {0x1300, 1}, {0x1F10, 1}}};

// NMT command, and the one message of boot-up, heartbeat and guarding answer.
constexpr quint32 basicCobs = 2;
constexpr quint32 lssCobs = 2;          // CiA 305
constexpr quint32 flyingMasterCobs = 6; // CiA 302-2
constexpr quint32 cobsOfUsdo = 2;       // CiA 1301
constexpr quint32 negotiationCobs = 2;
constexpr quint32 sleepCobs = 1;
// Request, acknowledge, address claim, and the two messages of the transport protocol, in both
// directions (SAE J1939-21, -81).
constexpr quint32 j1939Cobs = 10;
constexpr quint32 udsServerCobs = 3; // physical and functional request, response (ISO 15765-2)
constexpr quint32 isoTpCobs = 2;

quint32 canopenCobs(const DefineFacts &facts, const Line &line, const ProjectSettings &settings)
{
    quint32 cobs = basicCobs;
    for (const CountedService &service : countedServices)
        cobs += quint32(line.counts.*service.count) * service.cobs;
    for (const ObjectService &service : objectServices) {
        if (facts.dictionary.findObject(line.line, service.index))
            cobs += service.cobs;
    }
    const auto consumers = quint32(line.counts.heartbeatConsumers);
    cobs += settings.isOn(QStringLiteral("only_one_hb_buffer")) ? std::min<quint32>(consumers, 1)
                                                                : consumers;
    cobs += line.maximumAssignments;
    cobs += (line.usdoServers + line.usdoClients) * cobsOfUsdo;
    const auto add = [&cobs](bool isUsed, quint32 number) { cobs += isUsed ? number : 0; };
    add(settings.lineCount(QStringLiteral("lss_supported"), line.line) > 0, lssCobs);
    add(facts.hasFlyingMaster, flyingMasterCobs);
    add(settings.isOn(QStringLiteral("idnego_supported")), negotiationCobs);
    add(settings.isOn(QStringLiteral("sleep_mode_selection")), sleepCobs);
    return cobs;
}

} // namespace

quint32 DefineCobs::count(const DefineFacts &facts, const Line &line,
                          const ProjectSettings &settings)
{
    quint32 cobs = 0;
    if (line.hasCANopen)
        cobs += canopenCobs(facts, line, settings);
    if (line.hasJ1939)
        cobs += j1939Cobs + line.receivePgns + line.transmitPgns +
                2 * (line.safeReceivePgns + line.safeTransmitPgns);
    cobs += line.receiveCanIds + line.transmitCanIds;
    // UDS runs over ISO-TP connections, of which the clients are counted already.
    if (line.hasUdsServer)
        cobs += udsServerCobs;
    if (settings.isOn(QStringLiteral("isotp_supported")) || facts.hasUds)
        cobs += (line.isoTpClients + line.isoTpServers) * isoTpCobs;
    for (const char *key : {"user_tx_cob", "user_rx_cob", "additional_cob_count"})
        cobs += settings.lineCount(QLatin1String(key), line.line);
    return cobs;
}
