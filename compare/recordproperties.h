#pragma once

#include "compare/projectdifference.h"
#include "store/objectdatabase.h"

#include <QString>

#include <span>

/// What a record of a project consists of, and how each value is told in words.
namespace RecordProperties {

enum class Shown : quint8 {
    Always,
    IfDifferent, ///< among many, worth a row only where it differs
    Internal     ///< marks of the tool and derived values: no difference of their own
};

template <typename Record>
struct Property
{
    const char *name;
    bool (*equal)(const Record &, const Record &);
    QString (*text)(const Record &);
    Shown shown = Shown::Always;
};

template <typename Record>
[[nodiscard]] std::span<const Property<Record>> properties();
template <>
std::span<const Property<ObjectDataBase::INDEX_DATA_T>> properties();
template <>
std::span<const Property<ObjectDataBase::SUBINDEX_DATA_T>> properties();
template <>
std::span<const Property<ObjectDataBase::PGN>> properties();
template <>
std::span<const Property<ObjectDataBase::SPN>> properties();
template <>
std::span<const Property<ObjectDataBase::CANID>> properties();
template <>
std::span<const Property<ObjectDataBase::DataElement>> properties();
/// Named after the columns that hold them.
template <>
std::span<const Property<ObjectDataBase::NODE_DATA_T>> properties();

[[nodiscard]] inline ObjectDataBase::MetaData metaDataOf(const ObjectDataBase::INDEX_DATA_T &record)
{
    return record.metadata;
}
[[nodiscard]] inline ObjectDataBase::MetaData
metaDataOf(const ObjectDataBase::SUBINDEX_DATA_T &record)
{
    return record.metadata;
}
/// Records of other kinds have none.
template <typename Record>
[[nodiscard]] ObjectDataBase::MetaData metaDataOf(const Record &)
{
    return {};
}

template <typename Record>
[[nodiscard]] bool equal(const Record &current, const Record &other, bool withInternal)
{
    for (const Property<Record> &property : properties<Record>()) {
        if ((withInternal || property.shown != Shown::Internal) && !property.equal(current, other))
            return false;
    }
    return metaDataOf(current) == metaDataOf(other);
}

/// Rows for the metadata keys of both sides.
void appendMetaData(QList<PropertyRow> &rows, const ObjectDataBase::MetaData &current,
                    const ObjectDataBase::MetaData &other, bool all);

/// The rows of a pair; either side may be null. `withInternal` gives all that there are.
template <typename Record>
[[nodiscard]] QList<PropertyRow> rows(const Record *current, const Record *other, bool withInternal)
{
    QList<PropertyRow> result;
    const bool pair = current != nullptr && other != nullptr;
    for (const Property<Record> &property : properties<Record>()) {
        const bool differs = pair && !property.equal(*current, *other);
        const bool shown = property.shown == Shown::Always ||
                           (property.shown == Shown::IfDifferent && differs) || withInternal;
        if (shown) {
            result.append({QString::fromLatin1(property.name),
                           current != nullptr ? property.text(*current) : QString(),
                           other != nullptr ? property.text(*other) : QString(), differs || !pair});
        }
    }
    appendMetaData(result, current != nullptr ? metaDataOf(*current) : ObjectDataBase::MetaData(),
                   other != nullptr ? metaDataOf(*other) : ObjectDataBase::MetaData(),
                   withInternal || !pair);
    return result;
}

} // namespace RecordProperties
