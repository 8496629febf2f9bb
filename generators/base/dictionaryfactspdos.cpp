#include "generators/base/dictionaryfactspdos.h"

#include "canopen/canopentypes.h"
#include "canopen/objectranges.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <array>

namespace {

using Facts = DictionaryFacts;

// CiA 301: a subindex 0 of 254 makes a PDO a SAM-MPDO, of 255 a DAM-MPDO; 253 is kept for scanner
// lists. None of them maps variables.
constexpr quint8 firstSpecialMapping = 253;
constexpr quint8 samMapping = 254;
constexpr quint8 damMapping = 255;

struct CountedRange
{
    ObjectRange range;
    int Facts::LineCounts::*count;
    bool countsEntries; ///< the subindices but 0 in place of the objects
};

constexpr std::array<CountedRange, 12> countedRanges = {
    {{ObjectRanges::device, &Facts::LineCounts::objects, false},
     {{0x1003, 0x1003}, &Facts::LineCounts::errorHistory, true},
     {{0x1016, 0x1016}, &Facts::LineCounts::heartbeatConsumers, true},
     {{0x1028, 0x1028}, &Facts::LineCounts::emcyConsumers, true},
     {ObjectRanges::sdoServers, &Facts::LineCounts::sdoServers, false},
     {ObjectRanges::sdoClients, &Facts::LineCounts::sdoClients, false},
     {{ObjectRanges::srdos.low, 0x137F}, &Facts::LineCounts::srdos, false},
     {ObjectRanges::receivePdos, &Facts::LineCounts::receivePdos, false},
     {ObjectRanges::receiveMappings, &Facts::LineCounts::receiveMappings, false},
     {ObjectRanges::transmitPdos, &Facts::LineCounts::transmitPdos, false},
     {ObjectRanges::transmitMappings, &Facts::LineCounts::transmitMappings, false},
     {{0x1F81, 0x1F81}, &Facts::LineCounts::slaveAssignments, true}}};

void countMapping(Facts &facts, Facts::LineCounts &counts, const Facts::Object &object,
                  const QString &subZeroAccess)
{
    facts.maxMapEntries = std::max(facts.maxMapEntries, object.subCount - 1);
    const bool isTransmit = object.index >= ObjectRanges::transmitPdos.low;
    if (subZeroAccess == QLatin1String("rw"))
        ++(isTransmit ? counts.dynamicTransmitMappings : counts.dynamicReceiveMappings);
    const Facts::Entry *subZero = facts.find(object.line, object.index, 0);
    const quint8 count = subZero ? quint8(subZero->value) : 0;
    if (count < samMapping)
        return;
    ++(isTransmit ? counts.transmitMpdos : counts.receiveMpdos);
    if (!isTransmit)
        ++(count == damMapping ? counts.damReceiveMpdos : counts.samReceiveMpdos);
}

class PdoCollector
{
public:
    PdoCollector(Facts &facts, const DictionaryOptions &options)
        : m_facts(facts), m_options(options)
    {
    }

    void run()
    {
        for (const Facts::Object &object : m_facts.objects) {
            if (ObjectRanges::receivePdos.contains(object.index))
                collect(object, false);
            else if (ObjectRanges::transmitPdos.contains(object.index))
                collect(object, true);
        }
    }

private:
    void collect(const Facts::Object &communication, bool isTransmit);
    [[nodiscard]] quint32 table(const Facts::Pdo &pdo, bool isTransmit);
    [[nodiscard]] bool isStatic(const Facts::Entry &subZero) const;
    [[nodiscard]] Facts::MapSlot slot(const Facts::Object &object, quint8 sub) const;
    [[nodiscard]] quint32 rowOf(quint8 line, const Facts::Entry &entry) const;
    [[nodiscard]] static QByteArray fingerprint(const Facts::MapTable &table);

