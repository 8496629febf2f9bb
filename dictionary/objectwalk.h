#pragma once

#include "canopen/objectranges.h"
#include "store/objectdatabase.h"

#include <QList>

#include <vector>

/// One subindex with all that the store knows of it.
struct DictionaryEntry
{
    quint8 subindex = 0;
    bool isReadable = true; ///< false: the store could not give the record, it is empty
    ObjectDataBase::SUBINDEX_DATA_T data;
};

/// One object with its subindices, ascending.
struct DictionaryObject
{
    quint16 index = 0;
    bool isReadable = true; ///< as of an entry
    ObjectDataBase::INDEX_DATA_T data;
    std::vector<DictionaryEntry> entries;

    /// The store could give all of it.
    [[nodiscard]] bool isWhole() const;
    /// An array or a record, whose entries have names of their own.
    [[nodiscard]] bool isCompound() const;
    /// The type of the object; that of its value for a variable that has none itself.
    [[nodiscard]] quint16 dataType() const;
    /// Null if there is none.
    [[nodiscard]] const DictionaryEntry *find(quint8 subindex) const;
    [[nodiscard]] DictionaryEntry *find(quint8 subindex);
    /// Puts an entry in its place, instead of the one with its number if there is one.
    DictionaryEntry &insert(DictionaryEntry entry);
    void erase(quint8 subindex);
    /// 0 for an object without subindices.
    [[nodiscard]] quint8 highest() const;
    /// At least one subindex is shared over the lines, and the object is one that may be: the
    /// communication objects are each line's own.
    [[nodiscard]] bool isShared() const;
    /// The same of one of its subindices.
    [[nodiscard]] bool isShared(const DictionaryEntry &entry) const;
};

/// Reads one object; an object that the line doesn't have gives one without a name and subindices.
[[nodiscard]] DictionaryObject readDictionaryObject(ObjectDataBase &store, quint8 line,
                                                    quint16 index);

/// The walk over the objects of a line, in ascending order, each read once. The objects that there
/// are when it is made are walked; the store's caches serve it where they are filled.
class ObjectWalk
{
public:
    /// The store must outlive this.
    ObjectWalk(ObjectDataBase &store, quint8 line, ObjectRange range = ObjectRanges::device);
    /// Fills the store's caches of the line first, so that the walk asks the database nothing.
    [[nodiscard]] static ObjectWalk cached(ObjectDataBase &store, quint8 line,
                                           ObjectRange range = ObjectRanges::device);

    [[nodiscard]] const QList<quint16> &indices() const { return m_indices; }
    [[nodiscard]] qsizetype size() const { return m_indices.size(); }
    /// The object at a position of `indices`; it stands until the next one is read.
    [[nodiscard]] DictionaryObject &at(qsizetype position);

private:
    ObjectDataBase &m_store;
    quint8 m_line;
    QList<quint16> m_indices;
    DictionaryObject m_object; ///< its memory serves one object after the other
};
