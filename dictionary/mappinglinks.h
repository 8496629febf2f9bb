#pragma once

#include "canopen/objectranges.h"
#include "store/objectdatabase.h"

#include <QHash>
#include <QList>

#include <map>
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

/// Has mapping entries follow one edit of an object: on the line of the edit, and for what is
/// shared on all others too. Reads the mapping objects of a line only if there is something to
/// follow.
class MappingFollower
{
public:
    using Key = MappingLinks::Key;
    /// Where a subindex goes.
    struct Move
    {
        Key from;
        Key to;
        bool isShared = false;
    };

    MappingFollower(EditTransaction &edit, quint8 line) : m_edit(edit), m_line(line) {}

    void follow(const QList<Move> &moves);
    void setDataType(Key mapped, quint16 dataType, bool isShared);

private:
    const MappingLinks &links(quint8 line);

    EditTransaction &m_edit;
    quint8 m_line;
    std::map<quint8, MappingLinks> m_links;
};

/// The entry in a mapping object's value, automatic base; none for an empty text or one that is no
/// number.
[[nodiscard]] std::optional<MappingEntry> mappingEntryOf(const QString &value);

/// All entries of the line's mapping objects that name the subindex, ascending.
[[nodiscard]] QList<ObjectDataBase::SubIndexKey>
getMappingsOfObject(ObjectDataBase &store, quint8 line, quint16 index, quint8 subindex);
