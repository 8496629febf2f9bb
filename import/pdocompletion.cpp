#include "import/pdocompletion.h"

#include "canopen/cohelper.h"
#include "canopen/objectranges.h"

#include <algorithm>
#include <array>

namespace {

using Entry = ObjectDataBase::SUBINDEX_DATA_T;
using Entries = QList<std::pair<quint8, Entry>>;

constexpr quint32 mostPdos = ObjectRanges::receivePdos.size(); // of one direction
constexpr quint8 mappingEntries = 8; // objects of a byte in a classical frame

// Numbers of the structures of CiA 301.
constexpr quint16 communicationStructure = 0x20;
constexpr quint16 mappingStructure = 0x21;

struct Parameter
{
    quint8 subindex;
    const char *name;
    quint16 dataType;
    const char *value;
};

// An invalid COB-ID keeps the PDO off; 255 is event driven by the device profile.
constexpr std::array parameters = {
    Parameter{1, "COB-ID", CAN::UNSIGNED32, "0x80000000"},
    Parameter{2, "Transmission Type", CAN::UNSIGNED8, "0xFF"},
    Parameter{3, "Inhibit Time", CAN::UNSIGNED16, "0"},
    Parameter{4, "Reserved", CAN::UNSIGNED8, "0"},
    Parameter{5, "Event Timer", CAN::UNSIGNED16, "0"},
    Parameter{6, "SYNC Start Value", CAN::UNSIGNED8, "0"},
};
constexpr quint32 alwaysThere = 0b000011;
constexpr quint32 receiveEntries = 0b000011;
constexpr quint32 transmitEntries = 0b010111;

Entry makeEntry(const QString &name, quint16 dataType, const QString &value, const char *access)
{
    Entry entry;
    entry.name = name;
    entry.datatype = dataType;
    entry.accesstype = QString::fromLatin1(access);
    entry.defaultvalue = value;
    entry.defaultineds = true;
    entry.writedefaulttoeds = 1;
    COHelper::getDefaultLimits(dataType, entry.lowlimit, entry.uplimit);
    return entry;
}

Entry countEntry(int count, const char *access)
{
    return makeEntry(QStringLiteral("Number of Entries"), CAN::UNSIGNED8, QString::number(count),
                     access);
}

} // namespace

bool PdoCompletion::isMissing(quint32 index) const
{
    return index >= m_low && index <= m_high &&
           !m_store.indexExists(m_line, static_cast<quint16>(index));
}

bool PdoCompletion::complete(quint32 receivePdos, quint32 transmitPdos)
{
    m_hasMadeMapping = false;
    bool done = completeCommunication(Direction::Receive, receivePdos);
    done &= completeCommunication(Direction::Transmit, transmitPdos);
    done &= completeMapping(ObjectRanges::receiveMappings.low, receivePdos);
    done &= completeMapping(ObjectRanges::transmitMappings.low, transmitPdos);
    return done;
}

bool PdoCompletion::completeCommunication(Direction direction, quint32 limit)
{
    const quint16 first = direction == Direction::Receive ? ObjectRanges::receivePdos.low
                                                          : ObjectRanges::transmitPdos.low;
    const auto count = m_store.getIndices(m_line, first, first + mostPdos - 1).size();
    if (quint32(count) >= limit)
        return true;
    bool done = true;
    for (quint32 i = 0; i < std::min(limit, mostPdos); ++i) {
        const auto index = static_cast<quint16>(first + i);
        if (!isMissing(index))
            continue;
        done &= addCommunication(direction, index, static_cast<int>(i) + 1);
        if (isMissing(index + ObjectRanges::pdoMappingDistance))
            done &= addMapping(index + ObjectRanges::pdoMappingDistance);
    }
    return done;
}

bool PdoCompletion::completeMapping(quint16 first, quint32 limit)
{
    const auto count = m_store.getIndices(m_line, first, first + mostPdos - 1).size();
    if (quint32(count) >= limit)
        return true;
    bool done = true;
    for (quint32 i = 0; i < std::min(limit, mostPdos); ++i) {
        if (isMissing(first + i))
            done &= addMapping(static_cast<quint16>(first + i));
    }
    return done;
}

bool PdoCompletion::addCommunication(Direction direction, quint16 index, int number)
{
    const bool receive = direction == Direction::Receive;
    const quint32 usual = receive ? receiveEntries : transmitEntries;
    const quint32 mask = (m_mask == 0 ? usual : m_mask) | alwaysThere;
    Entries entries;
    for (const Parameter &parameter : parameters) {
        if ((mask >> (parameter.subindex - 1) & 1U) != 0)
            entries.append({parameter.subindex,
                            makeEntry(QString::fromLatin1(parameter.name), parameter.dataType,
                                      QString::fromLatin1(parameter.value), "rw")});
    }
    entries.prepend({0, countEntry(entries.last().first, "ro")});
    const QString name = receive ? QStringLiteral("Receive PDO parameter %1")
                                 : QStringLiteral("Transmit PDO parameter %1");
    return add(index, name.arg(number), communicationStructure, entries);
}

bool PdoCompletion::addMapping(quint16 index)
{
    m_hasMadeMapping = true;
    // Nothing is mapped, and all entries are as writable as their count: a dynamic mapping.
    Entries entries = {{0, countEntry(0, "rw")}};
    for (quint8 number = 1; number <= mappingEntries; ++number)
        entries.append({number, makeEntry(QStringLiteral("Mappping Entry %1").arg(number),
                                          CAN::UNSIGNED32, QStringLiteral("0x00000000"), "rw")});
    return add(index, QStringLiteral("Mapping Parameter"), mappingStructure, entries);
}

bool PdoCompletion::add(quint16 index, const QString &name, quint16 structure,
                        const Entries &entries)
{
    ObjectDataBase::INDEX_DATA_T object;
    object.name = name;
    object.objecttype = CANopen::RECORD;
    object.datatype = structure;
    object.category = CANopen::Conditional;
    bool done = m_store.addIndex(m_line, index, object);
    QList<ObjectDataBase::SubEntry> batch;
    for (const auto &[subindex, entry] : entries)
        batch.append({m_line, index, subindex, entry});
    return m_store.addSubIndices(batch) && done;
}
