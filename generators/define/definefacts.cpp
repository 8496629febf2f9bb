#include "generators/define/definefacts.h"

#include "canopen/cohelper.h"
#include "generators/base/codewriter.h"
#include "generators/base/commongeneratorhelper.h"
#include "generators/define/definecobs.h"
#include "signals/signalwalk.h"
#include "store/objectdatabase.h"

#include <QRegularExpression>

#include <algorithm>
#include <numeric>

namespace {

using Line = DefineFacts::Line;

constexpr quint16 deviceType = 0x1000;
constexpr quint16 storeObject = 0x1010;
constexpr quint16 restoreObject = 0x1011;
constexpr quint16 activeErrorHistory = 0x1032;
constexpr quint16 routingObject = 0x1F2C;
constexpr quint16 nmtStartup = 0x1F80;
constexpr quint64 flyingMasterBit = 1u << 5; // CiA 302-2
constexpr quint16 carProfile = 447;
constexpr quint16 virtualFunctionObject = 0x6000;

/// A function or a pointer to one, as "&getNodeId"; what is no plain expression becomes a name.
QString functionText(const QString &text)
{
    static const QRegularExpression expression(QStringLiteral("^[&*]*[A-Za-z_][A-Za-z0-9_]*$"));
    const QString function = text.trimmed();
    if (function.isEmpty())
        return QStringLiteral("NULL");
    return expression.match(function).hasMatch() ? function : CodeWriter::identifier(function);
}

class Collector
{
public:
    Collector(ObjectDataBase &store, bool isV4)
        : m_store(store), m_helper(&store), m_settings(store), m_isV4(isV4)
    {
    }

    DefineFacts run(const std::function<bool()> &stop);

private:
    void selectLines();
    void collectLine(Line &line);
    void collectSettings(Line &line);
    void collectPgns(Line &line);
    void countReceivePgn(Line &line, const ObjectDataBase::PGN &pgn);
    static void countSafePgn(Line &line, const ObjectDataBase::PGN &pgn);
    [[nodiscard]] static bool isLong(const SignalWalk::Pgn &pgn);
    void collectProfiles();
    [[nodiscard]] bool hasFlyingMaster() const;
    [[nodiscard]] quint32 entries(quint8 line, quint16 index) const;
    [[nodiscard]] quint64 value(quint8 line, quint16 index, quint8 sub) const;
    /// A buffer can't be empty, so what is not set gets the size that the form offers.
    [[nodiscard]] quint32 bufferSize(const QString &key, quint8 line, quint32 offered) const;

