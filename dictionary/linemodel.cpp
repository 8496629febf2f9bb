#include "dictionary/linemodel.h"

#include "dictionary/objectwalk.h"

#include <algorithm>

namespace {

SubIndexModel subIndexModel(const DictionaryEntry &entry)
{
    const ObjectDataBase::SUBINDEX_DATA_T &data = entry.data;
    SubIndexModel model;
    model.subindex = entry.subindex;
    if (!entry.isReadable)
        return model;
    model.datatype = data.datatype;
    model.name = data.name;
    model.accesstype = data.accesstype;
    model.defaultvalue = data.defaultvalue;
    model.lowlimit = data.lowlimit;
    model.uplimit = data.uplimit;
    model.varname = data.varname;
    model.hasDefault = data.defaultineds;
    model.useLimit = data.limitineds;
    model.implementation = data.implementation;
    model.defaultInEds = data.writedefaulttoeds;
    model.pdomapping = data.pdomapping;
    return model;
}

ObjectModel objectModel(const DictionaryObject &source)
{
    ObjectModel object;
    object.index = source.index;
    if (source.isReadable) {
        object.objecttype = source.data.objecttype;
        object.name = source.data.name;
    }
    object.subs.reserve(source.entries.size());
    for (const DictionaryEntry &entry : source.entries)
        object.subs.push_back(subIndexModel(entry));
    return object;
}

} // namespace

const SubIndexModel *ObjectModel::find(quint8 subindex) const
{
    const auto it = std::ranges::lower_bound(subs, subindex, {}, &SubIndexModel::subindex);
    return it != subs.end() && it->subindex == subindex ? &*it : nullptr;
}

QString ObjectModel::value(quint8 subindex) const
{
    const SubIndexModel *sub = find(subindex);
    return sub != nullptr ? sub->defaultvalue : QString();
}

int ObjectModel::entryCount() const
{
    return static_cast<int>(subs.size()) - (find(0) != nullptr ? 1 : 0);
}

void LineModel::load(ObjectDataBase &database, quint8 line)
{
    m_line = line;
    m_objects.clear();
    ObjectWalk walk = ObjectWalk::cached(database, line, ObjectRanges::all);
    m_objects.reserve(static_cast<std::size_t>(walk.size()));
    for (qsizetype i = 0; i < walk.size(); ++i)
        m_objects.push_back(objectModel(walk.at(i)));
}

void LineModel::refresh(ObjectDataBase &database, quint16 index)
{
    const auto it = std::ranges::lower_bound(m_objects, index, {}, &ObjectModel::index);
    if (it == m_objects.end() || it->index != index) {
        return;
    }
    *it = objectModel(readDictionaryObject(database, m_line, index));
}

const ObjectModel *LineModel::find(quint16 index) const
{
    const auto it = std::ranges::lower_bound(m_objects, index, {}, &ObjectModel::index);
    return it != m_objects.end() && it->index == index ? &*it : nullptr;
}

const SubIndexModel *LineModel::find(quint16 index, quint8 subindex) const
{
    const ObjectModel *object = find(index);
    return object != nullptr ? object->find(subindex) : nullptr;
}

QString LineModel::value(quint16 index, quint8 subindex) const
{
    const ObjectModel *object = find(index);
    return object != nullptr ? object->value(subindex) : QString();
}

std::span<const ObjectModel> LineModel::range(ObjectRange range) const
{
    const auto first = std::ranges::lower_bound(m_objects, range.low, {}, &ObjectModel::index);
    const auto last = std::ranges::upper_bound(m_objects, range.high, {}, &ObjectModel::index);
    return {first, last};
}

std::span<const ObjectModel> LineModel::deviceObjects() const
{
    return range(ObjectRanges::device);
}
