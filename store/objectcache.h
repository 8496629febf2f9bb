#pragma once

#include "store/objectdatabase.h"

#include <QHash>
#include <QMap>

#include <optional>
#include <shared_mutex>
#include <vector>

/// What was read of the lines' dictionaries. Any thread.
///
/// Subindices stand by key and stay until their line is cleared. The walk (which objects a line
/// has, their records and their subindices) is kept only as long as nothing changes it, since it
/// also answers what is *not* there.
class ObjectCache
{
public:
    using INDEX_DATA_T = ObjectDataBase::INDEX_DATA_T;
    using SUBINDEX_DATA_T = ObjectDataBase::SUBINDEX_DATA_T;

    struct WalkEntry
    {
        bool hasObject = false; ///< false: subindices without an object row
        INDEX_DATA_T data;
        QList<quint8> subindices;
    };
    using Walk = QMap<quint16, WalkEntry>;

    /// Records by key. The records stand in a list of their own, since they are too large to be
    /// moved about by a growing hash.
    class Subs
    {
    public:
        void reserve(qsizetype count);
        void insert(quint32 key, SUBINDEX_DATA_T &&data);
        void remove(quint32 key) { m_places.remove(key); }
        [[nodiscard]] bool isEmpty() const { return m_places.isEmpty(); }
        [[nodiscard]] const SUBINDEX_DATA_T *find(quint32 key) const;
        [[nodiscard]] SUBINDEX_DATA_T *find(quint32 key);
        [[nodiscard]] QList<quint32> sortedKeys() const;

    private:
        QHash<quint32, qsizetype> m_places;
        QList<quint32> m_keys; ///< of all records, those of removed and replaced ones too
        std::vector<SUBINDEX_DATA_T> m_records;
    };

    static quint32 key(quint16 index, quint8 subindex) { return quint32(index) << 8 | subindex; }

    void setLine(quint8 line, Subs subs, Walk walk);
    /// Replaces the entries of one index.
    void setIndex(quint8 line, quint16 index, Subs &subs);
    void clear(quint8 line);
    void clear();
    void dropWalk(quint8 line);

    [[nodiscard]] std::optional<SUBINDEX_DATA_T> sub(quint8 line, quint16 index,
                                                     quint8 subindex) const;
    /// Replaces an entry that is there; false if there is none.
    bool replaceSub(quint8 line, quint16 index, quint8 subindex, const SUBINDEX_DATA_T &data);
    void removeSub(quint8 line, quint16 index, quint8 subindex);
    void removeIndex(quint8 line, quint16 index);

    [[nodiscard]] bool hasWalk(quint8 line) const;
    /// These answer only for a line with a walk.
    [[nodiscard]] std::optional<QList<quint16>> indices(quint8 line, int low, int high) const;
    [[nodiscard]] std::optional<QList<quint8>> subindices(quint8 line, quint16 index) const;
    /// The entry, or an empty one for an object that the line doesn't have.
    [[nodiscard]] std::optional<WalkEntry> entry(quint8 line, quint16 index) const;

private:
    struct LineCache
    {
        Subs subs;
        Walk walk;
        bool walkValid = false;
    };

    mutable std::shared_mutex m_mutex;
    QHash<quint8, LineCache> m_lines;
};