    ObjectDataBase &m_store;
    CommonGeneratorHelper m_helper;
    ProjectSettings m_settings;
    bool m_isV4;
    DefineFacts m_facts;
};

DefineFacts Collector::run(const std::function<bool()> &stop)
{
    m_facts.dictionary = DictionaryFacts::collect(
        m_store, DictionaryOptions::of(m_store, /*addressRows=*/!m_isV4), stop);
    m_facts.fdMode = m_settings.isOn(QStringLiteral("canfd_supported"));
    m_facts.hasUds = m_helper.hasUds();
    m_facts.hasIsoTp = m_helper.hasIsoTp();
    selectLines();
    m_facts.isMaster = std::any_of(m_facts.lines.begin(), m_facts.lines.end(), [&](const Line &l) {
        return m_settings.lineCount(QStringLiteral("nmtmaster"), l.line) > 0;
    });
    m_facts.hasFlyingMaster = hasFlyingMaster();
    for (Line &line : m_facts.lines) {
        collectLine(line);
        m_facts.hasUsdoServer |= line.usdoServers > 0;
        m_facts.hasUsdoClient |= line.usdoClients > 0;
    }
    collectProfiles();
    for (Line &line : m_facts.lines)
        line.cobs = DefineCobs::count(m_facts, line, m_settings);
    return std::move(m_facts);
}

/// All lines of a project that mixes protocols. Where there is only CANopen, a line without
/// objects is left out, as it is in the dictionary.
void Collector::selectLines()
{
    const QList<quint8> all = m_helper.lines();
    for (const quint8 number : all) {
        Line line;
        line.line = number;
        const LineType &type = m_store.lineType(number);
        const DictionaryFacts::LineCounts *counts = m_facts.dictionary.countsOf(number);
        if (counts)
            line.counts = *counts;
        // A line whose type was never set is what its objects make it.
        line.hasCANopen =
            type.hasCANopen || (type.number == LineType::Unknown && line.counts.objects);
        line.hasJ1939 = type.hasJ1939;
        line.hasRawCAN = type.hasRawCan;
        m_facts.lines.append(line);
    }
    m_facts.hasCANopen = m_facts.any(&Line::hasCANopen);
    if (m_facts.hasCANopen && !m_facts.any(&Line::hasJ1939) && !m_facts.any(&Line::hasRawCAN)) {
        m_facts.lines.removeIf([this](const Line &line) {
            return !m_facts.dictionary.activeLines.contains(line.line);
        });
    }
    if (m_facts.lines.isEmpty())
        m_facts.lines.append(Line());
    m_facts.lineForm = m_facts.lines.size() > 1 || m_facts.dictionary.lineForm;
}

quint32 Collector::entries(quint8 line, quint16 index) const
{
    const DictionaryFacts::Object *object = m_facts.dictionary.findObject(line, index);
    return object ? quint32(std::max(object->subCount - 1, 0)) : 0;
}

quint64 Collector::value(quint8 line, quint16 index, quint8 sub) const
{
    const DictionaryFacts::Entry *entry = m_facts.dictionary.find(line, index, sub);
    return entry ? entry->value : 0;
}

quint32 Collector::bufferSize(const QString &key, quint8 line, quint32 offered) const
{
    const quint32 size = m_settings.lineCount(key, line);
    return size > 0 ? size : offered;
}

void Collector::collectLine(Line &line)
{
    collectSettings(line);
    const quint8 number = line.line;
    line.profile = quint32(value(number, deviceType, m_facts.fdMode ? 1 : 0) & 0xFFFF);
    line.activeErrorHistory = entries(number, activeErrorHistory);
    line.storeEntries = std::max(entries(number, storeObject), entries(number, restoreObject));
    line.routings = m_settings.lineCount(QStringLiteral("routing_counts"), number);
    if (m_isV4)
        line.routings = std::max(line.routings, entries(number, routingObject));
    const quint32 chosen = m_settings.lineCount(QStringLiteral("max_slave_assignment"), number);
    const auto possible = quint32(line.counts.slaveAssignments);
    line.maximumAssignments = chosen > 0 ? std::min(chosen, possible) : possible;
    if (line.hasJ1939)
        collectPgns(line);
    if (line.hasRawCAN) {
        line.receiveCanIds = quint32(m_store.getCANIDList(number, ObjectDataBase::receive).size());
        line.transmitCanIds =
            quint32(m_store.getCANIDList(number, ObjectDataBase::transmit).size());
    }
}

void Collector::collectSettings(Line &line)
{
    const quint8 number = line.line;
    const auto setting = [&](const char *key) {
        return m_settings.lineCount(QLatin1String(key), number);
    };
    constexpr quint32 offeredReceiveSize = 10;
    constexpr quint32 offeredTransmitSize = 5;
    line.receiveBuffers =
        bufferSize(QStringLiteral("receivebuffersize"), number, offeredReceiveSize);
    line.transmitBuffers =
        bufferSize(QStringLiteral("transmitbuffersize"), number, offeredTransmitSize);
    if (setting("usdo_server_enabled") > 0)
        line.usdoServers = setting("usdo_server_cnt");
    if (setting("usdo_client_enabled") > 0)
        line.usdoClients = setting("usdo_client_cnt");
    line.hasUdsServer = setting("udsserver_supported") > 0;
    line.hasUdsClient = setting("udsclient_supported") > 0;
    line.udsClients = line.hasUdsClient ? setting("uds_client_cnt") : 0;
    line.isoTpClients = setting("isotp_client_con") + line.udsClients;
    line.isoTpServers = setting("isotp_server_con");
    line.nodeId = setting("co_node_id");
    line.nodeIdFunction =
        functionText(m_settings.lineText(QStringLiteral("co_node_id_fct"), number));
}

void Collector::countReceivePgn(Line &line, const ObjectDataBase::PGN &pgn)
{
    const quint32 sources = m_helper.sourceAddresses(pgn);
    ++line.receivePgnConfigs;
    line.receivePgns += sources;
    line.hasMultiSourcePgns |= sources > 1;
}

void Collector::countSafePgn(Line &line, const ObjectDataBase::PGN &pgn)
{
    const bool isReceive = pgn.direction == ObjectDataBase::receive;
    ++(isReceive ? line.safeReceivePgns : line.safeTransmitPgns);
    line.safetyTypes.append(pgn.safetyType);
}

/// Safety messages are data of their own, and the stack brings the address claim.
void Collector::collectPgns(Line &line)
{
    SignalWalk::pgns(m_store, line.line, [&](const SignalWalk::Pgn &pgn) {
        const bool isReceive = pgn.group.direction == ObjectDataBase::receive;
        if (!isReceive && pgn.isAddressClaim())
            return;
        if (m_helper.isSafetyMessage(pgn.group))
            countSafePgn(line, pgn.group);
        else if (isReceive)
            countReceivePgn(line, pgn.group);
        else
            ++line.transmitPgns;
        line.hasLongPgns |= isLong(pgn);
    });
}

bool Collector::isLong(const SignalWalk::Pgn &pgn)
{
    constexpr int frameBits = 64;
    return std::ranges::any_of(pgn.spns, [](const ObjectDataBase::SPN &spn) {
        const int length = std::max<int>(COHelper::getDataLengthBits(spn.dataType), spn.bitSize);
        return spn.bitPosition + length > frameBits;
    });
}

void Collector::collectProfiles()
{
    for (const Line &line : std::as_const(m_facts.lines)) {
        if (line.profile > 0 && !m_facts.profiles.contains(line.profile))
            m_facts.profiles.append(line.profile);
        if (line.profile == carProfile)
            m_facts.virtualFunctions |= (value(line.line, virtualFunctionObject, 1) & 0xFFFFFFFF) |
                                        value(line.line, virtualFunctionObject, 2) << 32;
    }
}

bool Collector::hasFlyingMaster() const
{
    if (!m_isV4)
        return m_settings.isOn(QStringLiteral("flyma_supported"));
    return m_facts.isMaster &&
           std::any_of(m_facts.lines.begin(), m_facts.lines.end(), [this](const Line &line) {
               return value(line.line, nmtStartup, 0) & flyingMasterBit;
           });
}

} // namespace