    Facts &m_facts;
    const DictionaryOptions &m_options;
    QHash<QByteArray, quint32> m_receiveTables;
};

void PdoCollector::collect(const Facts::Object &communication, bool isTransmit)
{
    Facts::Pdo pdo;
    pdo.line = communication.line;
    pdo.index = communication.index;
    const ObjectRange &pdos = isTransmit ? ObjectRanges::transmitPdos : ObjectRanges::receivePdos;
    pdo.number = quint16(communication.index - pdos.low + 1);
    pdo.table = table(pdo, isTransmit);
    (isTransmit ? m_facts.transmitPdos : m_facts.receivePdos).push_back(pdo);
}

/// Static is what no SDO can change. Access types that write only one way count as static unless
/// bits are mapped, where every writable mapping is kept in RAM.
bool PdoCollector::isStatic(const Facts::Entry &subZero) const
{
    if (!subZero.has(Facts::Writable))
        return true;
    return !m_options.bitwiseMapping && !subZero.isReadWrite;
}

quint32 PdoCollector::table(const Facts::Pdo &pdo, bool isTransmit)
{
    const Facts::Object *object =
        m_facts.findObject(pdo.line, quint16(pdo.index + ObjectRanges::pdoMappingDistance));
    const Facts::Entry *subZero = object ? m_facts.find(object->line, object->index, 0) : nullptr;
    if (!subZero || quint8(subZero->value) >= firstSpecialMapping || !isStatic(*subZero) ||
        m_facts.maxMapEntries <= 0)
        return Facts::noPosition;

    Facts::MapTable table;
    table.line = pdo.line;
    table.number = pdo.number;
    table.isTransmit = isTransmit;
    const int active = std::min<int>(quint8(subZero->value), object->highestSub);
    table.mapSlots.resize(std::size_t(m_facts.maxMapEntries));
    table.count = quint8(std::min(active, m_facts.maxMapEntries));
    for (int i = 0; i < table.count; ++i)
        table.mapSlots[std::size_t(i)] = slot(*object, quint8(i + 1));

    const auto position = quint32(m_facts.mapTables.size());
    if (!isTransmit) {
        const QByteArray key = fingerprint(table);
        const auto known = m_receiveTables.constFind(key);
        if (known != m_receiveTables.constEnd()) {
            ++m_facts.mapTables[*known].users;
            return *known;
        }
        m_receiveTables.insert(key, position);
    }
    m_facts.mapTables.push_back(std::move(table));
    return position;
}

Facts::MapSlot PdoCollector::slot(const Facts::Object &object, quint8 sub) const
{
    constexpr quint32 bitsPerByte = 8;
    constexpr quint16 lastDummyType = CAN::UNSIGNED32;
    Facts::MapSlot slot;
    const Facts::Entry *mapping = m_facts.find(object.line, object.index, sub);
    slot.mapping = mapping ? quint32(mapping->value) : 0;
    if (slot.mapping == 0)
        return slot;
    const MappingEntry entry = MappingEntry::fromNumber(slot.mapping);
    const quint32 bits = entry.bits;
    slot.length = quint8(m_options.bitwiseMapping ? bits : (bits + bitsPerByte - 1) / bitsPerByte);

    // Dummy entries map a data type (CiA 301), which fills the place of a variable.
    slot.isNumeric = entry.index >= CAN::BOOLEAN && entry.index <= lastDummyType;
    const Facts::Entry *target = m_facts.find(object.line, entry.index, entry.subindex);
    if (!target)
        return slot;
    slot.isNumeric = target->has(Facts::Numeric);
    if (target->implementation == CANopen::VirtualObject || target->position == Facts::noPosition)
        return slot;
    slot.entry = quint32(target - m_facts.entries.data());
    slot.row = rowOf(object.line, *target);
    return slot;
}

quint32 PdoCollector::rowOf(quint8 line, const Facts::Entry &entry) const
{
    const Facts::Object *object = m_facts.findObject(line, entry.place.index);
    const auto begin = m_facts.description.begin() + object->firstRow;
    const auto end = begin + object->rowCount;
    const auto wanted = quint32(&entry - m_facts.entries.data());
    // Rows follow the entries; an entry behind the last row is covered by the compact one.
    const auto row = std::lower_bound(begin, end, wanted);
    if (begin == end)
        return Facts::noPosition;
    return quint32((row == end ? end - 1 : row) - m_facts.description.begin());
}

QByteArray PdoCollector::fingerprint(const Facts::MapTable &table)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << table.count;
    for (const Facts::MapSlot &slot : table.mapSlots)
        stream << slot.mapping << slot.entry << slot.length << slot.isNumeric;
    return bytes;
}

} // namespace

void countServices(DictionaryFacts &facts, DictionaryFacts::LineCounts &counts,
                   const DictionaryFacts::Object &object, const QString &subZeroAccess)
{
    for (const CountedRange &range : countedRanges) {
        if (!range.range.contains(object.index))
            continue;
        const bool hasSubZero = facts.find(object.line, object.index, 0) != nullptr;
        counts.*range.count += range.countsEntries ? object.subCount - (hasSubZero ? 1 : 0) : 1;
    }
    if (ObjectRanges::isPdoMapping(object.index))
        countMapping(facts, counts, object, subZeroAccess);
    if (ObjectRanges::receivePdos.contains(object.index) &&
        facts.find(object.line, object.index, 5))
        ++counts.receivePdoTimers;
    if (ObjectRanges::transmitPdos.contains(object.index) &&
        facts.find(object.line, object.index, 3))
        ++counts.transmitPdoInhibits;
}

void collectPdos(DictionaryFacts &facts, const DictionaryOptions &options)
{
    PdoCollector(facts, options).run();
}
