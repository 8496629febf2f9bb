#include "dictionary/mappinglinks.h"

#include "canopen/cohelper.h"
#include "canopen/indextext.h"
#include "dictionary/edittransaction.h"

#include <QSet>

#include <array>
#include <functional>
#include <tuple>
#include <utility>

namespace {

constexpr std::array mappingRanges = {ObjectRanges::srdoMappings, ObjectRanges::receiveMappings,
                                      ObjectRanges::transmitMappings};

/// Changes the entries in default and current value, each read once; `change` is false for one that
/// stays.
void rewrite(EditTransaction &edit, quint8 line, MappingLinks::Key place,
             const std::function<bool(MappingEntry &)> &change)
{
    DictionaryObject *mapping = edit.change(line, place.first);
    DictionaryEntry *entry = mapping != nullptr ? mapping->find(place.second) : nullptr;
    if (entry == nullptr)
        return;
    for (QString *value : {&entry->data.defaultvalue, &entry->data.currentvalue}) {
        auto mapped = mappingEntryOf(*value);
        if (mapped && change(*mapped))
            *value = IndexText::hex32(mapped->toNumber());
    }
}

} // namespace

std::optional<MappingEntry> mappingEntryOf(const QString &value)
{
    bool isNumber = false;
    const quint32 number = value.trimmed().toUInt(&isNumber, 0);
    if (!isNumber || number == 0)
        return std::nullopt;
    return MappingEntry::fromNumber(number);
}

MappingLinks::MappingLinks(ObjectDataBase &store, quint8 line) : m_line(line)
{
    for (const ObjectRange &range : mappingRanges) {
        ObjectWalk walk(store, line, range);
        for (qsizetype i = 0; i < walk.size(); ++i) {
            const DictionaryObject &mapping = walk.at(i);
            for (const DictionaryEntry &entry : mapping.entries) {
                if (entry.subindex == 0)
                    continue;
                const Key place{mapping.index, entry.subindex};
                for (const QString &value : {entry.data.defaultvalue, entry.data.currentvalue}) {
                    const auto mapped = mappingEntryOf(value);
                    if (!mapped)
                        continue;
                    QList<Key> &places = m_entries[{mapped->index, mapped->subindex}];
                    if (!places.contains(place))
                        places.append(place);
                }
            }
        }
    }
}

QList<MappingLinks::Key> MappingLinks::entriesOf(Key mapped) const
{
    return m_entries.value(mapped);
}

void MappingLinks::follow(EditTransaction &edit, const QHash<Key, Key> &moves) const
{
    QSet<Key> places;
    for (auto move = moves.cbegin(); move != moves.cend(); ++move) {
        for (const Key &place : entriesOf(move.key()))
            places.insert(place);
    }
    for (const Key &place : std::as_const(places)) {
        rewrite(edit, m_line, place, [&](MappingEntry &entry) {
            const auto move = moves.constFind({entry.index, entry.subindex});
            if (move == moves.cend())
                return false;
            std::tie(entry.index, entry.subindex) = *move;
            return true;
        });
    }
}

void MappingLinks::setDataType(EditTransaction &edit, Key mapped, quint16 dataType) const
{
    const quint8 bits = COHelper::getDataLengthBits(dataType);
    if (bits == 0)
        return;
    for (const Key &place : entriesOf(mapped)) {
        rewrite(edit, m_line, place, [&](MappingEntry &entry) {
            const bool isOther = Key(entry.index, entry.subindex) != mapped;
            return !isOther && std::exchange(entry.bits, bits) != bits;
        });
    }
}

const MappingLinks &MappingFollower::links(quint8 line)
{
    return m_links.try_emplace(line, m_edit.store(), line).first->second;
}

void MappingFollower::follow(const QList<Move> &moves)
{
    QHash<Key, Key> own;
    QHash<Key, Key> shared;
    for (const Move &move : moves) {
        own.insert(move.from, move.to);
        if (move.isShared)
            shared.insert(move.from, move.to);
    }
    if (!own.isEmpty())
        links(m_line).follow(m_edit, own);
    if (shared.isEmpty())
        return;
    for (const quint8 line : otherLines(m_edit.store(), m_line))
        links(line).follow(m_edit, shared);
}

void MappingFollower::setDataType(Key mapped, quint16 dataType, bool isShared)
{
    links(m_line).setDataType(m_edit, mapped, dataType);
    if (!isShared)
        return;
    for (const quint8 line : otherLines(m_edit.store(), m_line))
        links(line).setDataType(m_edit, mapped, dataType);
}

QList<ObjectDataBase::SubIndexKey> getMappingsOfObject(ObjectDataBase &store, quint8 line,
                                                       quint16 index, quint8 subindex)
{
    return MappingLinks(store, line).entriesOf({index, subindex});
}