// --- Sums ----------------------------------------------------------------------------------------

quint64 DefineFacts::sum(quint32 Line::*count) const
{
    return std::accumulate(
        lines.begin(), lines.end(), quint64(0),
        [count](quint64 total, const Line &line) { return total + line.*count; });
}

quint64 DefineFacts::sum(int DictionaryFacts::LineCounts::*count) const
{
    const QList<quint32> values = list(count);
    return std::accumulate(values.begin(), values.end(), quint64(0));
}

QList<quint32> DefineFacts::list(quint32 Line::*count) const
{
    QList<quint32> values;
    for (const Line &line : lines)
        values.append(line.*count);
    return values;
}

QList<quint32> DefineFacts::list(int DictionaryFacts::LineCounts::*count) const
{
    QList<quint32> values;
    for (const Line &line : lines)
        values.append(quint32(line.counts.*count));
    return values;
}

bool DefineFacts::any(bool Line::*property) const
{
    return std::any_of(lines.begin(), lines.end(),
                       [property](const Line &line) { return line.*property; });
}

bool DefineFacts::hasSafetyType(quint8 type) const
{
    return std::any_of(lines.begin(), lines.end(),
                       [type](const Line &line) { return line.safetyTypes.contains(type); });
}

DefineFacts DefineFacts::collect(ObjectDataBase &store, bool isV4,
                                 const std::function<bool()> &stop)
{
    return Collector(store, isV4).run(stop);
}
