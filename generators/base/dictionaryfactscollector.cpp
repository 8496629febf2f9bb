#include "canopen/indextext.h"
#include "canopen/objectranges.h"
#include "dictionary/objectwalk.h"
#include "generators/base/dictionaryfacts.h"

#include "canopen/canopentypes.h"
#include "canopen/cohelper.h"
#include "canopen/helper.h"
#include "generators/base/dictionaryfactspdos.h"
#include "generators/base/dictionaryfactsspecifiers.h"
#include "store/objectdatabase.h"

#include <QSet>

#include <algorithm>

namespace {

using Facts = DictionaryFacts;
using Sub = ObjectDataBase::SUBINDEX_DATA_T;

struct Access
{
    bool isReadable;
    bool isWritable;
    bool isProcessInput;  ///< "rwr": written over SDO, sent in TPDOs only
    bool isProcessOutput; ///< "rww": received in RPDOs only
    bool isReadWrite;
};

Access accessOf(const QString &text)
{
    // Nearly every text is one of the six as they are; the table of spellings is slow.
    static const QSet<QString> canonical = {QStringLiteral("const"), QStringLiteral("ro"),
                                            QStringLiteral("wo"),    QStringLiteral("rw"),
                                            QStringLiteral("rwr"),   QStringLiteral("rww")};
    const QString access = canonical.contains(text) ? text : COHelper::normalizeAccessType(text);
    if (access == QLatin1String("const") || access == QLatin1String("ro"))
        return {true, false, false, false, false};
    if (access == QLatin1String("wo"))
        return {false, true, false, false, false};
    return {true, true, access == QLatin1String("rwr"), access == QLatin1String("rww"),
            access == QLatin1String("rw")};
}

/// A name without what numbers its like: blanks and digits.
QString simplifiedName(const QString &name)
{
    QString result;
    result.reserve(name.size());
    for (const QChar character : name) {
        if (!character.isDigit())
            result += character;
    }
    return result.simplified();
}

class Collector
{
public:
    Collector(ObjectDataBase &store, const DictionaryOptions &options,
              const std::function<bool()> &stop)
        : m_store(store), m_options(options), m_stop(stop)
    {
    }

    Facts run();

private:
    void collectSrdoMapping(quint8 line);
    void collectLine(quint8 line);
    void collectObject(quint8 line, const DictionaryObject &source);
    bool shareRows(Facts::Object &object, const std::vector<DictionaryEntry> &subs) const;
    void collectRows(Facts::Object &object, const std::vector<DictionaryEntry> &subs);
    void collectSub(const Facts::Object &object, const DictionaryEntry &source);
    void collectValue(Facts::Entry &entry, const Sub &data);
    void collectConstant(Facts::Entry &entry, const Sub &data);
    void collectLimits(Facts::Entry &entry, const Sub &data);
    void collectPointer(Facts::Entry &entry, const Sub &data);
    quint32 numberPosition(TableGroup group, quint64 value);
    quint32 limitPosition(const Facts::Entry &entry, const QString &text, bool isLow);
    quint32 stringPosition(TableGroup group, const QByteArray &bytes);
    [[nodiscard]] int compactRun(const Facts::Object &object,
                                 const std::vector<DictionaryEntry> &subs) const;
    [[nodiscard]] bool isLike(const Facts::Object &object, const DictionaryEntry &sub,
                              const DictionaryEntry &last, const QString &lastName) const;
    [[nodiscard]] const char *specifier(quint16 index, quint8 sub, quint8 implementation) const;
    void countObject(Facts::LineCounts &counts, const Facts::Object &object,
                     const std::vector<DictionaryEntry> &subs);
    void addRows();
    void checkSizes();
    void problem(const Facts::Place &place, const QString &text);

