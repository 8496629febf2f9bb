#include "compare/projectcomparison.h"

#include "canopen/objectranges.h"
#include "compare/recordproperties.h"
#include "compare/settingscomparison.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

using Store = ObjectDataBase;

constexpr std::array<quint8, 2> directions{Store::transmit, Store::receive};

// The three kinds of items, each with records and parts: one comparison serves them all.

struct Objects
{
    using Record = Store::INDEX_DATA_T;
    using Part = Store::SUBINDEX_DATA_T;
    static constexpr auto kind = DiffItem::Kind::Object;
    static constexpr auto partKind = DiffItem::Kind::SubIndex;

    static auto numbers(Store &store, const DiffItem &at)
    {
        return store.getIndices(at.line, ObjectRanges::device.low);
    }
    static auto partNumbers(Store &store, const DiffItem &at)
    {
        return store.getSubIndices(at.line, quint16(at.number));
    }
    static bool read(Store &store, const DiffItem &at, Record &record)
    {
        return store.getIndexData(at.line, quint16(at.number), record);
    }
    static bool readPart(Store &store, const DiffItem &at, Part &part)
    {
        return store.getSubIndexData(at.line, quint16(at.number), quint8(at.part), part);
    }
};

struct Pgns
{
    using Record = Store::PGN;
    using Part = Store::SPN;
    static constexpr auto kind = DiffItem::Kind::Pgn;
    static constexpr auto partKind = DiffItem::Kind::Spn;

    static auto numbers(Store &store, const DiffItem &at)
    {
        return store.getPGNList(at.line, at.direction);
    }
    static auto partNumbers(Store &store, const DiffItem &at)
    {
        return store.getSPNList(at.line, at.number, at.direction);
    }
    static bool read(Store &store, const DiffItem &at, Record &record)
    {
        return store.getPGN(at.line, at.number, at.direction, record);
    }
    static bool readPart(Store &store, const DiffItem &at, Part &part)
    {
        return store.getSPN(at.line, at.number, at.direction, at.part, part);
    }
};

struct CanIds
{
    using Record = Store::CANID;
    using Part = Store::DataElement;
    static constexpr auto kind = DiffItem::Kind::CanId;
    static constexpr auto partKind = DiffItem::Kind::DataElement;

    static auto numbers(Store &store, const DiffItem &at)
    {
        return store.getCANIDList(at.line, at.direction);
    }
    static auto partNumbers(Store &store, const DiffItem &at)
    {
        return store.getDataElementList(at.line, at.number, at.direction);
    }
    static bool read(Store &store, const DiffItem &at, Record &record)
    {
        return store.getCANID(at.line, at.number, at.direction, record);
    }
    static bool readPart(Store &store, const DiffItem &at, Part &part)
    {
        return store.getDataElement(at.line, at.number, at.direction, at.part, part);
    }
};

/// The objects of a line stand in the caches of both stores for as long as this lives. What was
/// cached before is read again, since single columns are written past the cache.
class CachedObjects
{
public:
    CachedObjects(Store &current, Store &other, quint8 line)
        : m_stores{&current, &other}, m_line(line)
    {
        for (std::size_t i = 0; i < m_stores.size(); ++i) {
            m_wasCached[i] = m_stores[i]->isLineCached(line);
            if (m_stores[i]->lineExists(line))
                m_stores[i]->cacheAllSubs(line);
        }
    }
    ~CachedObjects()
    {
        for (std::size_t i = 0; i < m_stores.size(); ++i) {
            if (!m_wasCached[i])
                m_stores[i]->clearSubCache(m_line);
        }
    }
    CachedObjects(const CachedObjects &) = delete;
    CachedObjects &operator=(const CachedObjects &) = delete;

private:
    std::array<Store *, 2> m_stores;
    std::array<bool, 2> m_wasCached{};
    quint8 m_line;
};

