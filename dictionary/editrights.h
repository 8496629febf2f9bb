#pragma once

#include "canopen/objectranges.h"
#include "dictionary/editresult.h"
#include "store/objectdatabase.h"

#include <QList>
#include <QStringList>

/// What the user sees of an object.
enum class ObjectField {
    Name,
    ObjectType,
    DataType,
    Variable, ///< variable name of subindex 0
    Values,   ///< current value of a variable
    ObjectClass,
    FwSupport,
    Category,
    Description,
    MetaData
};

/// What the user sees of a subindex.
enum class SubIndexField {
    Name,
    DataType,
    AccessType,
    LowLimit,
    HighLimit,
    PdoMapping,
    DefaultValue,
    CurrentValue,
    HasDefault,
    LimitCheck,
    RefuseRead,
    RefuseWrite,
    DefaultInEds,
    Implementation,
    VariableName,
    Size,
    Shared,
    NonVolatile,
    Category,
    Description,
    MetaData
};

/// Who may change what in an object dictionary. A plain value.
///
/// Outside expert mode objects outside of the manufacturer's segment are neither added, removed,
/// moved, renamed nor retyped; their values can be set. Every refusal tells its reason, for a tool
/// tip or a message.
class EditRights
{
public:
    struct Flags
    {
        bool expert = false;
        bool ignoreStack = false; ///< the user's setting `ignoretsk`
    };

    EditRights() = default;
    explicit EditRights(Flags flags) : m_flags(flags) {}

    [[nodiscard]] bool isExpert() const { return m_flags.expert; }

    /// Adding, removing, moving, renaming, retyping.
    [[nodiscard]] bool mayRestructure(quint16 index) const;
    EditResult restructure(quint16 index) const;
    /// The range in which new objects may be put.
    [[nodiscard]] ObjectRange targets() const;
    /// A new object by hand: none of the communication segment, where services and the import add.
    EditResult addByHand(quint32 index) const;

    /// Only the tool that keeps the subindex changes it.
    [[nodiscard]] bool isReadOnly(const ObjectDataBase::SUBINDEX_DATA_T &record) const;
    EditResult edit(quint16 index, ObjectField field) const;
    /// Of a subindex as the form holds it: what the data type and the kind of implementation have
    /// no use for is refused too.
    EditResult edit(quint16 index, quint8 subindex, const ObjectDataBase::SUBINDEX_DATA_T &record,
                    SubIndexField field) const;
    /// What the user may not change of `before`; fields that follow from others are not asked.
    EditResult change(quint16 index, quint8 subindex, const ObjectDataBase::SUBINDEX_DATA_T &before,
                      const ObjectDataBase::SUBINDEX_DATA_T &after) const;
    EditResult change(quint16 index, const ObjectDataBase::INDEX_DATA_T &before,
                      const ObjectDataBase::INDEX_DATA_T &after) const;

private:
    Flags m_flags;
};

/// The access types to be offered: those that the record allows, all for an empty list, and the
/// stored one in any case.
[[nodiscard]] QStringList offeredAccessTypes(const ObjectDataBase::SUBINDEX_DATA_T &record);
