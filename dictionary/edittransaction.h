#pragma once

#include "dictionary/editresult.h"
#include "dictionary/objectwalk.h"

#include <QHash>
#include <QList>

#include <functional>
#include <map>
#include <optional>
#include <vector>

/// One edit of the object dictionaries of a project: the objects that it touches are changed in
/// memory, and what differs from the store is written by `commit`, as one batch. Dropping it drops
/// the edit.
///
/// An edit is the user's: every subindex that it writes gets its `changedbyuser`. One thread, with
/// nobody else writing between the first look and `commit`.
class EditTransaction
{
public:
    /// The store must outlive this.
    explicit EditTransaction(ObjectDataBase &store) : m_store(store) {}
    EditTransaction(const EditTransaction &) = delete;
    EditTransaction &operator=(const EditTransaction &) = delete;

    [[nodiscard]] ObjectDataBase &store() const { return m_store; }

    /// The object as the edit has left it so far; null if there is none.
    [[nodiscard]] const DictionaryObject *find(quint8 line, quint16 index);
    /// The same to be changed; stands until `commit`. Entries must stay ascending.
    [[nodiscard]] DictionaryObject *change(quint8 line, quint16 index);
    /// Puts an object, in place of the one with its number if there is one.
    DictionaryObject &put(quint8 line, const DictionaryObject &object);
    void remove(quint8 line, quint16 index);
    [[nodiscard]] bool exists(quint8 line, quint16 index);
    /// Tells that many objects of the line are to be read, which is quicker all at once.
    void readAhead(quint8 line, qsizetype objects);

    /// Has the other lines follow what was changed in shared objects of the line ('Shared in all
    /// lines', from 0x2000 up): shared subindices and the record of the object are written there
    /// too, removed ones removed. An object that a line lacks is made from that of line 0.
    void spreadShared(quint8 line);

    /// Writes what differs, as one bulk change of the store: told once, and one undo step. After a
    /// failure the project is as it was.
    EditResult commit();

private:
    struct Change
    {
        std::optional<DictionaryObject> before;
        std::optional<DictionaryObject> after;
        bool isReplaced = false; ///< by another object, which has nothing to do with it
    };
    using Key = std::pair<quint8, quint16>; ///< line, index
    struct Writes;

    Change &load(quint8 line, quint16 index);
    std::vector<bool> &present(quint8 line);
    void spreadObject(quint16 index, const Change &change, const QList<quint8> &lines);
    void spreadEntries(quint16 index, const Change &change, quint8 line);
    bool spreadEntry(const DictionaryEntry &entry, const Change &change, quint8 line);
    void markChanged();
    [[nodiscard]] Writes collect() const;
    [[nodiscard]] bool write(const Writes &writes);

    ObjectDataBase &m_store;
    std::map<Key, Change> m_changes;
    bool m_isWhole = true; ///< every object could be read; what could not must not be written
    QHash<quint8, std::vector<bool>> m_present; ///< line to which indices it has
};

/// The lines of the project but this one: those of the table of nodes, scratch lines left out.
[[nodiscard]] QList<quint8> otherLines(ObjectDataBase &store, quint8 line);