template <typename Numbers>
QList<quint32> sorted(const Numbers &numbers)
{
    QList<quint32> result(numbers.begin(), numbers.end());
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

/// Walks two ascending lists side by side and tells for each number who has it.
template <typename Visit>
void mergeNumbers(const QList<quint32> &current, const QList<quint32> &other, const Visit &visit)
{
    auto here = current.begin();
    auto there = other.begin();
    while (here != current.end() || there != other.end()) {
        if (there == other.end() || (here != current.end() && *here < *there)) {
            visit(*here++, DiffState::Current);
        } else if (here == current.end() || *there < *here) {
            visit(*there++, DiffState::Other);
        } else {
            visit(*here++, DiffState::Equal);
            ++there;
        }
    }
}

QString nameOr(const QString &name, const char *fallback)
{
    return name.isEmpty() ? QString::fromLatin1(fallback) : name;
}

template <typename Group>
class GroupComparison
{
public:
    GroupComparison(Store &current, Store &other, bool internal)
        : m_current(current), m_other(other), m_internal(internal)
    {
    }

    QList<DiffItem> items(quint8 line, quint8 direction)
    {
        DiffItem at;
        at.kind = Group::kind;
        at.line = line;
        at.direction = direction;
        QList<DiffItem> result;
        mergeNumbers(numbers(m_current, at), numbers(m_other, at),
                     [&](quint32 number, DiffState presence) {
                         DiffItem item = at;
                         item.number = number;
                         item.state = presence;
                         compareItem(item);
                         result.append(item);
                     });
        return result;
    }

    QList<DiffItem> parts(const DiffItem &item)
    {
        QList<DiffItem> result;
        const auto numbersOf = [&](Store &store, DiffState absent) {
            return item.state == absent ? QList<quint32>()
                                        : sorted(Group::partNumbers(store, item));
        };
        mergeNumbers(numbersOf(m_current, DiffState::Other), numbersOf(m_other, DiffState::Current),
                     [&](quint32 number, DiffState presence) {
                         DiffItem part = item;
                         part.kind = Group::partKind;
                         part.part = number;
                         part.state = presence;
                         comparePart(part);
                         result.append(part);
                     });
        return result;
    }

    QList<PropertyRow> properties(const DiffItem &item)
    {
        return item.isPart() ? rowsOf<typename Group::Part>(item, Group::readPart)
                             : rowsOf<typename Group::Record>(item, Group::read);
    }

private:
    static QList<quint32> numbers(Store &store, const DiffItem &at)
    {
        return store.lineExists(at.line) ? sorted(Group::numbers(store, at)) : QList<quint32>();
    }

    /// Reads a record on the sides that have it, into the item's name, state and count.
    template <typename Record, typename Read>
    void compareRecords(DiffItem &item, const Read &read, const char *unnamed)
    {
        Record here;
        Record there;
        const bool isHere = item.state != DiffState::Other && read(m_current, item, here);
        const bool isThere = item.state != DiffState::Current && read(m_other, item, there);
        item.name = nameOr(isHere ? here.name : there.name, unnamed);
        item.differences = 1;
        if (item.state != DiffState::Equal)
            return;
        if (isHere != isThere || !RecordProperties::equal(here, there, m_internal))
            item.state = DiffState::Different;
        else
            item.differences = 0;
    }

    void compareItem(DiffItem &item)
    {
        compareRecords<typename Group::Record>(item, Group::read, "unnamed object");
        if (item.state == DiffState::Current || item.state == DiffState::Other)
            return;
        for (const DiffItem &part : parts(item))
            item.differences += part.differences;
        if (item.differences != 0)
            item.state = DiffState::Different;
    }

    void comparePart(DiffItem &part)
    {
        compareRecords<typename Group::Part>(part, Group::readPart, "unnamed");
    }

    template <typename Record, typename Read>
    QList<PropertyRow> rowsOf(const DiffItem &item, const Read &read)
    {
        Record here;
        Record there;
        const bool isHere = item.state != DiffState::Other && read(m_current, item, here);
        const bool isThere = item.state != DiffState::Current && read(m_other, item, there);
        return RecordProperties::rows(isHere ? &here : nullptr, isThere ? &there : nullptr,
                                      m_internal);
    }

    Store &m_current;
    Store &m_other;
    bool m_internal;
};

/// Calls `run` with the comparison of the item's group.
template <typename Run>
auto withGroup(const DiffItem &item, Store &current, Store &other, bool internal, const Run &run)
{
    switch (item.kind) {
    case DiffItem::Kind::Pgn:
    case DiffItem::Kind::Spn:
        return run(GroupComparison<Pgns>(current, other, internal));
    case DiffItem::Kind::CanId:
    case DiffItem::Kind::DataElement:
        return run(GroupComparison<CanIds>(current, other, internal));
    default:
        return run(GroupComparison<Objects>(current, other, internal));
    }
}

int countOf(const QList<DiffItem> &items)
{
    int count = 0;
    for (const DiffItem &item : items)
        count += item.differences;
    return count;
}

} // namespace

