#pragma once

#include "canopen/objectranges.h"
#include "store/objectdatabase.h"

#include <QHash>
#include <QList>

#include <optional>

class EditTransaction;

/// The entries of a line's mapping objects (PDO and SRDO) by what they name, so that they can
/// follow it. Reads the mapping objects when it is made.
class MappingLinks
{
public:
    using Key = ObjectDataBase::SubIndexKey; ///< (object index, subindex)

    MappingLinks(ObjectDataBase &store, quint8 line);

    /// Where the subindex is mapped, ascending.
    [[nodiscard]] QList<Key> entriesOf(Key mapped) const;
    /// Has the entries of each key name its value; what is moved in a ring is moved once.
    void follow(EditTransaction &edit, const QHash<Key, Key> &moves) const;
    /// Has the entries of a subindex take the length of its data type. Types of variable length
    /// leave them alone.
    void setDataType(EditTransaction &edit, Key mapped, quint16 dataType) const;

private:
    quint8 m_line;
    QHash<Key, QList<Key>> m_entries; ///< mapped subindex to entries of mapping objects
};

/// The entry in a mapping object's value, automatic base; none for an empty text or one that is no
/// number.
[[nodiscard]] std::optional<MappingEntry> mappingEntryOf(const QString &value);

/// All entries of the line's mapping objects that name the subindex, ascending.
[[nodiscard]] QList<ObjectDataBase::SubIndexKey>
getMappingsOfObject(ObjectDataBase &store, quint8 line, quint16 index, quint8 subindex);