    ObjectDataBase &m_store;
    const DictionaryOptions &m_options;
    const std::function<bool()> &m_stop;
    Facts m_facts;
    std::array<QHash<quint64, quint32>, numericGroupCount> m_numberPositions;
    QHash<QByteArray, quint32> m_visStringPositions;
    QHash<QByteArray, quint32> m_utf8StringPositions;
    QHash<quint16, quint32> m_firstHolder; ///< index to the first line's object
    QSet<quint32> m_srdoMapped;            ///< sub keys
};

Facts Collector::run()
{
    m_facts.activeLines = Facts::selectLines(m_store, m_facts.multiLine);
    m_facts.lineForm = m_facts.multiLine || m_options.generateML;
    if (m_options.staticSrdo) {
        for (const quint8 line : std::as_const(m_facts.activeLines))
            collectSrdoMapping(line);
    }
    for (const quint8 line : std::as_const(m_facts.activeLines))
        collectLine(line);
    addRows();
    collectPdos(m_facts, m_options);
    checkSizes();
    return std::move(m_facts);
}

void Collector::collectSrdoMapping(quint8 line)
{
    for (const quint16 index : m_store.getIndices(line, 0x1380, 0x13B0)) {
        for (const quint8 sub : m_store.getSubIndices(line, index)) {
            Sub data;
            if (sub == 0 || !m_store.getSubIndexData(line, index, sub, data))
                continue;
            const QString &text =
                data.currentvalue.isEmpty() ? data.defaultvalue : data.currentvalue;
            quint64 entry = 0;
            DictionaryTypes::parse(CAN::UNSIGNED32, text, NumberText::Base::Automatic, entry);
            if (entry == 0)
                continue;
            const MappingEntry target = MappingEntry::fromNumber(entry);
            const auto mapped = Facts::subKey(line, target.index, target.subindex);
            if (m_srdoMapped.contains(mapped))
                continue;
            m_srdoMapped.insert(mapped);
            const TableGroup group = DictionaryTypes::of(m_store.getSubIndexDataType(
                                                             line, target.index, target.subindex))
                                         .group;
            if (DictionaryTypes::isNumeric(group))
                ++m_facts.srdoEntries[std::size_t(group)];
        }
    }
}

void Collector::collectLine(quint8 line)
{
    Facts::LineCounts counts;
    counts.line = line;
    m_facts.lines.push_back(counts);
    ObjectWalk objects = ObjectWalk::cached(m_store, line);
    m_facts.objects.reserve(m_facts.objects.size() + objects.size());
    m_facts.objectIndex.reserve(m_facts.objectIndex.size() + objects.size());
    constexpr qsizetype usualSubs = 4;
    m_facts.entries.reserve(m_facts.entries.size() + std::size_t(usualSubs * objects.size()));
    for (qsizetype i = 0; i < objects.size(); ++i) {
        if (m_stop && m_stop())
            return;
        DictionaryObject &object = objects.at(i);
        std::erase_if(object.entries,
                      [](const DictionaryEntry &entry) { return !entry.isReadable; });
        collectObject(line, object);
    }
}

void Collector::collectObject(quint8 line, const DictionaryObject &source)
{
    const quint16 index = source.index;
    const std::vector<DictionaryEntry> &subs = source.entries;
    Facts::Object object;
    object.line = line;
    object.entryLine = line;
    object.index = index;
    object.objectType = source.data.objecttype;
    object.subCount = int(subs.size());
    object.highestSub = source.highest();
    // An object whose subindex 0 is virtual belongs to the virtual dictionary alone.
    object.isAssigned = subs.empty() || subs.front().data.implementation != CANopen::VirtualObject;
    if (!shareRows(object, subs))
        collectRows(object, subs);

    const auto position = quint32(m_facts.objects.size());
    m_facts.objectIndex.insert(Facts::objectKey(line, index), position);
    if (!m_firstHolder.contains(index))
        m_firstHolder.insert(index, position);
    m_facts.objects.push_back(object);
    countObject(m_facts.lines.back(), object, subs);
}

/// A shared object uses the rows of the first line that holds it. Rows of one object stand
/// together, so sharing is possible only for the object as a whole.
bool Collector::shareRows(Facts::Object &object, const std::vector<DictionaryEntry> &subs) const
{
    const auto holder = m_firstHolder.constFind(object.index);
    if (holder == m_firstHolder.constEnd() || subs.empty())
        return false;
    const Facts::Object &first = m_facts.objects[*holder];
    if (first.entryCount != subs.size())
        return false;
    for (std::size_t i = 0; i < subs.size(); ++i) {
        if (!subs[i].data.sharedlines ||
            m_facts.entries[first.firstEntry + i].place.sub != subs[i].subindex)
            return false;
    }
    object.isShared = true;
    object.entryLine = first.entryLine;
    object.firstEntry = first.firstEntry;
    object.entryCount = first.entryCount;
    object.compactFrom = first.compactFrom;
    object.isAssigned = first.isAssigned;
    return true;
}

void Collector::collectRows(Facts::Object &object, const std::vector<DictionaryEntry> &subs)
{
    object.firstEntry = quint32(m_facts.entries.size());
    object.entryCount = quint32(subs.size());
    if (m_options.compactDescription)
        object.compactFrom = compactRun(object, subs);
    for (const DictionaryEntry &source : subs)
        collectSub(object, source);
}

void Collector::collectSub(const Facts::Object &object, const DictionaryEntry &source)
{
    const Sub &data = source.data;
    Facts::Entry entry;
    entry.place = {object.line, object.index, source.subindex};
    entry.dataType = data.datatype == CAN::TIME_OF_DAY ? quint16(CAN::UNSIGNED48) : data.datatype;
    const DictionaryType type = DictionaryTypes::of(entry.dataType);
    entry.group = type.group;
    entry.implementation = data.implementation;
    entry.specifier = specifier(object.index, source.subindex, data.implementation);
    entry.addsNodeId = DictionaryTypes::hasNodeId(data.defaultvalue);

    const Access access = accessOf(data.accesstype);
    entry.isReadWrite = access.isReadWrite;
    const PDOMapping::PDOMappingType mapping = data.pdomapping.value();
    const bool mapsTransmit = mapping != PDOMapping::Forbidden && mapping != PDOMapping::RPDO;
    const bool mapsReceive = mapping != PDOMapping::Forbidden && mapping != PDOMapping::TPDO;
    const auto set = [&entry](bool condition, Facts::Attribute attribute) {
        if (condition)
            entry.attributes |= attribute;
    };
    set(type.isNumeric, Facts::Numeric);
    set(access.isReadable, Facts::Readable);
    set(access.isWritable, Facts::Writable);
    set(mapsTransmit && access.isReadable && !access.isProcessOutput, Facts::MapTransmit);
    set(mapsReceive && access.isWritable && !access.isProcessInput, Facts::MapReceive);
    set(data.nvstorage, Facts::Stored);
    set(source.subindex == object.compactFrom && object.compactFrom != Facts::noCompactRun,
        Facts::Compact);

    collectConstant(entry, data);
    if (access.isWritable)
        collectLimits(entry, data);
    collectValue(entry, data);
    set(data.implementation != CANopen::ManagedConst &&
            (data.defaultineds || !data.defaultvalue.isEmpty()) &&
            entry.defaultPosition != Facts::noPosition,
        Facts::HasDefault);
    set(entry.lowPosition != Facts::noPosition, Facts::HasLimits);

    m_facts.entries.push_back(std::move(entry));
}

const char *Collector::specifier(quint16 index, quint8 sub, quint8 implementation) const
{
    if (implementation == CANopen::ManagedConst)
        return "_CONST";
    if (const ServiceSpecifier service = serviceSpecifier(index, sub); service.suffix)
        return service.suffix;
    return implementation == CANopen::ManagedVariable ? "_VAR" : "_PTR";
}

/// The default value of every subindex, whatever its class, is found in the constants of its type.
void Collector::collectConstant(Facts::Entry &entry, const Sub &data)
{
    if (DictionaryTypes::isNumeric(entry.group)) {
        const bool isRead = DictionaryTypes::parse(entry.dataType, data.defaultvalue,
                                                   NumberText::Base::Automatic, entry.value);
        // The node-id alone, and a text of nothing but blanks, stand for 0.
        if (!isRead && !DictionaryTypes::withoutNodeId(data.defaultvalue).isEmpty())
            problem(entry.place, QStringLiteral("the default value is no number that can be read"));
        entry.defaultPosition = numberPosition(entry.group, entry.value);
    } else if (DictionaryTypes::isString(entry.group)) {
        entry.defaultPosition = stringPosition(
            entry.group, DictionaryTypes::stringBytes(entry.dataType, data.defaultvalue));
    }
}

void Collector::collectLimits(Facts::Entry &entry, const Sub &data)
{
    if (!m_options.limitCheck || !data.limitineds || !DictionaryTypes::isNumeric(entry.group))
        return;
    entry.lowPosition = limitPosition(entry, data.lowlimit, true);
    entry.highPosition = limitPosition(entry, data.uplimit, false);
}

/// A limit that is not written stands for the natural limit of the type: read as 0 it would lock
/// the object.
quint32 Collector::limitPosition(const Facts::Entry &entry, const QString &text, bool isLow)
{
    quint64 value = 0;
    if (!DictionaryTypes::parse(entry.dataType, text, NumberText::Base::Decimal, value)) {
        QString low;
        QString high;
        COHelper::getDefaultLimits(entry.dataType, low, high);
        DictionaryTypes::parse(entry.dataType, isLow ? low : high, NumberText::Base::Decimal,
                               value);
    }
    return numberPosition(entry.group, value);
}

quint32 Collector::numberPosition(TableGroup group, quint64 value)
{
    auto &table = m_facts.constants[std::size_t(group)];
    auto &positions = m_numberPositions[std::size_t(group)];
    const auto known = positions.constFind(value);
    if (known != positions.constEnd())
        return *known;
    const auto position = quint32(table.size());
    positions.insert(value, position);
    table.push_back(value);
    return position;
}

quint32 Collector::stringPosition(TableGroup group, const QByteArray &bytes)
{
    const bool isUtf8 = group == TableGroup::Utf8String;
    auto &table = isUtf8 ? m_facts.utf8Strings : m_facts.visStrings;
    auto &positions = isUtf8 ? m_utf8StringPositions : m_visStringPositions;
    const auto known = positions.constFind(bytes);
    if (known != positions.constEnd())
        return *known;
    const auto position = quint32(table.size());
    positions.insert(bytes, position);
    table.push_back(bytes);
    return position;
}

void Collector::collectValue(Facts::Entry &entry, const Sub &data)
{
    const auto slot = std::size_t(entry.group);
    const bool isNumeric = DictionaryTypes::isNumeric(entry.group);
    if (data.implementation == CANopen::VirtualObject) {
        if (entry.group != TableGroup::None)
            entry.position = quint32(m_facts.virtualCounts[slot]++);
    } else if (entry.group == TableGroup::None) {
        problem(entry.place, QStringLiteral("the data type %1 is unknown").arg(data.datatype));
    } else if (data.implementation == CANopen::ManagedConst &&
               (isNumeric || DictionaryTypes::isString(entry.group))) {
        entry.position = entry.defaultPosition;
    } else if (data.implementation == CANopen::ManagedVariable && isNumeric) {
        auto &table = m_facts.managed[slot];
        entry.position = quint32(table.size());
        table.push_back({entry.place, entry.value});
    } else {
        collectPointer(entry, data);
    }

    const ServiceSpecifier service = data.implementation == CANopen::ManagedConst
                                         ? ServiceSpecifier()
                                         : serviceSpecifier(entry.place.index, entry.place.sub);
    entry.valueIndex = service.suffix ? service.value : quint16(entry.position);
    // Variables that SRDOs carry are reached through the safety data, at their usual position.
    if (!service.suffix && data.implementation != CANopen::ManagedConst &&
        m_srdoMapped.contains(Facts::subKey(entry.place.line, entry.place.index, entry.place.sub)))
        entry.specifier = "_SRDO";
    if (entry.group != TableGroup::None) {
        m_facts.hasUtf8Strings |= entry.group == TableGroup::Utf8String;
        m_facts.hasExtendedTypes |=
            entry.group == TableGroup::U24 || entry.group == TableGroup::U40 ||
            entry.group == TableGroup::U48 || entry.group == TableGroup::U64 ||
            entry.group == TableGroup::I24;
    }
}

void Collector::collectPointer(Facts::Entry &entry, const Sub &data)
{
    auto &table = m_facts.pointers[std::size_t(entry.group)];
    Facts::PointerRow row;
    row.place = entry.place;
    row.isConstant = data.implementation == CANopen::ManagedConst;
    if (data.implementation == CANopen::Variable)
        row.varName =
            Helper::substituteVariables(Helper::onOneLine(data.varname).trimmed(),
                                        entry.place.index, entry.place.sub, entry.place.line);
    entry.varName = row.varName;
    row.maximalSize = data.size;
    if (entry.group == TableGroup::Domain) {
        row.actualSize = data.size;
    } else if (!DictionaryTypes::isNumeric(entry.group)) {
        row.content = DictionaryTypes::stringBytes(entry.dataType, data.defaultvalue);
        const auto length = quint32(row.content.size());
        // The size is that of the application's buffer, which nothing may overrun.
        if (row.isConstant || data.size == 0)
            row.maximalSize = std::max(data.size, length);
        row.content.truncate(row.maximalSize);
        row.actualSize = quint32(row.content.size());
    }
    entry.position = quint32(table.size());
    table.push_back(std::move(row));
}

/// The first subindex of the run of like subindices at the end of an object.
int Collector::compactRun(const Facts::Object &object,
                          const std::vector<DictionaryEntry> &subs) const
{
    constexpr quint16 firstCompactIndex = ObjectRanges::sdoServers.low;
    constexpr std::size_t fewestSubs = 3;
    if (object.index < firstCompactIndex || subs.size() < fewestSubs)
        return Facts::noCompactRun;
    if (m_options.addressRows && subs.back().data.implementation == CANopen::Variable)
        return Facts::noCompactRun;
    const QString lastName = simplifiedName(subs.back().data.name);
    std::size_t first = subs.size() - 1;
    while (first > 0 && subs[first - 1].subindex + 1 == subs[first].subindex &&
           isLike(object, subs[first - 1], subs.back(), lastName))
        --first;
    return first + 1 == subs.size() ? Facts::noCompactRun : subs[first].subindex;
}

bool Collector::isLike(const Facts::Object &object, const DictionaryEntry &sub,
                       const DictionaryEntry &last, const QString &lastName) const
{
    const Sub &a = sub.data;
    const Sub &b = last.data;
    const auto mapped = [&](quint8 number) {
        return m_srdoMapped.contains(Facts::subKey(object.line, object.index, number));
    };
    return a.datatype == b.datatype && a.implementation == b.implementation &&
           a.accesstype == b.accesstype && a.pdomapping == b.pdomapping &&
           a.limitineds == b.limitineds && a.lowlimit == b.lowlimit && a.uplimit == b.uplimit &&
           a.size == b.size && a.defaultineds == b.defaultineds && a.nvstorage == b.nvstorage &&
           a.defaultvalue == b.defaultvalue && a.writedefaulttoeds == b.writedefaulttoeds &&
           mapped(sub.subindex) == mapped(last.subindex) &&
           specifier(object.index, sub.subindex, a.implementation) ==
               specifier(object.index, last.subindex, b.implementation) &&
           simplifiedName(a.name) == lastName;
}

void Collector::countObject(Facts::LineCounts &counts, const Facts::Object &object,
                            const std::vector<DictionaryEntry> &subs)
{
    for (const DictionaryEntry &source : subs) {
        if (source.data.nvstorage)
            counts.nvStorage.append({object.line, object.index, source.subindex});
    }
    countServices(m_facts, counts, object,
                  subs.empty() ? QString()
                               : COHelper::normalizeAccessType(subs.front().data.accesstype));
}

/// Rows of the description and assignment tables. Shared objects come after their owners, whose
/// line stands before theirs.
void Collector::addRows()
{
    std::size_t objectPosition = 0;
    for (Facts::LineCounts &counts : m_facts.lines) {
        counts.firstAssignRow = quint32(m_facts.assignment.size());
        for (; objectPosition < m_facts.objects.size() &&
               m_facts.objects[objectPosition].line == counts.line;
             ++objectPosition) {
            Facts::Object &object = m_facts.objects[objectPosition];
            if (object.isShared) {
                const Facts::Object &owner = *m_facts.findObject(object.entryLine, object.index);
                object.firstRow = owner.firstRow;
                object.rowCount = owner.rowCount;
                object.firstVirtualRow = owner.firstVirtualRow;
                object.virtualRowCount = owner.virtualRowCount;
            } else {
                object.firstRow = quint32(m_facts.description.size());
                object.firstVirtualRow = quint32(m_facts.virtualDescription.size());
                for (quint32 i = 0; i < object.entryCount; ++i) {
                    const quint32 entry = object.firstEntry + i;
                    const Facts::Entry &facts = m_facts.entries[entry];
                    if (facts.place.sub > object.compactFrom)
                        break;
                    (facts.implementation == CANopen::VirtualObject ? m_facts.virtualDescription
                                                                    : m_facts.description)
                        .push_back(entry);
                }
                object.rowCount = quint32(m_facts.description.size()) - object.firstRow;
                object.virtualRowCount =
                    quint32(m_facts.virtualDescription.size()) - object.firstVirtualRow;
            }
            if (object.isAssigned)
                m_facts.assignment.push_back(quint32(objectPosition));
            if (object.virtualRowCount > 0)
                m_facts.virtualAssignment.push_back(quint32(objectPosition));
        }
        counts.assignRows = int(m_facts.assignment.size() - counts.firstAssignRow);
    }
}

void Collector::checkSizes()
{
    const auto check = [this](std::size_t size, const QString &table) {
        if (size > Facts::highestPosition + 1)
            m_facts.problems.append(
                QStringLiteral("The table %1 has %2 entries; the stack can address %3.")
                    .arg(table)
                    .arg(size)
                    .arg(Facts::highestPosition + 1));
    };
    for (std::size_t slot = 0; slot < tableGroupCount; ++slot) {
        const QString tag = QLatin1String(DictionaryTypes::info(TableGroup(slot)).tag);
        if (slot < numericGroupCount) {
            check(m_facts.managed[slot].size(), QStringLiteral("od_") + tag);
            check(m_facts.constants[slot].size(), QStringLiteral("od_const_") + tag);
        }
        check(m_facts.pointers[slot].size(), QStringLiteral("od_ptr_") + tag);
    }
    check(m_facts.visStrings.size(), QStringLiteral("od_const_vis_string"));
    check(m_facts.utf8Strings.size(), QStringLiteral("od_const_utf8_string"));
    check(m_facts.description.size(), QStringLiteral("od_description"));
    check(m_facts.virtualDescription.size(), QStringLiteral("vod_description"));
}

void Collector::problem(const Facts::Place &place, const QString &text)
{
    m_facts.problems.append(QStringLiteral("Object %1-%2 of line %3: %4.")
                                .arg(IndexText::hex(place.index), IndexText::subHex(place.sub))
                                .arg(place.line)
                                .arg(text));
}

} // namespace

DictionaryFacts DictionaryFacts::collect(ObjectDataBase &store, const DictionaryOptions &options,
                                         const std::function<bool()> &stop)
{
    return Collector(store, options, stop).run();
}