ProjectComparison::ProjectComparison(ObjectDataBase &current, ObjectDataBase &other)
    : m_current(current), m_other(other)
{
}

void ProjectComparison::setInternal(bool on)
{
    if (m_internal == on)
        return;
    m_internal = on;
    m_lines.clear();
}

void ProjectComparison::refresh()
{
    m_lines.clear();
    m_settings.reset();
}

QList<quint8> ProjectComparison::lines()
{
    const QList<quint8> here = SettingsComparison::lines(m_current);
    const QList<quint8> there = SettingsComparison::lines(m_other);
    QList<quint8> all;
    std::set_union(here.begin(), here.end(), there.begin(), there.end(), std::back_inserter(all));
    return all;
}

int ProjectComparison::differenceCount()
{
    // Reading a dictionary takes longer than its hash.
    int count = int(settings().size());
    if (count == 0 && m_current.contentHash() == m_other.contentHash())
        return 0;
    for (const quint8 line : lines()) {
        // A line that one side lacks is a difference by itself, counted among the settings.
        if (m_current.lineExists(line) && m_other.lineExists(line))
            count += countLine(line);
    }
    return count;
}

int ProjectComparison::countLine(quint8 line)
{
    int count = countOf(objects(line));
    for (const quint8 direction : directions)
        count += countOf(pgns(line, direction)) + countOf(canIds(line, direction));
    return count;
}

const QList<DiffItem> &ProjectComparison::objects(quint8 line)
{
    Line &kept = m_lines[line];
    if (!kept.objects) {
        const CachedObjects cache(m_current, m_other, line);
        kept.objects = GroupComparison<Objects>(m_current, m_other, m_internal).items(line, 0);
    }
    return *kept.objects;
}

const QList<DiffItem> &ProjectComparison::pgns(quint8 line, quint8 direction)
{
    QMap<quint8, QList<DiffItem>> &kept = m_lines[line].pgns;
    if (!kept.contains(direction)) {
        kept.insert(direction,
                    GroupComparison<Pgns>(m_current, m_other, m_internal).items(line, direction));
    }
    return kept[direction];
}

const QList<DiffItem> &ProjectComparison::canIds(quint8 line, quint8 direction)
{
    QMap<quint8, QList<DiffItem>> &kept = m_lines[line].canIds;
    if (!kept.contains(direction)) {
        kept.insert(direction,
                    GroupComparison<CanIds>(m_current, m_other, m_internal).items(line, direction));
    }
    return kept[direction];
}

QList<DiffItem> ProjectComparison::parts(const DiffItem &item)
{
    if (item.isPart())
        return {};
    return withGroup(item, m_current, m_other, m_internal,
                     [&](auto group) { return group.parts(item); });
}

QList<PropertyRow> ProjectComparison::properties(const DiffItem &item)
{
    return withGroup(item, m_current, m_other, m_internal,
                     [&](auto group) { return group.properties(item); });
}

const QList<SettingDifference> &ProjectComparison::settings()
{
    if (!m_settings)
        m_settings = SettingsComparison::compare(m_current, m_other);
    return *m_settings;
}
