#include "dictionary/objectwalk.h"

#include "canopen/canopentypes.h"

#include <algorithm>

namespace {

void read(ObjectDataBase &store, quint8 line, quint16 index, DictionaryObject &object)
{
    object.index = index;
    object.isReadable = store.getIndexData(line, index, object.data);
    if (!object.isReadable)
        object.data = {};
    const QList<quint8> numbers = store.getSubIndices(line, index);
    object.entries.resize(static_cast<std::size_t>(numbers.size()));
    auto entry = object.entries.begin();
    for (const quint8 number : numbers) {
        entry->subindex = number;
        entry->isReadable = store.getSubIndexData(line, index, number, entry->data);
        if (!entry->isReadable)
            entry->data = {};
        ++entry;
    }
}

} // namespace

bool DictionaryObject::isWhole() const
{
    return isReadable && std::ranges::all_of(entries, &DictionaryEntry::isReadable);
}

bool DictionaryObject::isCompound() const
{
    return data.objecttype == CANopen::ARRAY || data.objecttype == CANopen::RECORD;
}

quint16 DictionaryObject::dataType() const
{
    if (data.datatype == 0 && !isCompound() && !entries.empty())
        return entries.front().data.datatype;
    return data.datatype;
}

const DictionaryEntry *DictionaryObject::find(quint8 subindex) const
{
    const auto found = std::ranges::lower_bound(entries, subindex, {}, &DictionaryEntry::subindex);
    return found != entries.end() && found->subindex == subindex ? &*found : nullptr;
}

DictionaryEntry *DictionaryObject::find(quint8 subindex)
{
    return const_cast<DictionaryEntry *>(std::as_const(*this).find(subindex));
}

DictionaryEntry &DictionaryObject::insert(DictionaryEntry entry)
{
    const auto place =
        std::ranges::lower_bound(entries, entry.subindex, {}, &DictionaryEntry::subindex);
    if (place == entries.end() || place->subindex != entry.subindex)
        return *entries.insert(place, std::move(entry));
    *place = std::move(entry);
    return *place;
}

void DictionaryObject::erase(quint8 subindex)
{
    std::erase_if(entries,
                  [subindex](const DictionaryEntry &entry) { return entry.subindex == subindex; });
}

quint8 DictionaryObject::highest() const
{
    return entries.empty() ? 0 : entries.back().subindex;
}

bool DictionaryObject::isShared() const
{
    return std::ranges::any_of(entries,
                               [this](const DictionaryEntry &entry) { return isShared(entry); });
}

bool DictionaryObject::isShared(const DictionaryEntry &entry) const
{
    return index >= ObjectRanges::manufacturer.low && entry.data.sharedlines;
}

DictionaryObject readDictionaryObject(ObjectDataBase &store, quint8 line, quint16 index)
{
    DictionaryObject object;
    read(store, line, index, object);
    return object;
}

ObjectWalk::ObjectWalk(ObjectDataBase &store, quint8 line, ObjectRange range)
    : m_store(store), m_line(line), m_indices(store.getIndices(line, range.low, range.high))
{
}

ObjectWalk ObjectWalk::cached(ObjectDataBase &store, quint8 line, ObjectRange range)
{
    if (!store.isLineCached(line))
        store.cacheAllSubs(line);
    return {store, line, range};
}

DictionaryObject &ObjectWalk::at(qsizetype position)
{
    read(m_store, m_line, m_indices.at(position), m_object);
    return m_object;
}
