#include "check/linemodel.h"

#include "store/objectdatabase.h"

#include <algorithm>

namespace {

SubIndexModel subIndexModel(quint8 subindex, const ObjectDataBase::SUBINDEX_DATA_T &data)
{
    SubIndexModel model;
    model.subindex = subindex;
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

SubIndexModel emptySubIndexModel(quint8 subindex)
{
    SubIndexModel model;
    model.subindex = subindex;
    return model;
}

ObjectModel readObject(ObjectDataBase &database, quint8 line, quint16 index)
{
    ObjectModel object;
    object.index = index;
    ObjectDataBase::INDEX_DATA_T data;
    if (database.getIndexData(line, index, data)) {
        object.objecttype = data.objecttype;
        object.name = data.name;
    }
    QList<quint8> numbers = database.getSubIndices(line, index);
    std::sort(numbers.begin(), numbers.end());
    object.subs.reserve(static_cast<std::size_t>(numbers.size()));
    ObjectDataBase::SUBINDEX_DATA_T record;
    for (const quint8 subindex : std::as_const(numbers)) {
        const bool readable = database.getSubIndexData(line, index, subindex, record);
        object.subs.push_back(readable ? subIndexModel(subindex, record)
                                       : emptySubIndexModel(subindex));
    }
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
    if (!database.isLineCached(line))
        database.cacheAllSubs(line);
    m_line = line;
    m_objects.clear();
    const QList<quint16> indices = database.getIndices(line);
    m_objects.reserve(static_cast<std::size_t>(indices.size()));
    for (const quint16 index : indices) {
        m_objects.push_back(readObject(database, line, index));
    }
}

void LineModel::refresh(ObjectDataBase &database, quint16 index)
{
    const auto it = std::ranges::lower_bound(m_objects, index, {}, &ObjectModel::index);
    if (it == m_objects.end() || it->index != index) {
        return;
    }
    *it = readObject(database, m_line, index);
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

std::span<const ObjectModel> LineModel::range(quint16 low, quint16 high) const
{
    const auto first = std::ranges::lower_bound(m_objects, low, {}, &ObjectModel::index);
    const auto last = std::ranges::upper_bound(m_objects, high, {}, &ObjectModel::index);
    return {first, last};
}

std::span<const ObjectModel> LineModel::deviceObjects() const
{
    return range(0x1000, 0xFFFF);
}
